#include "output/JsonOutput.h"

#include "Failure.h"
#include "KnownSentences.h"
#include "Text.h"
#include "output/Output.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int fullBuffer = 65536; // characters

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

JsonListDocument::JsonListDocument(const OrkaHash &head, const QString &list)
    : m_pending(head.toJsonString())
{
    m_pending.chop(1);
    if (!head.isEmpty())
        m_pending += QLatin1Char(',');
    m_pending += orkaToJson(list) + QStringLiteral(":[");
}

void JsonListDocument::add(const QVariant &entry)
{
    if (!m_empty)
        m_pending += QLatin1Char(',');
    m_empty = false;
    m_pending += orkaToJson(entry);
    if (m_pending.size() > fullBuffer)
        flush();
}

void JsonListDocument::flush()
{
    writeText(withoutRawControls(m_pending).toUtf8());
    m_pending.clear();
}

void JsonListDocument::end(const CMError &error)
{
    m_pending += QLatin1Char(']');
    if (error.isError())
        m_pending += QStringLiteral(",\"error\":") + error.toJsonString();
    m_pending += QLatin1Char('}');
    flush();
    writeText("\n");
}

OrkaHash rowsHead(const CMPath &path, const Rows &page)
{
    OrkaHash head;
    head.setValue(QStringLiteral("path"), path.toEncoded());
    head.setValue(OrkaRowsRoles::RowsCount(), page.rowsCount);
    head.setValue(OrkaRowsRoles::RowsVersion(), page.rowsVersion);
    head.setValue(OrkaRowsRoles::Roles(), page.roles.toVariant());
    return head;
}

OrkaHash rowsDocument(const CMPath &path, const Rows &rows)
{
    QVariantList list;
    list.reserve(rows.rows.size());
    for (const OrkaRoles &row : rows.rows)
        list.append(row.toVariant());
    OrkaHash document = rowsHead(path, rows);
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

CMError incompleteError(const QStringList &reasons)
{
    return reasons.isEmpty() ? CMError()
                             : CMError(QStringLiteral("incomplete"), CMError::DefaultTitle(),
                                 TrString(reasons.join(QLatin1Char(' '))));
}

QVariant valueFromJson(const QString &text)
{
    // Inside an array, since a document is never a bare string.
    QJsonParseError error = {};
    const QJsonDocument document = QJsonDocument::fromJson('[' + text.toUtf8() + "\n]", &error);
    if (document.isNull() || document.array().size() != 1) {
        const QString why = document.isNull()
            ? Text::tr("%1 at character %2")
                  .arg(translatedSentence(error.errorString()),
                      Text::number(qMin(error.offset, text.size())))
            : Text::tr("it holds %Ln values", nullptr, document.array().size());
        throw wrongUsage(Text::tr("The value is not one JSON value: %1. Write an object, a "
                                  "list or a string, like '{\"string_\":\"abba\"}'.")
                             .arg(why));
    }
    return toVariant(document.array().first());
}
