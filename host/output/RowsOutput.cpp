#include "output/RowsOutput.h"

#include "Text.h"
#include "output/Output.h"

namespace {

QString kindOf(const OrkaRoles &node)
{
    if (!node.contains(OrkaRoles::Type()))
        return QString(); // it may be anything
    return node.path().param(QStringLiteral("itemType")) == QLatin1String("server")
        ? Text::tr("server")
        : kindName(node.type());
}

OrkaResource resourceOf(const OrkaMediaData &media)
{
    const OrkaList<OrkaResource> resources = media.resources();
    return resources.isEmpty() ? OrkaResource() : resources.first();
}

QStringList heading(bool isLong)
{
    const QStringList usual = {Text::tr("row"), Text::tr("kind"), Text::tr("title"),
        Text::tr("artist"), Text::tr("album"), Text::tr("length")};
    return isLong ? usual
            + QStringList{Text::tr("genre"), Text::tr("date"), Text::tr("format"),
                Text::tr("kbit/s"), Text::tr("path")}
                  : usual;
}

/// What the long table has more, in the heading's order.
QStringList moreOf(const OrkaRoles &row)
{
    const OrkaMediaData media = row.mediaData();
    const OrkaMetaData about = media.metaData();
    const OrkaResource resource = resourceOf(media);
    const int bitsPerSecond = resource.value(OrkaResource::BitRate()).toInt();
    return {about.value(OrkaMetaData::Genre()).toString(),
        dateText(about.value(OrkaMetaData::Date()).toLongLong()),
        resource.value(OrkaResource::MimeType()).toString(),
        bitsPerSecond > 0 ? Text::number(bitsPerSecond / 1000) : QString(), row.path().toEncoded()};
}

} // namespace

RowsOutput::RowsOutput(bool json, const CMPath &path, int first, int step, bool isLong)
    : m_json(json)
    , m_path(path)
    , m_first(first)
    , m_step(step)
    , m_isLong(isLong)
    , m_table(heading(isLong), isLong ? QVector<int>{10, 6, 4, 3, 2} : QVector<int>{4, 3, 2})
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
    QStringList cells = {QString::number(number), kindOf(row), row.title().toString(),
        media.metaData().artist(), media.metaData().album(),
        lengthText(resourceOf(media).duration())};
    if (m_isLong)
        cells += moreOf(row);
    m_table.add(cells, row.type() == OrkaRolesType::Container);
}

void RowsOutput::end(const CMError &error, int ofOtherKinds)
{
    if (m_json) {
        m_document->end(error);
        return;
    }
    if (m_rows > 0)
        m_table.write();
    writeLine(whatPart(ofOtherKinds));
}

QString RowsOutput::whatPart(int ofOtherKinds) const
{
    if (m_rows == 0 && ofOtherKinds > 0)
        return Text::tr("None of %Ln rows is of this kind.", nullptr, ofOtherKinds);
    if (m_rows == 0) {
        return m_rowsCount == 0
            ? Text::tr("There are no rows.")
            : Text::tr("None of %Ln rows is in this range.", nullptr, m_rowsCount);
    }
    return rowsOfAll(m_rows, m_rowsCount);
}
