#pragma once

namespace CLI {
class App;
}

/// Translates what the help of a parser and its commands says. Our own texts in it are marked where
/// they stand.
void translateHelp(CLI::App &app);
