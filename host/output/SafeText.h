#pragma once

#include <QString>

/// Text from outside, made fit for a terminal: control characters, and characters that turn the
/// direction of the text around, are shown as symbols instead of obeyed; half a surrogate pair
/// becomes U+FFFD. Everything else stays as it is.
QString safeText(const QString &text);

/// The same between quotation marks, for sentences.
QString quoted(const QString &text);

/// Columns that `text` takes on a terminal: two for a wide East Asian character, none for a
/// combining one.
int displayWidth(const QString &text);

/// `text` followed by as many spaces as it lacks of `width` columns.
QString padded(const QString &text, int width);
