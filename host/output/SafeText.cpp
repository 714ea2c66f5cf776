#include "output/SafeText.h"

#include <QVector>

#include <utf8proc.h>

namespace {

bool turnsDirection(uint c)
{
    return (c >= 0x202a && c <= 0x202e) || (c >= 0x2066 && c <= 0x2069);
}

/// What is shown in the place of `c`; `c` itself where it is harmless.
uint shownAs(uint c)
{
    if (c < 0x20)
        return 0x2400 + c; // the picture of the control character
    if (c == 0x7f)
        return 0x2421;
    const bool lineSeparator = c == 0x2028 || c == 0x2029;
    const bool control = c >= 0x80 && c <= 0x9f;
    return control || lineSeparator || turnsDirection(c) ? 0xfffd : c;
}

} // namespace

QString safeText(const QString &text)
{
    QString safe;
    safe.reserve(text.size());
    // toUcs4() gives U+FFFD for half a pair.
    const QVector<uint> characters = text.toUcs4();
    for (const uint c : characters) {
        const uint shown = shownAs(c);
        safe += QString::fromUcs4(&shown, 1);
    }
    return safe;
}

QString quoted(const QString &text)
{
    return QLatin1Char('"') + safeText(text) + QLatin1Char('"');
}

int displayWidth(const QString &text)
{
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
