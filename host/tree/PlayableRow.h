#pragma once

#include <api/core/OrkaPlayListItem.h>
#include <api/core/OrkaRoles.h>

/// What a row is to somebody who plays it.
enum class PlayableKind { Audio, Video, Image, Other };

/// Of a row that is no container; what its server calls music is audio, whatever its type.
PlayableKind playableKind(const OrkaRoles &row);

/// The item that the worker's preparation makes of the same object, made from all roles of its row.
/// Empty where the row doesn't carry what an item holds: no title, no address, or a length too long
/// for its milliseconds.
OrkaPlayListItem itemOfRow(const OrkaRoles &row);
