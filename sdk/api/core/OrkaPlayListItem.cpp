#include "OrkaPlayListItem.h"

#include <private/RecordKey.h>

ORKA_RECORD_KEY(OrkaPlayListItem, ServiceId, "serviceId")
ORKA_RECORD_KEY(OrkaPlayListItem, OrkaRoles_, "orkaRoles")
ORKA_RECORD_KEY(OrkaPlayListItem, Artist, "artist")
ORKA_RECORD_KEY(OrkaPlayListItem, Album, "album")
ORKA_RECORD_KEY(OrkaPlayListItem, ArtworkUrl, "artworkUrl")
ORKA_RECORD_KEY(OrkaPlayListItem, DurationSeconds, "durationSeconds")
ORKA_RECORD_KEY(OrkaPlayListItem, Genre, "genre")
ORKA_RECORD_KEY(OrkaPlayListItem, Url, "url")
ORKA_RECORD_KEY(OrkaPlayListItem, Title, "title")
