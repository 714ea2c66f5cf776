#include "ContainerSampler.h"

#include "log.h"

ContainerSampler::ContainerSampler(QObject *parent, CMGetRowsRequest request, const CMPath &path,
    unsigned start, unsigned end, unsigned step, int requestFirstRow, int requestLastRow)
    : QObject(parent)
    , m_request(std::move(request))
    , m_path(path)
    , m_step(int(step))
    , m_start(int(start))
    , m_end(int(end))
    , m_requestFirstRow(requestFirstRow)
    , m_requestLastRow(requestLastRow)
{
    performSample();
}

int ContainerSampler::pathPosition() const
{
    return int(unsigned(m_start) + unsigned(m_sampleIndex) * unsigned(m_step));
}

void ContainerSampler::performSample()
{
    const int position = pathPosition();
    TRACE_ENTER_WITH(sdk::logged(m_path) << ", " << m_sampleIndex << ", " << position);
    sdk::askForRow(m_path, position, sdk::rolesOf(m_request), this, [this](auto *watcher) {
        connect(watcher, &CMReplyWatcherObject::finishedSignal, this,
            &ContainerSampler::on_getRows_finished, Qt::QueuedConnection);
        connect(watcher, &CMReplyWatcherObject::finishedSignal, watcher, &QObject::deleteLater);
    });
}

void ContainerSampler::on_getRows_finished(const CMVoidReply &reply)
{
    TRACE_ENTER();
    const CMError error = sdk::errorOf(reply);
    if (sdk::isError(error)) {
        LOG4CPLUS_ERROR(upnpLog(),
            "Failed to perform container sampling at item "
                << pathPosition() << "; error: " << sdk::errorText(error));
        sdk::refuse(m_request, error);
        deleteLater();
        return;
    }

    const OrkaRowsRoles child = sdk::rowsOf(reply);
    const QVariantList rows = sdk::rowList(child);
    if (m_totalCount == -1)
        m_totalCount = child.rowsCount();
    if (rows.size() != 1) {
        LOG4CPLUS_WARN(upnpLog(), "Incorrect number of rows in the reply: " << rows.size());
    }
    // The tree answers a request for one row with an error when it has none.
    sdk::verify(!rows.isEmpty(), "!rows.isEmpty()");
    m_samples.append(rows.first());
    ++m_sampleIndex;
    if (isComplete()) {
        finalizeSampling();
    } else {
        performSample();
    }
}

bool ContainerSampler::isComplete() const
{
    return m_sampleIndex > m_requestLastRow || pathPosition() > m_end
        || pathPosition() >= m_totalCount;
}

void ContainerSampler::finalizeSampling()
{
    TRACE_ENTER();
    const int span = int(unsigned(m_end) - unsigned(m_start) + 1);
    auto answer = sdk::empty<OrkaRowsRoles>();
    answer.setRows(m_samples);
    answer.setRowsVersion(0);
    answer.setRowsCount(qMin(span, m_totalCount));
    sdk::answer(m_request, answer);
    deleteLater();
}
