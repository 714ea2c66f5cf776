#pragma once

#include <QStringList>

class CMPath;
class Session;

/// What the media server of `path` can be searched by, as its search menu says: of "artist",
/// "album" and "title". None where it can't search.
QStringList searchKinds(Session &session, const CMPath &path);

/// The same in the user's language.
QStringList kindNames(const QStringList &kinds);

/// A sentence where that server hasn't said what it can search, which a worker takes for nothing;
/// else empty. Asks the media service.
QString searchUnknown(const Session &session, const CMPath &path);
