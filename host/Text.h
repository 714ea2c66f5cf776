#pragma once

#include <QCoreApplication>
#include <QLocale>

/// Texts for people, in the language that Language has chosen: `Text::tr("%Ln rows.", nullptr, n)`.
/// Whole sentences, since each language orders its parts in its own way; names, addresses, commands
/// and options come in by %1, all in one arg(). What programs read (JSON, logs, playlists) isn't
/// translated. Any thread.
class Text
{
    Q_DECLARE_TR_FUNCTIONS(Text)

public:
    /// Marks a text that is given to tr() elsewhere, as those of --help are.
    static constexpr const char *mark(const char *text) { return text; }

    /// As people write it in their language; not for what they write back to us, as rows.
    static QString number(qlonglong number) { return QLocale().toString(number); }
};
