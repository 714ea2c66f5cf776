#include "output/Playlist.h"

#include "Text.h"
#include "output/Output.h"
#include "output/SafeText.h"

#include <QRegularExpression>

namespace {

/// A line of a playlist holds no line break and nothing else that a terminal would obey.
QString onOneLine(const QString &text)
{
    QString line = text;
    for (QChar &c : line) {
        if (obeyedByTerminals(c.unicode()))
            c = QLatin1Char(' ');
    }
    return line;
}

} // namespace

bool isPlayableUrl(const QString &url)
{
    static const QRegularExpression playable(
        QStringLiteral("\\A(https?|rtsp)://[^/?#\\s]"), QRegularExpression::CaseInsensitiveOption);
    return playable.match(url).hasMatch();
}

QString safeUrl(const QString &url)
{
    QString safe;
    const QByteArray bytes = url.toUtf8();
    for (const char c : bytes) {
        const bool printable = c > 0x20 && c < 0x7f;
        safe += printable ? QString(QLatin1Char(c))
                          : QStringLiteral("%%1").arg(uchar(c), 2, 16, QLatin1Char('0')).toUpper();
    }
    return safe;
}

PlayListItems playableItems(const PlayListItems &items)
{
    PlayListItems playable;
    for (const OrkaPlayListItem &item : items) {
        if (isPlayableUrl(item.url())) {
            playable.append(item);
            continue;
        }
        tell(Text::tr("%1 is left out: its address %2 is not one that a player may be given "
                      "(http, https or rtsp).")
                 .arg(quoted(itemName(item)), quoted(item.url())));
    }
    return playable;
}

OrkaPlayListItem withoutRoles(OrkaPlayListItem item)
{
    item.remove(OrkaPlayListItem::OrkaRoles_());
    return item;
}

QString itemName(const OrkaPlayListItem &item)
{
    const QString title = item.title().isEmpty() ? item.url() : item.title();
    return item.artist().isEmpty() ? title : item.artist() + QStringLiteral(" - ") + title;
}

QString toM3u8(const PlayListItems &items)
{
    QString text = QStringLiteral("#EXTM3U\n");
    for (const OrkaPlayListItem &item : items) {
        const int seconds = item.durationSeconds() > 0 ? item.durationSeconds() : -1;
        text += QStringLiteral("#EXTINF:%1,").arg(seconds) + onOneLine(itemName(item))
            + QLatin1Char('\n') + safeUrl(item.url()) + QLatin1Char('\n');
    }
    return text;
}
