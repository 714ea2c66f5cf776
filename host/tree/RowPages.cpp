#include "tree/RowPages.h"

#include "Failure.h"
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
        const QString doing =
            m_quiet ? QString() : QStringLiteral("Reading rows from %1").arg(m_next);
        try {
            return rowsOf(m_session.rowsOf(m_request->reply, m_path, m_next, doing), m_roles);
        } catch (const Failure &failure) {
            const bool tooMuch =
                failure.status() == AnsweredWithError || failure.status() == NoAnswer;
            if (!tooMuch || !m_size->shrink())
                throw;
        }
        ask();
    }
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
    m_count = page->rowsCount;
    m_next += std::min(came, asked);
    const bool more = m_count > 0 ? m_next < m_count : came == asked;
    if (came > 0 && more && m_next <= m_range.last)
        ask();
    return true;
}

int RowPages::lacking() const
{
    const int end = m_range.last < m_count ? m_range.last + 1 : m_count;
    return std::max(0, end - m_next);
}
