#pragma once

#include <QByteArray>
#include <QStringList>

/// A line as it stands at a shell's prompt, left of the cursor, with its quotes taken off.
struct ShellLine
{
    /// At least one; the last is the one that is being written, and may be empty.
    QStringList words;
    /// '"' or '\'' where the last word stands in quotes that are still open, else 0.
    char quote = 0;
    /// Where the last word begins in the line, in bytes.
    int start = 0;
};

/// UTF-8, with quotes and backslashes as bash, zsh and fish have them.
ShellLine parseShellLine(const QByteArray &line);

/// How the text is written there, inside the open quotes or, for 0, outside of any.
QString quotedForShell(const QString &text, char quote);
