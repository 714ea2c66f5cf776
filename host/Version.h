#pragma once

#include <QString>

#include <string>

/// Lines about the program and what it runs with: Qt, the SDK's library and the plug-in, of which
/// each file tells its own version. An empty plug-in is this installation's.
std::string versionText(const QString &plugin);
