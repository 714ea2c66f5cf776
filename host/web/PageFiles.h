#pragma once

#include "web/HttpServer.h"

/// Answers with the files of the page, which are read once: nothing else can be had by any path.
/// Throws Failure (missing) where the folder isn't there.
void servePage(HttpServer &server, const QString &folder);
