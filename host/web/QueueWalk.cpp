#include "web/QueueWalk.h"

#include "tree/PlayableRow.h"
#include "tree/ServerList.h"
#include "web/NodeApi.h"

namespace {

constexpr int pageSize = 500;
constexpr int mostItems = 20'000;
constexpr int mostFolders = 5'000;
// Milliseconds:
constexpr qint64 longest = 60'000;
constexpr qint64 longestRefusal = 3'000;

} // namespace

QueueWalk::QueueWalk(LiveChain &chain, CarriedAddresses &carried, const CMPath &path, Done done)
    : QObject(&chain)
    , m_chain(chain)
    , m_carried(carried)
    , m_done(std::move(done))
{
    m_clock.start();
    if (path.param(QStringLiteral("itemType")) == QLatin1String("track")) {
        readTrack(path);
        return;
    }
    OrkaRoles folder;
    folder.setPath(path);
    folder.setType(OrkaRolesType::Container);
    m_work.push_back({folder});
    step();
}

void QueueWalk::readTrack(const CMPath &path)
{
    m_chain.data(
        path, OrkaRoles::all(), [this, path](const CMError &error, const QVariantList &values) {
            OrkaRoles track = recordOf(OrkaRoles::all(), values);
            track.setPath(path);
            if (!error.isError())
                add(track);
            finish(error, true);
        });
}

void QueueWalk::step()
{
    while (!m_work.empty()) {
        const Work work = m_work.front();
        if (m_items.size() >= mostItems || m_folders.size() >= mostFolders
            || m_clock.elapsed() > longest) {
            finish({}, false);
            return;
        }
        m_work.pop_front();
        if (playableKind(work.row) == PlayableKind::Audio) {
            add(work.row);
        } else if (work.row.type() == OrkaRolesType::Container) {
            const QString path = work.row.path().toEncoded();
            if (work.first == 0 && m_folders.contains(path))
                continue;
            m_folders.insert(path);
            readFolder(work);
            return;
        }
    }
    finish(m_items.isEmpty() ? m_error : CMError(), !m_isShort);
}

void QueueWalk::readFolder(const Work &folder)
{
    const qint64 start = m_clock.elapsed();
    m_chain.rows(folder.row.path(), folder.first, folder.first + pageSize - 1, OrkaRoles::all(),
        [this, folder, start](const CMError &error, const OrkaRowsRoles &answer) {
            if (!error.isError()) {
                take(folder, answer);
            } else {
                m_isShort = true;
                m_error = error;
                if (m_clock.elapsed() - start > longestRefusal) {
                    askServer(folder.row.path());
                    return;
                }
            }
            step();
        });
}

/// Behind a folder that is silent: its server may be, too, and would be so again.
void QueueWalk::askServer(const CMPath &path)
{
    const CMPath server(path.prefix(), ServerList::serverBase(path));
    m_chain.rows(
        server, 0, 0, {OrkaRoles::Path()}, [this](const CMError &error, const OrkaRowsRoles &) {
            if (error.isError())
                m_work.clear();
            step();
        });
}

void QueueWalk::take(const Work &folder, const OrkaRowsRoles &answer)
{
    const QVector<OrkaRoles> rows = rowsOf(answer, OrkaRoles::all()).rows;
    const int next = folder.first + rows.size();
    if (!rows.isEmpty() && next < answer.rowsCount())
        m_work.push_front({folder.row, next});
    m_isShort = m_isShort || (rows.isEmpty() && next < answer.rowsCount());
    for (int i = rows.size() - 1; i >= 0; --i) {
        // One that comes again stands in the place of another.
        const int before = m_rows.size();
        m_rows.insert(rows.at(i).path().toEncoded());
        m_isShort = m_isShort || (folder.first > 0 && m_rows.size() == before);
        m_work.push_front({rows.at(i)});
    }
}

void QueueWalk::add(const OrkaRoles &track)
{
    m_carried.note(track);
    const OrkaPlayListItem item = itemOfRow(track);
    if (!isPlayableUrl(item.url()) || m_urls.contains(item.url()))
        return;
    m_urls.insert(item.url());
    m_items.append(item);
}

void QueueWalk::finish(const CMError &error, bool isComplete)
{
    deleteLater();
    std::exchange(m_done, nullptr)(error, m_items, isComplete);
}
