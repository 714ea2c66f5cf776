#include "output/SearchOutput.h"

#include "Text.h"
#include "output/Output.h"
#include "output/SafeText.h"

namespace {

/// Each takes a question to the media service.
constexpr int mostNamesakes = 40;

} // namespace

SearchOutput::SearchOutput(int first, FolderOf folderOf)
    : m_first(first)
    , m_folderOf(std::move(folderOf))
    , m_trackTable({Text::tr("row"), Text::tr("title"), Text::tr("artist"), Text::tr("album"),
                       Text::tr("length")},
          {3, 2, 1})
    , m_folderTable({Text::tr("row"), Text::tr("title"), Text::tr("artist")}, {2, 1})
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
                writeLine(Text::tr("Tracks"));
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
        writeLine(Text::tr("Folders"));
        m_folderTable.write();
    }
    writeNamesakes();
    if (m_rows == 0 && m_rowsCount > 0)
        writeLine(Text::tr("None of %Ln rows is in this range.", nullptr, m_rowsCount));
    else
        writeLine(rowsOfAll(m_rows, m_rowsCount));
}

void SearchOutput::writeNamesakes() const
{
    Table table({Text::tr("row"), Text::tr("title"), Text::tr("in", "a folder")}, {2, 1});
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
        writeLine(Text::tr("Titles that are there more than once"));
        table.write();
    }
    if (!isWhole) {
        tell(Text::tr("Some titles are there more than once, and the media server doesn't "
                      "say in which folders."));
    }
}
