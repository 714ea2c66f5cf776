#include "web/QueueWalk.h"

#include "Text.h"
#include "output/SafeText.h"
#include "tree/PlayableRow.h"
#include "tree/ServerList.h"
#include "web/NodeApi.h"

namespace {

constexpr int smallPage = 50;
constexpr int smallestPage = 5;
constexpr int mostItems = 20'000;
constexpr int mostFolders = 5'000;
constexpr int mostProblems = 10;
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
            finish(error);
        });
}

void QueueWalk::step()
{
    while (!m_work.empty()) {
        const Work work = m_work.front();
        if (m_items.size() >= mostItems || m_folders.size() >= mostFolders
            || m_clock.elapsed() > longest) {
            addProblem(QStringLiteral("A queue ends after %1 tracks, %2 folders or a minute.")
                           .arg(Text::number(mostItems), Text::number(mostFolders)));
            finish({});
            return;
        }
        m_work.pop_front();
        if (playableKind(work.row) == PlayableKind::Audio) {
            add(work.row);
        } else if (work.row.type() == OrkaRolesType::Container) {
            const QString path = work.row.path().toEncoded();
            if (work.first == 0 && work.page == pageSize && m_folders.contains(path))
                continue;
            m_folders.insert(path);
            readFolder(work);
            return;
        }
    }
    finish(m_items.isEmpty() ? m_error : CMError());
}

void QueueWalk::readFolder(const Work &folder)
{
    const qint64 start = m_clock.elapsed();
    m_chain.rows(folder.row.path(), folder.first, folder.first + folder.page - 1, OrkaRoles::all(),
        [this, folder, start](const CMError &error, const OrkaRowsRoles &answer) {
            if (!error.isError()) {
                take(folder, answer);
            } else {
                readSmaller(folder, error);
                if (m_clock.elapsed() - start > longestRefusal) {
                    askServer(folder.row.path(), error);
                    return;
                }
            }
            step();
        });
}

void QueueWalk::readSmaller(Work folder, const CMError &error)
{
    if (folder.page == smallestPage) {
        fail(error);
        return;
    }
    const bool isSilent = error.name() == QLatin1String("noAnswer");
    folder.page = folder.page == smallPage || isSilent ? smallestPage : smallPage;
    m_work.push_front(folder);
}

/// Behind a folder that is silent: its server may be, too, and would be so again.
void QueueWalk::askServer(const CMPath &path, const CMError &silence)
{
    const CMPath server(path.prefix(), ServerList::serverBase(path));
    m_chain.rows(server, 0, 0, {OrkaRoles::Path()},
        [this, silence](const CMError &error, const OrkaRowsRoles &) {
            if (error.isError()) {
                m_work.clear();
                fail(silence);
            }
            step();
        });
}

void QueueWalk::fail(const CMError &error)
{
    addProblem(error.message().toString());
    m_error = error;
}

void QueueWalk::take(Work folder, const OrkaRowsRoles &answer)
{
    const QVector<OrkaRoles> rows = rowsOf(answer, OrkaRoles::all()).rows;
    std::deque<Work> taken;
    for (const OrkaRoles &row : rows) {
        // One that comes again stands in the place of another.
        const int before = m_rows.size();
        m_rows.insert(row.path().toEncoded());
        folder.lacking += folder.first > 0 && m_rows.size() == before ? 1 : 0;
        taken.push_back({row});
    }
    folder.first += rows.size();
    if (!rows.isEmpty() && folder.first < answer.rowsCount()) {
        taken.push_back(folder);
    } else {
        folder.lacking += std::max(0, answer.rowsCount() - folder.first);
        tellLacking(folder);
    }
    m_work.insert(m_work.begin(), taken.begin(), taken.end());
}

void QueueWalk::tellLacking(const Work &folder)
{
    if (folder.lacking == 0)
        return;
    const QString title = folder.row.title().toString();
    addProblem(Text::tr(
        "The media server counts %Ln more rows in %1 than it gives.", nullptr, folder.lacking)
                   .arg(title.isEmpty() ? QStringLiteral("this folder") : quoted(title)));
}

void QueueWalk::addProblem(const QString &sentence)
{
    if (m_problems.size() < mostProblems && !m_problems.contains(sentence))
        m_problems.append(sentence);
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

void QueueWalk::finish(const CMError &error)
{
    deleteLater();
    std::exchange(m_done, nullptr)(error, m_items, m_problems);
}
