#pragma once

#include "tree/RowsReader.h"

#include <api/core/CMError.h>
#include <api/core/CMPath.h>
#include <api/core/OrkaPlayListItem.h>

#include <QVector>

/// The documents that --json prints. A role that a node lacks is left out; a path is its encoded
/// text, a translatable text its text in the current language.

/// {"path","rowsCount","rowsVersion","roles":{…},"rows":[{role:value}]}
OrkaHash rowsDocument(const CMPath &path, const Rows &rows);
/// {"path","roles":{…}}
OrkaHash dataDocument(const CMPath &path, const OrkaRoles &roles);
/// {"items":[{…}]}
OrkaHash queueDocument(const QVector<OrkaPlayListItem> &items);
/// {"value":…}
OrkaHash valueDocument(const QVariant &value);
/// {"error":{"name","title","message"}}
OrkaHash errorDocument(const CMError &error);

/// JSON text as the value of a set-data request: an object becomes a hash, an array a list, a
/// string a string. Throws Failure (wrong usage) with the place of the mistake.
QVariant valueFromJson(const QString &text);
