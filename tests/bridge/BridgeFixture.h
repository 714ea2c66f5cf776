#pragma once

#include "FakeTree.h"
#include "NamesOnBus.h"
#include "PrivateBus.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QVariantMap>
#include <QVector>

#include <memory>

class ScriptedUpnpServer;

/// What one call brought: the values, or the error's name and text.
struct Answer
{
    QVariantList values;
    QString error, message;
    qint64 milliseconds = 0;

    bool ok() const { return error.isEmpty(); }
    /// The first value as a list of property maps.
    QVector<QVariantMap> rows() const;
    QVariant value() const { return values.value(0); }
};

/// A call under way.
class Call
{
public:
    explicit Call(const QDBusPendingCall &pending);
    /// Runs the event loop until the answer is there, 30 seconds at most.
    QDBusMessage reply();
    Answer wait();

private:
    QDBusPendingCall m_pending;
    QElapsedTimer m_since;
};

/// A bus of the test's own, the bridge on it, and a client of the bridge. Keeps the FoundServer and
/// LostServer signals in order.
class BridgeFixture : public QObject
{
    Q_OBJECT
public:
    enum Start {
        Running, ///< the program is started at once and owns its name when the constructor returns
        Activated ///< the bus starts it with the first call, and again when it has died
    };

    explicit BridgeFixture(Start start = Running, const QStringList &options = {});
    /// Stops the program; the test has failed where its exit status isn't 0.
    ~BridgeFixture() override;
    /// Ends the program with SIGTERM, where it still runs; its exit status, -1 where it hung or
    /// crashed.
    int stop();

    const QString &address() const { return m_daemon.address(); }
    QDBusConnection bus() const { return m_bus; }
    qint64 pid();
    qint64 busPid() const { return m_daemon.pid(); }
    /// Standard error of the program, as far as it came.
    QByteArray log() { return m_program.readAllStandardError(); }

    Call start(const QString &path, const QString &interface, const QString &method,
        const QVariantList &arguments = {});
    Answer call(const QString &path, const QString &interface, const QString &method,
        const QVariantList &arguments = {});
    Answer get(const QString &path, const QString &interface, const QString &property);
    Call startListing(
        const QString &path, uint offset, uint max, const QStringList &filter = {"*"});
    Answer list(
        const QString &path, uint offset = 0, uint max = 0, const QStringList &filter = {"*"});
    /// The rows and, as the second value, the total.
    Answer search(const QString &path, const QString &query, uint offset = 0, uint max = 0,
        const QStringList &filter = {"*"});
    QStringList servers();

    /// Starts the server and waits until the service has announced it; its path, and "" where it
    /// never came.
    QString add(ScriptedUpnpServer &server);
    /// Waits for the server's FoundServer since the last `forgetSignals()`; its path, empty after
    /// 10 seconds.
    QString waitForServer(const QString &udn);
    const QStringList &found() const { return m_found; }
    const QStringList &lost() const { return m_lost; }
    void forgetSignals();

private Q_SLOTS:
    void onFound(const QDBusObjectPath &path) { m_found.append(path.path()); }
    void onLost(const QDBusObjectPath &path) { m_lost.append(path.path()); }

private:
    QString busConfiguration(Start start, const QStringList &options) const;

    bool m_stopped = false;
    QTemporaryDir m_folder;
    PrivateBus m_daemon;
    ChildProcess m_program;
    QDBusConnection m_bus;
    QStringList m_found, m_lost;
};

/// A UDN that no other server of this test process has.
QString newUdn();
/// The paths that the service gives a server and an object on it.
inline QString serverPath(const QString &udn)
{
    return FakeTree::serverPath(udn);
}
inline QString objectPath(const QString &udn, const QString &objectId)
{
    return FakeTree::objectPath(serverPath(udn), objectId.toUtf8());
}

/// A main() that runs the test in a namespace with the interface lan0; the test skips where none
/// may be made.
#define BRIDGE_TEST_MAIN(TestClass)                \
    int main(int argc, char **argv)                \
    {                                              \
        const QString why = enterTestLan();        \
        if (!why.isEmpty()) {                      \
            qWarning("SKIP: %s", qPrintable(why)); \
            return skippedTest;                    \
        }                                          \
        QCoreApplication app(argc, argv);          \
        TestClass test;                            \
        return QTest::qExec(&test, argc, argv);    \
    }

/// Exit status by which CTest knows a skipped test.
constexpr int skippedTest = 77;
