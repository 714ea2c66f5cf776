#pragma once

#include <QDBusMessage>
#include <QElapsedTimer>
#include <QObject>
#include <QStringList>

#include <chrono>

class QDBusPendingCallWatcher;

/// The media servers that the media service itself lists, kept current by its signals: what a
/// worker should list. Made before the worker is loaded, so that it hears of a server that is
/// announced while the worker still gets ready to listen.
class ServiceServers : public QObject
{
    Q_OBJECT

public:
    enum State {
        /// No answer has come yet.
        Asked,
        Listed,
        /// The answer was an error.
        Refused
    };

    /// Asks the service with this unique name for the list. `age` is how long it has run, and
    /// `searchTime` for how long it may go on finding servers that were there before it.
    ServiceServers(
        const QString &owner, std::chrono::milliseconds age, std::chrono::milliseconds searchTime);

    State state() const { return m_state; }
    /// Their object paths.
    const QStringList &paths() const { return m_paths; }
    /// Whether every server that was there before the service should have answered its search.
    bool isSettled() const { return m_state == Listed && untilSettled().count() <= 0; }
    std::chrono::milliseconds untilSettled() const;
    /// For how long the service has run.
    std::chrono::milliseconds age() const;

signals:
    void changed();

private slots:
    void announced(const QDBusMessage &signal);

private:
    void add(const QString &path);
    void listed(QDBusPendingCallWatcher *call);

    const QString m_owner;
    QElapsedTimer m_clock;
    std::chrono::milliseconds m_ageAtStart;
    std::chrono::milliseconds m_leftAtStart;
    QStringList m_paths;
    State m_state = Asked;
};
