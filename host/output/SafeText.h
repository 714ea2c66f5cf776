#pragma once

#include <QString>

/// Text from outside, made fit for a terminal: what a terminal obeys is shown as symbols instead,
/// half a surrogate pair becomes U+FFFD, and what is longer than 4,000 letters ends in an ellipsis.
/// Everything else stays as it is.
QString safeText(const QString &text);

/// The same between quotation marks, for sentences; 200 letters at most.
QString quoted(const QString &text);

/// Whether terminals obey the character instead of showing it: controls, line separators, and what
/// turns the direction of the text around.
bool obeyedByTerminals(uint c);

/// `text`, or its beginning and an ellipsis where it has more letters than `most`.
QString shortened(const QString &text, int most);

/// `text`, or its beginning, an ellipsis and its end where it takes more than `width` columns.
/// Keeps what belongs to one letter together.
QString shortenedInTheMiddle(const QString &text, int width);

/// Columns that `text` takes on a terminal: two for a wide East Asian character, none for a
/// combining one.
int displayWidth(const QString &text);

/// `text` followed by as many spaces as it lacks of `width` columns.
QString padded(const QString &text, int width);
