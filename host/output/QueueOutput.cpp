#include "output/QueueOutput.h"

#include "Text.h"
#include "output/Output.h"

namespace {

constexpr int linesAtOnce = 100;
constexpr int digitsOfNumbers = 5;

QString lengthInAll(int count, long long milliseconds)
{
    return Text::tr("%Ln items, %1 in all.", nullptr, count)
        .arg(milliseconds > 0 ? lengthText(milliseconds) : QStringLiteral("0:00"));
}

} // namespace

QueueOutput::QueueOutput(Format format)
    : m_format(format)
    , m_table({Text::tr("no."), Text::tr("title"), Text::tr("artist"), Text::tr("album"),
                  Text::tr("length")},
          {3, 2, 1})
    , m_document(OrkaHash(), QStringLiteral("items"))
{
}

void QueueOutput::add(const OrkaPlayListItem &item)
{
    ++m_count;
    switch (m_format) {
    case AsTable:
        addToTable(item);
        break;
    case AsJson:
        m_document.add(item.toVariant());
        break;
    default:
        m_items.append(withoutRoles(item));
    }
}

void QueueOutput::addToTable(const OrkaPlayListItem &item)
{
    const long long length = item.durationSeconds() * 1000LL;
    m_length += qMax(0LL, length);
    m_table.add(
        {QString::number(m_count), item.title(), item.artist(), item.album(), lengthText(length)});
    if (m_count % linesAtOnce == 0)
        m_table.flush(digitsOfNumbers);
}

void QueueOutput::end(const CMError &error)
{
    switch (m_format) {
    case AsTable:
        if (m_count > 0)
            m_table.write();
        writeLine(lengthInAll(m_count, m_length));
        break;
    case AsJson:
        m_document.end(error);
        break;
    case AsM3u8:
        writeText(toM3u8(playableItems(m_items)).toUtf8());
        break;
    case AsXspf:
        writeText(toXspf(playableItems(m_items)));
        break;
    }
}
