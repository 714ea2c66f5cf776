#include "tree/RowPages.h"

#include "Failure.h"
#include "Text.h"
#include "chain/Session.h"

#include <QElapsedTimer>

#include <algorithm>

/// A page on its way.
struct RowPages::Request
{
    Request(const CMReply<OrkaRowsRoles> &itsReply, int lastRow)
        : last(lastRow)
        , reply(itsReply)
        , watcher(itsReply)
    {
        clock.start();
        // The page may be left lying for long before it is taken.
        QObject::connect(&watcher, &CMReplyWatcherObject::finishedSignal, &watcher,
            [this] { milliseconds = clock.elapsed(); });
    }

    const int last;
    const CMReply<OrkaRowsRoles> reply;
    CMReplyWatcherObject watcher;
    QElapsedTimer clock;
    qint64 milliseconds = -1;
};

RowPages::RowPages(Session &session, const CMPath &path, RowRange range, const QStringList &roles,
    std::shared_ptr<PageSize> size, bool quiet)
    : m_session(session)
    , m_path(path)
    , m_range(range)
    , m_roles(roles)
    , m_size(size ? std::move(size) : std::make_shared<PageSize>())
    , m_quiet(quiet)
    , m_next(range.first)
{
    ask();
}

RowPages::~RowPages() = default;

int RowPages::lastOfPage() const
{
    const int rows = m_size->rows();
    return m_range.last - m_next < rows ? m_range.last : m_next + rows - 1;
}

void RowPages::ask()
{
    const int last = lastOfPage();
    m_request = std::make_unique<Request>(Session::askRows(m_path, m_next, last, m_roles), last);
}

Rows RowPages::take()
{
    for (;;) {
        const QString doing = m_quiet ? QString() : Text::tr("Reading rows from %1").arg(m_next);
        try {
            return rowsOf(m_session.rowsOf(m_request->reply, m_path, m_next, doing), m_roles);
        } catch (const Failure &failure) {
            if (!shrinkAfter(failure))
                throw named(failure);
        }
        ask();
    }
}

/// A media server that gave rows a moment ago isn't switched off.
Failure RowPages::named(const Failure &failure) const
{
    const bool isRestSilent =
        failure.status() == NoAnswer && m_given > 0 && m_session.givesRow(m_path, m_range.first);
    return isRestSilent ? m_session.silenceOf(m_path) : failure;
}

/// One row is asked for first: a folder that hangs would take as long again with each size.
bool RowPages::shrinkAfter(const Failure &failure)
{
    const bool isRefused = failure.status() == AnsweredWithError;
    if ((!isRefused && failure.status() != NoAnswer) || !m_session.hasTimeLeft())
        return false;
    const bool isSearch = m_path.hasParam(QStringLiteral("query"));
    return (isSearch ? isRefused || m_given > 0 : m_session.givesRow(m_path, m_next))
        && m_size->shrink();
}

void RowPages::leaveOutKnown(Rows *page)
{
    QVector<OrkaRoles> &rows = page->rows;
    QVector<CMPath> paths;
    paths.reserve(rows.size());
    for (const OrkaRoles &row : qAsConst(rows))
        paths.append(row.path());
    const auto isNew = [this](const CMPath &path) {
        return path.isEmpty() || !m_pathsBefore.contains(path);
    };
    // The same page again: the server doesn't look at the position.
    const bool isSamePage = !paths.isEmpty() && !paths.first().isEmpty() && !m_pathsBefore.isEmpty()
        && paths.first() == m_pathsBefore.first();
    const auto firstNew =
        isSamePage ? paths.cend() : std::find_if(paths.cbegin(), paths.cend(), isNew);
    rows.remove(0, int(firstNew - paths.cbegin()));
    m_pathsBefore = paths;
}

bool RowPages::next(Rows *page)
{
    if (!m_request)
        return false;
    *page = take();
    const int asked = m_request->last - m_next + 1;
    const int came = page->rows.size();
    const qint64 took = m_request->milliseconds;
    m_size->took(came, took < 0 ? m_request->clock.elapsed() : took);
    m_request.reset();
    // A folder that has become smaller since its first page isn't whole.
    m_count = std::max(m_count, page->rowsCount);
    page->rowsCount = m_count;
    m_next += std::min(came, asked);
    const bool more = mayFollow(m_count, m_next, came == asked);
    leaveOutKnown(page);
    m_given += page->rows.size();
    if (!page->rows.isEmpty() && more && m_next <= m_range.last)
        ask();
    return true;
}

int RowPages::lacking() const
{
    const int end = m_range.last < m_count ? m_range.last + 1 : m_count;
    return std::max(0, end - m_range.first - m_given);
}
