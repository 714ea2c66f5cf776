#pragma once

#include "ScriptedUpnpServer.h"

#include <QJsonObject>

/// Takes behaviour from a script: the members of `ServerBehaviour` by their names; `fail` is an
/// object of action and error code, `emptyResult` one of "didl", "nothing", "wrapped". What the
/// script doesn't name stays as it is. Returns an empty text, or which key isn't known or has a
/// wrong value.
QString applyBehaviour(ServerBehaviour &behaviour, const QJsonObject &script);

/// Adds `objects`: a list of {"id","parent","title","class","xml","container","generated"};
/// "parent" is "0" and "class" a folder's or a track's where they are left out; null leaves the
/// text out of the DIDL-Lite.
void addObjects(MediaTree &tree, const QJsonArray &objects);
