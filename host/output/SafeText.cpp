#include "output/SafeText.h"

#include <QTextBoundaryFinder>
#include <QVector>

#include <algorithm>
#include <utf8proc.h>

namespace {

/// More of one text than people read; a server may send megabytes.
constexpr int longestText = 4000;

bool turnsDirection(uint c)
{
    return (c >= 0x202a && c <= 0x202e) || (c >= 0x2066 && c <= 0x2069) || c == 0x200e
        || c == 0x200f || c == 0x61c;
}

/// What is shown in the place of `c`; `c` itself where it is harmless.
uint shownAs(uint c)
{
    if (!obeyedByTerminals(c))
        return c;
    if (c < 0x20)
        return 0x2400 + c; // the picture of the control character
    return c == 0x7f ? 0x2421 : 0xfffd;
}

/// Nearly every text.
bool isPlainAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(),
        [](QChar c) { return c.unicode() >= 0x20 && c.unicode() < 0x7f; });
}

} // namespace

bool obeyedByTerminals(uint c)
{
    return c < 0x20 || (c >= 0x7f && c <= 0x9f) || c == 0x2028 || c == 0x2029 || turnsDirection(c);
}

QString safeText(const QString &text)
{
    if (text.size() <= longestText && isPlainAscii(text))
        return text;
    QString safe;
    safe.reserve(qMin(text.size(), longestText));
    // toUcs4() gives U+FFFD for half a pair.
    const QVector<uint> characters = shortened(text, longestText).toUcs4();
    for (const uint c : characters) {
        const uint shown = shownAs(c);
        safe += QString::fromUcs4(&shown, 1);
    }
    return safe;
}

QString quoted(const QString &text)
{
    return QLatin1Char('"') + shortened(safeText(text), 200) + QLatin1Char('"');
}

QString shortened(const QString &text, int most)
{
    if (text.size() <= most)
        return text;
    const int end = text.at(most - 2).isHighSurrogate() ? most - 2 : most - 1;
    return text.left(end) + QChar(0x2026);
}

QString shortenedInTheMiddle(const QString &text, int width)
{
    if (displayWidth(text) <= width)
        return text;
    QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, text);
    const auto before = [&](int columns) {
        letters.toStart();
        int end = 0;
        for (int next = letters.toNextBoundary(); displayWidth(text.left(next)) <= columns;
             next = letters.toNextBoundary()) {
            end = next;
        }
        return text.left(end);
    };
    const auto after = [&](int columns) {
        letters.toEnd();
        int begin = text.size();
        for (int next = letters.toPreviousBoundary(); displayWidth(text.mid(next)) <= columns;
             next = letters.toPreviousBoundary()) {
            begin = next;
        }
        return text.mid(begin);
    };
    const int room = qMax(0, width - 1);
    const QString end = after(room / 2);
    return before(room - displayWidth(end)) + QChar(0x2026) + end;
}

int displayWidth(const QString &text)
{
    if (isPlainAscii(text))
        return text.size();
    int width = 0;
    const QVector<uint> characters = text.toUcs4();
    for (const uint c : characters)
        width += utf8proc_charwidth(utf8proc_int32_t(c));
    return width;
}

QString padded(const QString &text, int width)
{
    return text + QString(qMax(0, width - displayWidth(text)), QLatin1Char(' '));
}
