#include "CMWorkerGate.h"

#include <QCoreApplication>

#include <utility>

namespace {
void refuse(const CMWorkerGate::Request &request)
{
    const CMError error = createErrorInternal(QStringLiteral("The worker of this path is gone."));
    std::visit([&error](const auto &r) { r.setError(error); }, request);
}
} // namespace

void CMWorkerGate::post(const Request &request)
{
    {
        // Held while posting: the worker can't be destroyed in between.
        const std::lock_guard lock(m_mutex);
        if (m_worker) {
            QCoreApplication::postEvent(m_worker, new CMRequestEvent(request));
            return;
        }
    }
    refuse(request);
}

void CMWorkerGate::close()
{
    const std::lock_guard lock(m_mutex);
    m_worker = nullptr;
}

CMRequestEvent::CMRequestEvent(CMWorkerGate::Request request)
    : QEvent(eventType())
    , m_request(std::move(request))
{
}

CMRequestEvent::~CMRequestEvent()
{
    if (m_request)
        refuse(*m_request);
}

CMWorkerGate::Request CMRequestEvent::take()
{
    return *std::exchange(m_request, std::nullopt);
}

QEvent::Type CMRequestEvent::eventType()
{
    static const auto type = QEvent::Type(QEvent::registerEventType());
    return type;
}
