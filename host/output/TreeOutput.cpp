#include "output/TreeOutput.h"

#include "Text.h"
#include "output/Output.h"
#include "output/SafeText.h"
#include "output/TextOutput.h"

namespace {

constexpr int longestTitle = 300;

} // namespace

TreeOutput::TreeOutput(bool json, const CMPath &path)
    : m_json(json)
    , m_path(path)
{
}

void TreeOutput::add(const OrkaRoles &row, int depth)
{
    const bool isFolder = row.type() == OrkaRolesType::Container;
    ++(isFolder ? m_folders : m_others);
    if (m_json) {
        close(size_t(depth) + 1);
        if (m_open.size() == size_t(depth))
            m_open.emplace_back();
        m_open.back().append(row.toVariant());
        return;
    }
    const QString title = shortened(safeText(row.title().toString()), longestTitle);
    writeLine(QString(2 + 2 * depth, QLatin1Char(' ')) + title
        + (isFolder ? QStringLiteral("/") : QString()));
}

/// Puts what is below into the folders above, until so many levels are open.
void TreeOutput::close(size_t depth)
{
    while (m_open.size() > depth) {
        const QVariantList rows = m_open.back();
        m_open.pop_back();
        OrkaHash folder = OrkaHash::fromVariant(m_open.back().last());
        folder.setValue(OrkaRowsRoles::Rows(), rows);
        m_open.back().last() = folder.toVariant();
    }
}

void TreeOutput::end(const CMError &error)
{
    if (m_json) {
        close(1);
        OrkaHash document;
        document.setValue(OrkaRoles::Path(), m_path.toEncoded());
        document.setValue(OrkaRowsRoles::Rows(), m_open.front());
        if (error.isError())
            document.setValue(QStringLiteral("error"), error.toVariant());
        writeJson(document);
    } else {
        writeLine(Text::tr("%1, %2.").arg(Text::tr("%Ln folders", nullptr, m_folders),
            Text::tr("%Ln others", nullptr, m_others)));
    }
}
