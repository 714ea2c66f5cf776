#include "output/SearchOutput.h"

#include "output/Output.h"
#include "output/SafeText.h"

namespace {

/// Each takes a question to the media service.
constexpr int mostNamesakes = 40;

} // namespace

SearchOutput::SearchOutput(int first, FolderOf folderOf)
    : m_first(first)
    , m_folderOf(std::move(folderOf))
    , m_trackTable({QStringLiteral("row"), QStringLiteral("title"), QStringLiteral("artist"),
                       QStringLiteral("album"), QStringLiteral("length")},
          {3, 2, 1})
    , m_folderTable(
          {QStringLiteral("row"), QStringLiteral("title"), QStringLiteral("artist")}, {2, 1})
{
}

void SearchOutput::add(const Rows &page)
{
    m_rowsCount = page.rowsCount;
    for (const OrkaRoles &row : page.rows) {
        const QString title = row.title().toString();
        const OrkaMediaData media = row.mediaData();
        const QString number = QString::number(m_first + m_rows);
        m_byTitle[title].append({m_first + m_rows, row.path()});
        if (row.type() == OrkaRolesType::Container) {
            m_folderTable.add({number, title, media.metaData().artist()});
            ++m_folders;
        } else {
            if (m_rows == m_folders)
                writeLine(QStringLiteral("Tracks"));
            const OrkaList<OrkaResource> resources = media.resources();
            m_trackTable.add({number, title, media.metaData().artist(), media.metaData().album(),
                resources.isEmpty() ? QString() : lengthText(resources.first().duration())});
        }
        ++m_rows;
    }
    if (m_rows > m_folders)
        m_trackTable.flush(QString::number(m_rowsCount).size());
}

void SearchOutput::end()
{
    if (m_rows > m_folders)
        m_trackTable.write();
    if (m_folders > 0) {
        writeLine(QStringLiteral("Folders"));
        m_folderTable.write();
    }
    writeNamesakes();
    if (m_rows == 0 && m_rowsCount > 0)
        writeLine(QStringLiteral("None of %1 rows is in this range.").arg(m_rowsCount));
    else
        writeLine(m_rowsCount < m_rows
                ? QStringLiteral("%1 rows.").arg(m_rows)
                : QStringLiteral("%1 of %2 rows.").arg(m_rows).arg(m_rowsCount));
}

void SearchOutput::writeNamesakes() const
{
    Table table({QStringLiteral("row"), QStringLiteral("title"), QStringLiteral("in")}, {2, 1});
    int told = 0;
    bool isWhole = true;
    for (const auto &[title, found] : m_byTitle) {
        for (int i = 0; isWhole && found.size() > 1 && i < found.size() && told < mostNamesakes;
             ++i) {
            const QString folder = m_folderOf(found.at(i).path);
            isWhole = !folder.isNull();
            if (isWhole)
                table.add({QString::number(found.at(i).number), title, folder});
            told += isWhole ? 1 : 0;
        }
    }
    if (told > 0) {
        writeLine(QStringLiteral("Titles that are there more than once"));
        table.write();
    }
    if (!isWhole) {
        tell(QStringLiteral("Some titles are there more than once, and the media server doesn't "
                            "say in which folders."));
    }
}
