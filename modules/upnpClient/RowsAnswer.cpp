#include "RowsAnswer.h"

#include "cb_upnp.h"

#include <utility>

RowsAnswer::RowsAnswer(
    CMUPnPWorker *worker, const CMGetRowsRequest &request, const QDBusMessage &reply, int count)
    : SlicedWork(worker)
    , m_worker(worker)
    , m_request(request)
    , m_count(count)
{
    m_context.wanted = WantedRoles(request.roles());
    m_reader.open(reply, m_context.wanted);
}

void RowsAnswer::start(
    CMUPnPWorker *worker, const CMGetRowsRequest &request, const QDBusMessage &reply, int count)
{
    auto *answer = new RowsAnswer(worker, request, reply, count);
    answer->SlicedWork::start();
}

bool RowsAnswer::step()
{
    ObjectProperties properties;
    if (m_reader.next(&properties)) {
        m_rows.append(
            QVariant(m_worker->fillin_childRoles(properties, m_request.roles(), &m_context)));
        return true;
    }
    OrkaRowsRoles answer;
    answer.setRowsVersion(0);
    // The answer holds them from here on.
    answer.setRows(std::exchange(m_rows, {}));
    answer.setRowsCount(m_count);
    m_request.reply().setValue(answer);
    return false;
}
