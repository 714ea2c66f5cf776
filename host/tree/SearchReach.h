#pragma once

#include <QString>

class CMPath;
class Session;

/// Of a search below a folder that brought nothing: throws Failure where its media server's search
/// doesn't look there, as in folders that a server makes up. `name` is what people call
/// the folder, `results` the search's path.
///
/// The same search of the whole server comes first: what is nowhere isn't below the folder either.
/// Else the search has to find an entry that the folder is seen to hold.
void requireReach(
    Session &session, const CMPath &folder, const QString &name, const CMPath &results);
