#pragma once

#include <QString>

namespace CLI {
class App;
}

/// Translates what the help of a parser and its commands says. Our own texts in it are marked where
/// they stand.
void translateHelp(CLI::App &app);

/// What the parser complains of, translated as far as its sentences are known.
QString translatedComplaint(const QString &complaint);
