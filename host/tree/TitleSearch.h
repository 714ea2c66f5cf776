#pragma once

#include <api/core/CMPath.h>

class Session;

/// The one entry of a folder with this very title, as its media server's search tells: a big folder
/// needn't be read for it. Empty where the server can't tell, or finds several.
CMPath searchByTitle(
    Session &session, const CMPath &parent, const QString &title, bool onlyFolders);
