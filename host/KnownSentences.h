#pragma once

#include <QString>

/// A sentence of the media service's or of a library's, which are in English: in the user's
/// language where it is one that is known, else as it is.
QString translatedSentence(const QString &sentence);
