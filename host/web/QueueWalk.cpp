#include "web/QueueWalk.h"

#include "Failure.h"
#include "Text.h"
#include "output/SafeText.h"
#include "tree/PlayableRow.h"
#include "tree/RowsReader.h"
#include "tree/ServerList.h"
#include "web/NodeApi.h"

#include <api/core/orka.h>

#include <QDBusPendingCallWatcher>

namespace {

constexpr int smallPage = 50;
constexpr int smallestPage = 5;
constexpr int mostItems = 20'000;
constexpr int mostFolders = 5'000;
constexpr int mostRows = 200'000;
constexpr qint64 mostCharacters = 32'000'000;
constexpr int mostProblems = 10;
constexpr int mostNamed = 5;
constexpr int longestTitle = 100; // characters
// Milliseconds:
constexpr qint64 longest = 60'000;
constexpr qint64 longestRefusal = 3'000;

/// By its path alone, which says "container" of films and pictures, too.
bool isFolder(const CMPath &path)
{
    return path.hasParam(QStringLiteral("search")) || path.base().count(QLatin1Char('/')) < 2;
}

qint64 charactersOf(const OrkaPlayListItem &item)
{
    return item.orkaRoles().size() + item.title().size() + item.artist().size()
        + item.album().size() + item.url().size() + item.artworkUrl().size();
}

} // namespace

QueueWalk::QueueWalk(
    LiveChain &chain, CarriedAddresses &carried, const CMPath &path, IsWanted isWanted, Done done)
    : QObject(&chain)
    , m_chain(chain)
    , m_carried(carried)
    , m_isWanted(std::move(isWanted))
    , m_done(std::move(done))
{
    m_clock.start();
    if (isFolder(path)) {
        OrkaRoles folder;
        folder.setPath(path);
        folder.setType(OrkaRolesType::Container);
        takeNode(folder);
    } else {
        readNode(path);
    }
}

void QueueWalk::readNode(const CMPath &path)
{
    m_chain.data(
        path, OrkaRoles::all(), [this, path](const CMError &error, const QVariantList &values) {
            OrkaRoles node = recordOf(OrkaRoles::all(), values);
            node.setPath(path);
            if (error.isError()) {
                finish(error);
            } else {
                takeNode(node);
            }
        });
}

void QueueWalk::takeNode(const OrkaRoles &node)
{
    const PlayableKind kind = playableKind(node);
    if (node.type() == OrkaRolesType::Container) {
        m_work.push_back({node});
        step();
    } else if (kind == PlayableKind::Audio || kind == PlayableKind::Video) {
        add({node});
        finish({});
    } else {
        finish(Failure(WrongUsage, QStringLiteral("notPlayable"),
            QStringLiteral("%1 is neither music nor a film, so it can't be played.")
                .arg(quoted(node.title().toString())))
                   .error());
    }
}

bool QueueWalk::isAtLimit() const
{
    return m_items.size() >= mostItems || m_folders.size() >= mostFolders || m_rows >= mostRows
        || m_characters >= mostCharacters || m_clock.elapsed() > longest;
}

void QueueWalk::step()
{
    while (!m_work.empty()) {
        const Work work = m_work.front();
        if (isAtLimit()) {
            addProblem(QStringLiteral("A queue ends after %1 tracks, %2 folders, %3 rows, %4 "
                                      "characters or a minute.")
                           .arg(Text::number(mostItems), Text::number(mostFolders),
                               Text::number(mostRows), Text::number(mostCharacters)));
            finish({});
            return;
        }
        m_work.pop_front();
        if (playableKind(work.row) == PlayableKind::Audio) {
            if (!add(work))
                return;
        } else if (work.row.type() == OrkaRolesType::Container) {
            const QString path = work.row.path().toEncoded();
            if (work.first == 0 && work.page == pageSize && m_folders.contains(path))
                continue;
            m_folders.insert(path);
            Work folder = work;
            if (!folder.seen)
                folder.seen = std::make_shared<QSet<QString>>();
            readFolder(folder);
            return;
        }
    }
    finish(m_items.isEmpty() ? m_error : CMError());
}

void QueueWalk::readFolder(const Work &folder)
{
    if (!m_isWanted()) {
        m_items.clear();
        finish(Failure(Missing, QStringLiteral("left"), QStringLiteral("The client has left."))
                   .error());
        return;
    }
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
    const auto page = std::make_shared<KnownFiles::Page>(
        KnownFiles::Page{folder.row.path(), folder.first, rows.size()});
    std::deque<Work> taken;
    QSet<QString> paths;
    int fresh = 0; // rows that come again, on another page, stand in the place of others
    for (const OrkaRoles &row : rows) {
        const QString path = row.path().toEncoded();
        fresh += folder.seen->contains(path) ? 0 : 1;
        paths.insert(path);
        taken.push_back({row, 0, pageSize, 0, page});
    }
    folder.seen->unite(paths);
    m_rows += rows.size();
    folder.first += rows.size();
    folder.came += fresh;
    const bool isFull = rows.size() >= folder.page && fresh > 0;
    const int counted = std::max(answer.rowsCount(), 0); // below 0: more than it can count
    if (!rows.isEmpty() && mayFollow(counted, folder.first, isFull))
        taken.push_back(folder);
    else
        tellLacking(folder.row, counted - folder.came);
    m_work.insert(m_work.begin(), taken.begin(), taken.end());
}

void QueueWalk::tellLacking(const OrkaRoles &folder, int lacking)
{
    if (lacking <= 0)
        return;
    const QString title = folder.title().toString();
    addProblem(
        Text::tr("The media server counts %Ln more rows in %1 than it gives.", nullptr, lacking)
            .arg(title.isEmpty() ? QStringLiteral("this folder") : quoted(title)));
}

void QueueWalk::addProblem(const QString &sentence)
{
    if (m_problems.size() < mostProblems && !m_problems.contains(sentence))
        m_problems.append(sentence);
}

/// False where it goes on when the sizes of some files have come.
bool QueueWalk::add(const Work &track)
{
    const OrkaPlayListItem item = itemOfRow(track.row);
    if (!isPlayableUrl(item.url())) {
        m_withoutAddress.append(shortened(track.row.title().toString(), longestTitle));
        return true;
    }
    const KnownFiles::PagePointer wanted = m_known.wanted(item, track.row.path(), track.rows);
    if (wanted) {
        askSizes(track, wanted);
        return false;
    }
    m_carried.note(track.row);
    if (m_known.add(item, track.row.path(), track.rows)) {
        m_items.append(item);
        m_characters += charactersOf(item);
    }
    return true;
}

void QueueWalk::askSizes(const Work &track, const KnownFiles::PagePointer &page)
{
    page->asked = true;
    m_work.push_front(track);
    const QString server = m_chain.serviceObject(page->folder);
    const auto limit = m_chain.options().timeout.count();
    const QDBusMessage question = KnownFiles::sizesCall(server, *page);
    auto *call =
        new QDBusPendingCallWatcher(orkaDBusConnection().asyncCall(question, int(limit)), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, page] {
        call->deleteLater();
        KnownFiles::takeSizes(ServiceCalls::answerOf(call->reply()), page.get());
        step();
    });
}

void QueueWalk::tellWithoutAddress()
{
    const int count = m_withoutAddress.size();
    if (count == 0)
        return;
    QStringList named;
    for (const QString &title : m_withoutAddress.mid(0, mostNamed))
        named.append(quoted(title));
    if (count > mostNamed)
        named.append(Text::tr("%Ln more", nullptr, count - mostNamed));
    addProblem(QStringLiteral("The media server gives no address for these tracks, so nobody can "
                              "play them: %1.")
                   .arg(named.join(QStringLiteral(", "))));
}

void QueueWalk::finish(const CMError &error)
{
    deleteLater();
    tellWithoutAddress();
    std::exchange(m_done, nullptr)(error, m_items, m_problems);
}
