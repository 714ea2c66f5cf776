#pragma once

#include "tree/RowRange.h"

#include <api/core/OrkaRoles.h>

#include <QVector>

class Session;

/// Rows of one node, each as a record of the roles that it has.
struct Rows
{
    QVector<OrkaRoles> rows;
    /// Of the whole node, as its worker counts.
    int rowsCount = 0;
    int rowsVersion = 0;
    /// The listed node itself.
    OrkaRoles roles;
};

/// Rows in one request.
Rows readRowsAtOnce(Session &session, const CMPath &path, RowRange range, const QStringList &roles);

/// Rows in requests of at most 500, until the range is complete, the node's count is reached, or a
/// request brings none; shorter answers than asked for are gone on from, and a count of 0 beside
/// rows is not believed.
Rows readRows(Session &session, const CMPath &path, RowRange range, const QStringList &roles);
