#include "output/RowsOutput.h"

#include "output/Output.h"

namespace {

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

} // namespace

RowsOutput::RowsOutput(bool json, const CMPath &path, int first, int step)
    : m_json(json)
    , m_path(path)
    , m_first(first)
    , m_step(step)
    , m_table({QStringLiteral("row"), QStringLiteral("kind"), QStringLiteral("title"),
          QStringLiteral("artist"), QStringLiteral("album"), QStringLiteral("length")})
{
}

void RowsOutput::add(const Rows &page)
{
    m_rowsCount = page.rowsCount;
    if (m_json && !m_document)
        m_document =
            std::make_unique<JsonListDocument>(rowsHead(m_path, page), OrkaRowsRoles::Rows());
    for (int i = 0; i < page.rows.size(); ++i) {
        if (m_json) {
            m_document->add(page.rows.at(i).toVariant());
        } else {
            addToTable(page.rows.at(i), page.numbers.value(i, m_first + m_rows * m_step));
        }
        ++m_rows;
    }
    if (m_json) {
        m_document->flush();
    } else {
        m_table.flush(QString::number(m_rowsCount).size());
    }
}

void RowsOutput::addToTable(const OrkaRoles &row, int number)
{
    const OrkaMediaData media = row.mediaData();
    m_table.add({QString::number(number), kindOf(row), row.title().toString(),
        media.metaData().artist(), media.metaData().album(), rowLength(media)});
}

void RowsOutput::end(const CMError &error)
{
    if (m_json) {
        m_document->end(error);
        return;
    }
    if (m_rows > 0)
        m_table.write();
    writeLine(whatPart());
}

QString RowsOutput::whatPart() const
{
    if (m_rows == 0) {
        return m_rowsCount == 0
            ? QStringLiteral("There are no rows.")
            : QStringLiteral("None of %1 rows is in this range.").arg(m_rowsCount);
    }
    // A server that doesn't know how many there are says 0.
    return m_rowsCount < m_rows ? QStringLiteral("%1 rows.").arg(m_rows)
                                : QStringLiteral("%1 of %2 rows.").arg(m_rows).arg(m_rowsCount);
}
