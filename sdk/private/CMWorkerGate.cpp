#include "CMWorkerGate.h"

#include <QCoreApplication>

namespace {
CMError workerGone()
{
    return createErrorInternal(QStringLiteral("The worker of this path is gone."));
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
    std::visit([](const auto &r) { r.setError(workerGone()); }, request);
}

void CMWorkerGate::close()
{
    const std::lock_guard lock(m_mutex);
    m_worker = nullptr;
}

QEvent::Type CMRequestEvent::eventType()
{
    static const auto type = QEvent::Type(QEvent::registerEventType());
    return type;
}
