#include "output/TextOutput.h"

#include "output/Output.h"
#include "output/SafeText.h"

#include <QDateTime>

namespace {

constexpr int widestColumn = 40;
constexpr int longestCell = 300;

QString kindName(int type)
{
    switch (type) {
    case OrkaRolesType::Container:
        return QStringLiteral("folder");
    case OrkaRolesType::Audio:
        return QStringLiteral("track");
    case OrkaRolesType::Video:
        return QStringLiteral("video");
    case OrkaRolesType::Image:
        return QStringLiteral("image");
    case OrkaRolesType::Search:
        return QStringLiteral("search");
    default:
        return QStringLiteral("item");
    }
}

QString kindOf(const OrkaRoles &node)
{
    if (!node.contains(OrkaRoles::Type()))
        return QString(); // it may be anything
    return node.path().param(QStringLiteral("itemType")) == QLatin1String("server")
        ? QStringLiteral("server")
        : kindName(node.type());
}

QString rowLength(const OrkaMediaData &media)
{
    const OrkaList<OrkaResource> resources = media.resources();
    return resources.isEmpty() ? QString() : lengthText(resources.first().duration());
}

/// A number that has a name or a unit, as people write it; anything else as text.
QString valueText(const QString &key, const QVariant &value)
{
    if (key == OrkaRoles::Type())
        return kindName(value.toInt());
    if (key == OrkaMetaData::Date())
        return QDateTime::fromMSecsSinceEpoch(value.toLongLong()).toString(Qt::ISODate);
    if (key == OrkaResource::Duration())
        return QStringLiteral("%1 ms").arg(value.toLongLong());
    if (value.userType() == qMetaTypeId<CMPath>())
        return value.value<CMPath>().toEncoded();
    if (value.userType() == qMetaTypeId<TrString>())
        return value.value<TrString>().toString();
    return value.userType() == QMetaType::QString ? value.toString() : orkaToJson(value);
}

/// What part of the whole the rows are.
QString whatPart(const Rows &rows)
{
    if (rows.rows.isEmpty()) {
        return rows.rowsCount == 0
            ? QStringLiteral("There are no rows.")
            : QStringLiteral("None of %1 rows is in this range.").arg(rows.rowsCount);
    }
    // A server that doesn't know how many there are says 0.
    return rows.rowsCount < rows.rows.size()
        ? QStringLiteral("%1 rows.").arg(rows.rows.size())
        : QStringLiteral("%1 of %2 rows.").arg(rows.rows.size()).arg(rows.rowsCount);
}

Table rowsTable(const QVector<OrkaRoles> &rows, long long first, int step)
{
    Table table({QStringLiteral("row"), QStringLiteral("kind"), QStringLiteral("title"),
        QStringLiteral("artist"), QStringLiteral("album"), QStringLiteral("length")});
    long long number = first;
    for (const OrkaRoles &row : rows) {
        const OrkaMediaData media = row.mediaData();
        table.add({QString::number(number), kindOf(row), row.title().toString(),
            media.metaData().artist(), media.metaData().album(), rowLength(media)});
        number += step;
    }
    return table;
}

bool isList(const QVariant &value)
{
    return value.userType() == QMetaType::QVariantList
        || value.userType() == QMetaType::QStringList;
}

void writeEntry(const QString &indent, const QString &key, const QVariant &value)
{
    const OrkaHash record = OrkaHash::fromVariant(value);
    const QString head = indent + safeText(key) + QLatin1Char(':');
    if (!record.isEmpty()) {
        writeLine(head);
        for (const QString &name : record.keys())
            writeEntry(indent + QStringLiteral("  "), name, record.value(name));
    } else if (isList(value)) {
        const QVariantList list = value.toList();
        for (int i = 0; i < list.size(); ++i)
            writeEntry(indent, QStringLiteral("%1 %2").arg(key).arg(i), list.at(i));
    } else {
        writeLine(head + QLatin1Char(' ') + safeText(valueText(key, value)));
    }
}

} // namespace

Table::Table(const QStringList &heading)
    : m_lines{heading}
{
}

void Table::add(const QStringList &cells)
{
    QStringList line;
    for (const QString &cell : cells)
        line.append(shortened(safeText(cell), longestCell));
    m_lines.append(line);
}

void Table::write() const
{
    QVector<int> widths(m_lines.first().size(), 0);
    for (const QStringList &line : m_lines) {
        for (int i = 0; i < line.size(); ++i)
            widths[i] = qMax(widths[i], qMin(displayWidth(line.at(i)), widestColumn));
    }
    for (const QStringList &line : m_lines) {
        QString text;
        for (int i = 0; i < line.size(); ++i)
            text += padded(line.at(i), widths.at(i)) + QStringLiteral("  ");
        writeLine(QStringLiteral("  ") + text.trimmed());
    }
}

QString lengthText(long long milliseconds)
{
    if (milliseconds <= 0)
        return QString();
    const long long seconds = (milliseconds + 500) / 1000;
    const QLatin1Char zero('0');
    const QString tail = QStringLiteral(":%1").arg(seconds % 60, 2, 10, zero);
    return seconds < 3600 ? QString::number(seconds / 60) + tail
                          : QStringLiteral("%1:%2%3")
                                .arg(seconds / 3600)
                                .arg(seconds / 60 % 60, 2, 10, zero)
                                .arg(tail);
}

void writeRows(const Rows &rows, int first, int step)
{
    if (!rows.rows.isEmpty())
        rowsTable(rows.rows, first, step).write();
    writeLine(whatPart(rows));
}

void writeRoles(const OrkaHash &roles)
{
    for (const QString &key : roles.keys())
        writeEntry(QString(), key, roles.value(key));
}

void writeValue(const QVariant &value)
{
    const OrkaHash record = OrkaHash::fromVariant(value);
    if (!record.isEmpty()) {
        writeRoles(record);
    } else if (isList(value)) {
        writeEntry(QString(), QStringLiteral("value"), value);
    } else {
        writeLine(safeText(valueText(QString(), value)));
    }
}

void writeQueue(const QVector<OrkaPlayListItem> &items)
{
    Table table({QStringLiteral("no."), QStringLiteral("title"), QStringLiteral("artist"),
        QStringLiteral("album"), QStringLiteral("length")});
    long long total = 0;
    for (int i = 0; i < items.size(); ++i) {
        const OrkaPlayListItem &item = items.at(i);
        const long long length = item.durationSeconds() * 1000LL;
        total += qMax(0LL, length);
        table.add({QString::number(i + 1), item.title(), item.artist(), item.album(),
            lengthText(length)});
    }
    if (!items.isEmpty())
        table.write();
    writeLine(QStringLiteral("%1, %2 in all.")
                  .arg(items.size() == 1 ? QStringLiteral("1 track")
                                         : QStringLiteral("%1 tracks").arg(items.size()))
                  .arg(total > 0 ? lengthText(total) : QStringLiteral("0:00")));
}
