#pragma once

#include <QStringList>

class CMPath;
class Session;

/// What the media server of `path` can be searched by, as its search menu says: of "artist",
/// "album" and "title". None where it can't search.
QStringList searchKinds(Session &session, const CMPath &path);
