#pragma once

#include <api/core/CMPath.h>

class Session;

/// `path` with the kind of its node as the parameter `itemType` (track, container, server), which
/// playing and context menus go by. A path that has one travels unchanged; else the worker is
/// asked. Throws Failure where the node has no kind.
CMPath withKind(Session &session, const CMPath &path);
