#pragma once

#include "tree/RowsReader.h"

#include <api/core/CMError.h>
#include <api/core/CMPath.h>
#include <api/core/OrkaRoles.h>

/// The documents that --json prints. A role that a node lacks is left out; a path is its encoded
/// text, a translatable text its text in the current language.

/// One document on one line whose last member is a list, written as its entries come: rows are
/// {"path","roles":{…},"rowsCount","rowsVersion","rows":[{role:value}]}, a queue {"items":[{…}]}.
/// Where the list isn't whole, an "error" follows it. Throws Failure as writeText() does.
class JsonListDocument
{
public:
    /// Nothing is written yet.
    JsonListDocument(const OrkaHash &head, const QString &list);
    void add(const QVariant &entry);
    /// Gives out what has been added.
    void flush();
    /// The end of the document; `error` is left out where it is none.
    void end(const CMError &error = CMError());

private:
    QString m_pending;
    bool m_empty = true;
};

/// What a rows document says of the listed node: path, rowsCount, rowsVersion, roles.
OrkaHash rowsHead(const CMPath &path, const Rows &page);
/// {"path","rowsCount","rowsVersion","roles":{…},"rows":[{role:value}]}, rows that are all there.
OrkaHash rowsDocument(const CMPath &path, const Rows &rows);
/// {"path","roles":{…}}
OrkaHash dataDocument(const CMPath &path, const OrkaRoles &roles);
/// {"value":…}
OrkaHash valueDocument(const QVariant &value);
/// {"error":{"name","title","message"}}
OrkaHash errorDocument(const CMError &error);

/// That a list isn't whole, for these reasons; no error where there are none.
CMError incompleteError(const QStringList &reasons);

/// JSON text as the value of a set-data request: an object becomes a hash, an array a list, a
/// string a string. Throws Failure (wrong usage) with the place of the mistake.
QVariant valueFromJson(const QString &text);
