#pragma once

#include "tree/RowRange.h"

#include <QHash>

class CMPath;
class Session;

/// The tracks' numbers on their albums, by the number of the row. A worker doesn't tell them, so
/// the media service is asked. Throws Failure where it doesn't answer.
QHash<int, int> trackNumbers(Session &session, const CMPath &folder, RowRange range);
