#pragma once

#include <QString>

/// What standard output and standard error are shown on.
namespace Terminal {

/// The whole palette.
enum class Style { Plain, Faint, Strong, Good, Doubtful, Bad };

/// Columns of the terminal behind the file descriptor; 0 where there is none.
int columns(int descriptor);

/// Whether standard output shows colours: it is a terminal, none that calls itself dumb, and
/// NO_COLOR (no-color.org) isn't set.
bool hasColours();

/// `text` in that style where there are colours; as it is where there are none.
QString styled(const QString &text, Style style);

} // namespace Terminal
