#pragma once

#include <api/core/OrkaPlayListItem.h>

#include <QString>
#include <QVector>

using PlayListItems = QVector<OrkaPlayListItem>;

/// The items that a player may be given: those whose URL is http, https or rtsp and names a host.
/// Every other is named on standard error and left out.
PlayListItems playableItems(const PlayListItems &items);

/// The item without its roles, which take the most room and say nothing to a player.
OrkaPlayListItem withoutRoles(OrkaPlayListItem item);

/// Whether a URL is one of these. What may stand in a playlist, beyond that, is safeUrl()'s work.
bool isPlayableUrl(const QString &url);

/// The URL with everything but printable ASCII percent-encoded as UTF-8, so that it stays one word
/// on one line.
QString safeUrl(const QString &url);

/// "Artist - Title", the title alone where no artist is known, the URL where nothing is.
QString itemName(const OrkaPlayListItem &item);

/// An M3U8 playlist: UTF-8, a #EXTINF line with the length in seconds (-1 where it isn't known)
/// before each URL. A control character in a name becomes a space; every other stays.
QString toM3u8(const PlayListItems &items);

/// An XSPF 1 playlist, as UTF-8. A character that XML can't hold becomes U+FFFD; every other stays,
/// line breaks included.
QByteArray toXspf(const PlayListItems &items);
