#pragma once

#include <QString>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

/// How wide help is and how it names things; before the first command is declared, which takes it
/// over.
void shapeHelp(CLI::App &app);

/// Translates what the help of a parser and its commands says. Our own texts in it are marked where
/// they stand.
void translateHelp(CLI::App &app);

/// What the parser complains of.
QString translatedMistake(const CLI::ParseError &error);
