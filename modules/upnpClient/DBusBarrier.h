#pragma once

#include <QDBusPendingCallWatcher>
#include <QList>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QVariant>

#include <functional>
#include <memory>

/// Groups the asynchronous D-Bus calls of one piece of work and tells when the last of them has
/// finished, failed ones included.
///
/// A flow makes a barrier, adds its calls under names of its choosing, connects `finished` to its
/// handler and returns to the event loop; a call's completion is never seen before that. The
/// handler fetches the replies by name and disposes of the barrier with `deleteLater()`. A barrier
/// destroyed with calls still pending discards them, and `finished` is not emitted. Nor is it for a
/// barrier without calls. All of it on the thread that owns the barrier.
class DBusBarrier : public QObject
{
    Q_OBJECT

public:
    /// `userData` is handed to the handler as it is; the barrier never looks at it nor frees it.
    explicit DBusBarrier(void *userData, QObject *parent = nullptr);
    ~DBusBarrier() override;

    void setUserData(void *userData) { m_userData = userData; }

    /// Makes `data` the user data, which goes with the barrier unless the handler takes it first.
    template<typename T>
    void keepUserData(std::unique_ptr<T> data);
    /// The user data kept before, once.
    template<typename T>
    std::unique_ptr<T> takeUserData();

    /// Between hold() and proceed() `finished` is not emitted, so that calls can be added, or their
    /// replies read, in several turns of the event loop. If the last call has finished meanwhile,
    /// proceed() emits it. Pairs may overlap.
    void hold() { ++m_holds; }
    void proceed();
    /// `read` gets each call when it has finished.
    void onArrival(std::function<void(QDBusPendingCallWatcher *)> read)
    {
        m_onArrival = std::move(read);
    }
    /// A name that is already there names the new call from now on; the barrier waits for both.
    void addCall(const QString &name, const QDBusPendingCall &call);
    bool containsCall(const QString &name) const { return m_calls.contains(name); }
    /// `name` has been added and not been taken.
    QDBusPendingCall &getCall(const QString &name);
    /// The same call with its watcher.
    QDBusPendingCallWatcher *watcher(const QString &name) const { return m_calls.value(name); }
    /// True also while nothing has been added.
    bool isFinished() const { return m_pending.isEmpty(); }
    /// Hands out the finished call with the smallest name and forgets the name; null when there is
    /// none. The watcher stays the barrier's.
    QDBusPendingCallWatcher *takeFinishedCall(QString *name);

    /// Frees a reply that has been read: a connection whose unreleased replies pile up stops
    /// receiving, and watchers live as long as their barrier.
    static void release(QDBusPendingCall &call);

    /// Like `deleteLater()`, but in slices, for a barrier of any number of calls.
    void deleteInSlices();

    // State of a flow that lives as long as its calls; the barrier itself never touches it.
    QSet<QString> visited;
    QList<QVariant> results;

Q_SIGNALS:
    void finished(DBusBarrier *barrier, void *userData);

private Q_SLOTS:
    void callFinished(QDBusPendingCallWatcher *watcher);

private:
    using Dispose = void (*)(void *);

    QMap<QString, QDBusPendingCallWatcher *> m_calls;
    QSet<QDBusPendingCallWatcher *> m_pending;
    std::function<void(QDBusPendingCallWatcher *)> m_onArrival;
    int m_holds = 0;
    /// A call has finished since `finished` was last emitted.
    bool m_isDue = false;
    void *m_userData;
    Dispose m_dispose = nullptr;
};

template<typename T>
void DBusBarrier::keepUserData(std::unique_ptr<T> data)
{
    m_userData = data.release();
    m_dispose = [](void *kept) {
        delete static_cast<T *>(kept);
    };
}

template<typename T>
std::unique_ptr<T> DBusBarrier::takeUserData()
{
    m_dispose = nullptr;
    return std::unique_ptr<T>(static_cast<T *>(m_userData));
}
