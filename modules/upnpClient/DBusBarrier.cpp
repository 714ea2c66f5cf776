#include "DBusBarrier.h"

#include "SlicedWork.h"
#include "sdk.h"

#include <QDBusError>

DBusBarrier::DBusBarrier(void *userData, QObject *parent)
    : QObject(parent)
    , m_userData(userData)
{
}

DBusBarrier::~DBusBarrier()
{
    if (m_dispose)
        m_dispose(m_userData);
}

void DBusBarrier::addCall(const QString &name, const QDBusPendingCall &call)
{
    auto *watcher = new QDBusPendingCallWatcher(call, this);
    m_pending.insert(watcher);
    m_calls[name] = watcher;
    sdk::connectChecked(watcher,
        SIGNAL(finished(QDBusPendingCallWatcher*)), this,
            SLOT(callFinished(QDBusPendingCallWatcher*)));
}

void DBusBarrier::callFinished(QDBusPendingCallWatcher *watcher)
{
    sdk::verify(m_pending.contains(watcher), "m_pending.contains(watcher)");
    hold();
    m_pending.remove(watcher);
    m_isDue = true;
    if (m_onArrival)
        m_onArrival(watcher);
    proceed();
}

void DBusBarrier::proceed()
{
    if (--m_holds > 0 || !m_isDue || !m_pending.isEmpty())
        return;
    m_isDue = false;
    Q_EMIT finished(this, m_userData);
}

QDBusPendingCall &DBusBarrier::getCall(const QString &name)
{
    return *m_calls[name];
}

QDBusPendingCallWatcher *DBusBarrier::takeFinishedCall(QString *name)
{
    for (auto it = m_calls.begin(); it != m_calls.end(); ++it) {
        QDBusPendingCallWatcher *watcher = it.value();
        if (m_pending.contains(watcher))
            continue;
        if (name)
            *name = it.key();
        m_calls.erase(it);
        return watcher;
    }
    return nullptr;
}

void DBusBarrier::release(QDBusPendingCall &call)
{
    static const QDBusPendingCall read =
        QDBusPendingCall::fromError(QDBusError(QDBusError::Other, QStringLiteral("already read")));
    call = read;
}

void DBusBarrier::deleteInSlices()
{
    // Not at once: one of the watchers may be telling right now.
    QMetaObject::invokeMethod(
        this,
        [this] {
            const auto watchers =
                findChildren<QDBusPendingCallWatcher *>(QString(), Qt::FindDirectChildrenOnly);
            loopInSlices(
                this, watchers.size(), [watchers](int i) { delete watchers[i]; },
                [this] { deleteLater(); });
        },
        Qt::QueuedConnection);
}
