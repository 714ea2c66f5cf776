#pragma once

#include <QString>

class OrkaHash;

/// Thrown where nobody reads standard output any more, as behind "| head": the reader has what it
/// wanted.
struct ReaderGone
{};

/// Writes `line` and a newline to standard output, as UTF-8, at once. Throws Failure when that
/// can't be done (the disk is full), ReaderGone where the reader is.
void writeLine(const QString &line);

/// The bytes as they are, the same way.
void writeText(const QByteArray &bytes);

/// Whether anything has been written to standard output.
bool isAnythingWritten();

/// JSON allows DEL and the C1 controls as they are; a terminal would obey them.
QString withoutRawControls(const QString &json);

/// A JSON document on one line.
void writeJson(const OrkaHash &document);

/// A sentence for people on standard error, "orka: " in front. Newlines are kept, every other
/// control character is shown as a symbol.
void tell(const QString &sentence);
