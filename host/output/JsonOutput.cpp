#include "output/JsonOutput.h"

#include "Failure.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QVariant toVariant(const QJsonValue &value)
{
    if (value.isObject()) {
        QVariantHash hash;
        const QJsonObject object = value.toObject();
        for (auto it = object.begin(); it != object.end(); ++it)
            hash.insert(it.key(), toVariant(it.value()));
        return hash;
    }
    if (value.isArray()) {
        QVariantList list;
        for (const QJsonValue entry : value.toArray())
            list.append(toVariant(entry));
        return list;
    }
    return value.toVariant();
}

} // namespace

OrkaHash rowsDocument(const CMPath &path, const Rows &rows)
{
    QVariantList list;
    list.reserve(rows.rows.size());
    for (const OrkaRoles &row : rows.rows)
        list.append(row.toVariant());
    OrkaHash document;
    document.setValue(QStringLiteral("path"), path.toEncoded());
    document.setValue(OrkaRowsRoles::RowsCount(), rows.rowsCount);
    document.setValue(OrkaRowsRoles::RowsVersion(), rows.rowsVersion);
    document.setValue(OrkaRowsRoles::Roles(), rows.roles.toVariant());
    document.setValue(OrkaRowsRoles::Rows(), list);
    return document;
}

OrkaHash dataDocument(const CMPath &path, const OrkaRoles &roles)
{
    OrkaHash document;
    document.setValue(QStringLiteral("path"), path.toEncoded());
    document.setValue(QStringLiteral("roles"), roles.toVariant());
    return document;
}

OrkaHash queueDocument(const QVector<OrkaPlayListItem> &items)
{
    QVariantList list;
    list.reserve(items.size());
    for (const OrkaPlayListItem &item : items)
        list.append(item.toVariant());
    OrkaHash document;
    document.setValue(QStringLiteral("items"), list);
    return document;
}

OrkaHash valueDocument(const QVariant &value)
{
    OrkaHash document;
    document.setValue(QStringLiteral("value"), value);
    return document;
}

OrkaHash errorDocument(const CMError &error)
{
    OrkaHash document;
    document.setValue(QStringLiteral("error"), error.toVariant());
    return document;
}

QVariant valueFromJson(const QString &text)
{
    // Inside an array, since a document is never a bare string.
    QJsonParseError error = {};
    const QJsonDocument document = QJsonDocument::fromJson('[' + text.toUtf8() + "\n]", &error);
    if (document.isNull() || document.array().size() != 1) {
        const QString why = document.isNull()
            ? QStringLiteral("%1 at character %2")
                  .arg(error.errorString())
                  .arg(qMin(error.offset, text.size()))
            : QStringLiteral("it holds %1 values").arg(document.array().size());
        throw wrongUsage(QStringLiteral("The value is not one JSON value: %1. Write an object, a "
                                        "list or a string, like '{\"string_\":\"abba\"}'.")
                             .arg(why));
    }
    return toVariant(document.array().first());
}
