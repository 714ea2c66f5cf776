#pragma once

#include <api/core/CMPath.h>
#include <api/core/OrkaRoles.h>

#include <QVector>

/// The content of the test worker: a media server "Shelf" with folders and tracks that are hard to
/// name and to print.
namespace ShelfTree {

constexpr int bigFolderSize = 1200;
/// ESC, a newline and a C1 control inside a title.
QString hostileTitle();

/// The children of the node with this base.
QVector<OrkaRoles> children(const QString &prefix, const QString &base);
/// The node itself; empty where there is none.
OrkaRoles node(const QString &prefix, const QString &base);
/// A media server's row.
OrkaRoles server(const QString &prefix, const QString &base, const QString &title);

} // namespace ShelfTree
