#pragma once

#include "tree/RowRange.h"

#include <api/core/OrkaRoles.h>

#include <QVector>

class Session;

/// Rows of one node, each as a record of the roles that it has.
struct Rows
{
    QVector<OrkaRoles> rows;
    /// Of the rows within the node; empty where they follow each other.
    QVector<int> numbers;
    /// Of the whole node, as its worker counts.
    int rowsCount = 0;
    int rowsVersion = 0;
    /// The listed node itself.
    OrkaRoles roles;
};

/// What a worker answered when it was asked for these roles.
Rows rowsOf(const OrkaRowsRoles &answer, const QStringList &roles);

/// Whether more rows may follow the first `next` ones of a node that its worker counts `rowsCount`
/// rows in. A count that isn't known (0), or that what came disproves, ends nothing; then the first
/// page that isn't full does.
bool mayFollow(int rowsCount, int next, bool isPageFull);

/// Rows in one request.
Rows readRowsAtOnce(Session &session, const CMPath &path, RowRange range, const QStringList &roles);

/// Rows in pages, all together.
Rows readRows(Session &session, const CMPath &path, RowRange range, const QStringList &roles);
