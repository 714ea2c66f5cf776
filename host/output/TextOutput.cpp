#include "output/TextOutput.h"

#include "Text.h"
#include "output/Output.h"
#include "output/SafeText.h"

#include <QDateTime>

#include <numeric>
#include <unistd.h>

namespace {

constexpr int widestColumn = 40;
constexpr int narrowColumn = 12;
constexpr int narrowestColumn = 8; // where the table then fits
constexpr int longestCell = 300;
constexpr int enoughLines = 50;

/// A number that has a name or a unit, as people write it; anything else as text.
QString valueText(const QString &key, const QVariant &value)
{
    if (key == OrkaRoles::Type())
        return kindName(value.toInt());
    if (key == OrkaMetaData::Date())
        return dateText(value.toLongLong());
    if (key == OrkaResource::Duration())
        return lengthText(value.toLongLong());
    if (value.userType() == qMetaTypeId<CMPath>())
        return value.value<CMPath>().toEncoded();
    if (value.userType() == qMetaTypeId<TrString>())
        return value.value<TrString>().toString();
    return value.userType() == QMetaType::QString ? value.toString() : orkaToJson(value);
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
        const QString text = valueText(key, value);
        if (!text.isEmpty())
            writeLine(head + QLatin1Char(' ') + safeText(text));
    }
}

} // namespace

QString kindName(int type)
{
    switch (type) {
    case OrkaRolesType::Container:
        return Text::tr("folder");
    case OrkaRolesType::Audio:
        return Text::tr("track");
    case OrkaRolesType::Video:
        return Text::tr("video");
    case OrkaRolesType::Image:
        return Text::tr("image");
    case OrkaRolesType::Search:
        return Text::tr("search");
    default:
        return Text::tr("item");
    }
}

Table::Table(const QStringList &heading, const QVector<int> &leastUseful)
    : m_lines{{heading, Terminal::Style::Faint}}
    , m_leastUseful(leastUseful)
    , m_columns(Terminal::columns(STDOUT_FILENO))
{
}

void Table::add(const QStringList &cells, bool isStrong)
{
    QStringList safe;
    for (const QString &cell : cells)
        safe.append(shortened(safeText(cell), longestCell));
    m_lines.append({safe, isStrong ? Terminal::Style::Strong : Terminal::Style::Plain});
}

void Table::flush(int firstColumn)
{
    if (m_widths.isEmpty() && m_lines.size() <= enoughLines)
        return;
    m_least = firstColumn;
    write();
}

void Table::measure()
{
    const int widest = m_columns > 0 ? longestCell : widestColumn;
    m_widths.fill(0, m_lines.first().cells.size());
    m_widths[0] = m_least;
    for (const Line &line : qAsConst(m_lines)) {
        for (int i = 0; i < line.cells.size(); ++i)
            m_widths[i] = qMax(m_widths[i], qMin(displayWidth(line.cells.at(i)), widest));
    }
    if (m_columns == 0)
        return;
    const int tooWide =
        std::accumulate(m_widths.begin(), m_widths.end(), 2 * m_widths.size()) - m_columns;
    m_spare = qMax(0, -tooWide);
    const int stillTooWide = narrow(tooWide, narrowColumn);
    const QVector<int> legible = m_widths;
    if (narrow(stillTooWide, narrowestColumn) > 0)
        m_widths = legible;
}

int Table::narrow(int tooWide, int least)
{
    for (const int column : qAsConst(m_leastUseful)) {
        const int less = qBound(0, tooWide, qMax(0, m_widths[column] - least));
        m_widths[column] -= less;
        tooWide -= less;
    }
    return tooWide;
}

QString Table::textOf(const Line &line) const
{
    QString text;
    int spare = m_spare;
    for (int i = 0; i < line.cells.size(); ++i) {
        const QString &cell = line.cells.at(i);
        const int width = m_widths.at(i);
        const int more = qBound(0, displayWidth(cell) - width, spare);
        spare -= more;
        text += padded(m_leastUseful.contains(i) && m_columns > 0
                        ? shortenedInTheMiddle(cell, width + more)
                        : cell,
                    width)
            + QStringLiteral("  ");
    }
    return QStringLiteral("  ") + Terminal::styled(text.trimmed(), line.style) + QLatin1Char('\n');
}

void Table::write()
{
    if (m_widths.isEmpty())
        measure();
    QString text;
    for (const Line &line : qAsConst(m_lines))
        text += textOf(line);
    m_lines.clear();
    writeText(text.toUtf8());
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

QString dateText(long long milliseconds)
{
    const QDateTime date = QDateTime::fromMSecsSinceEpoch(milliseconds);
    if (milliseconds == 0)
        return QString();
    return date.time() == QTime(0, 0)
        ? date.toString(Text::tr("yyyy-MM-dd", "as QDateTime::toString() writes it"))
        : date.toString(Text::tr("yyyy-MM-dd'T'HH:mm:ss", "as QDateTime::toString() writes it"));
}

QString rowsOfAll(int rows, int count)
{
    return count < rows ? Text::tr("%Ln rows.", nullptr, rows)
                        : Text::tr("%1 of %Ln rows.", nullptr, count).arg(Text::number(rows));
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
