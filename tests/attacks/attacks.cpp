// attacks [SECONDS [NAME]]: hostile media servers and hostile clients, one after the other, each
// beside a healthy server whose listings are timed before and meanwhile, and beside the bus's own
// answers. Prints a line an attack; status 1 where the bridge didn't hold.

#include "Attacks.h"

#include "BridgeFixture.h"
#include "TestNamespace.h"
#include "Text.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <dbus/dbus.h>
#include <thread>
#include <unistd.h>

namespace {

/// Repeats an attack's calls on a connection that it opens anew each time, as clients who leave do.
class HostileClient
{
public:
    HostileClient(const Attack &attack, const QString &bus, const QString &server)
    {
        if (!attack.call)
            return;
        m_thread = std::thread([this, call = attack.call, address = bus.toStdString(),
                                   path = server.toStdString()] {
            while (!m_isEnding) {
                DBusConnection *connection = dbus_connection_open_private(address.c_str(), nullptr);
                if (!connection || !dbus_bus_register(connection, nullptr))
                    return;
                dbus_connection_set_exit_on_disconnect(connection, FALSE);
                call(connection, path);
                dbus_connection_close(connection);
                dbus_connection_unref(connection);
            }
        });
    }
    ~HostileClient()
    {
        m_isEnding = true;
        if (m_thread.joinable())
            m_thread.join();
    }

private:
    std::atomic<bool> m_isEnding{false};
    std::thread m_thread;
};

/// Milliseconds of what was timed, in rising order.
struct Times : QVector<double>
{
    double at(double part) const { return value(qRound(part * (size() - 1))); }
};

/// How long listings of the healthy server take, and the bus's own answers beside them: a message
/// of 30 MB holds up the bus's daemon, and with it everybody, whoever it is for.
void timeListings(
    BridgeFixture &bridge, const QString &folder, double seconds, Times &listings, Times &bus)
{
    const auto ms = [](const QElapsedTimer &since) {
        return double(since.nsecsElapsed()) / 1e6;
    };
    QElapsedTimer all, one;
    for (all.start(); all.elapsed() < seconds * 1000;) {
        one.start();
        Call listing = bridge.startListing(folder, 0, 20);
        bridge.bus().interface()->isServiceRegistered("org.freedesktop.DBus");
        bus.append(ms(one));
        listings.append(listing.wait().ok() ? ms(one) : 30000);
        QTest::qWait(2);
    }
    std::sort(listings.begin(), listings.end());
    std::sort(bus.begin(), bus.end());
}

qint64 mebibytes(qint64 pid)
{
    QFile file("/proc/%1/statm"_s.arg(pid));
    return file.open(QIODevice::ReadOnly)
        ? file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE) >> 20
        : 0;
}

/// Milliseconds of processor time in the next half second.
qint64 busyMs(qint64 pid)
{
    const auto ticks = [pid] {
        QFile file("/proc/%1/stat"_s.arg(pid));
        const bool isOpen = file.open(QIODevice::ReadOnly);
        const auto fields = isOpen ? file.readAll().split(')').last().split(' ') : QByteArrayList();
        return fields.value(12).toLongLong() + fields.value(13).toLongLong();
    };
    const qint64 before = ticks();
    QTest::qWait(500);
    return (ticks() - before) * 1000 / sysconf(_SC_CLK_TCK);
}

int descriptors(qint64 pid)
{
    return QDir("/proc/%1/fd"_s.arg(pid)).entryList(QDir::AllEntries | QDir::System).size();
}

/// The longest turn that the log tells of, in milliseconds at work; 20 where none was longer.
int longestTurn(const QByteArray &log)
{
    static const QRegularExpression turn("main loop took \\d+ ms, (\\d+)");
    int longest = 20;
    for (auto all = turn.globalMatch(QString::fromUtf8(log)); all.hasNext();)
        longest = qMax(longest, all.next().captured(1).toInt());
    return longest;
}

/// What is printed of an attack, and judged.
struct Figures
{
    Times before, during, bus;
    int turn = 0;
    qint64 mebibytes = 0, endMs = 0, newMs = 0;
    bool isQuiet = false, isAlive = false;

    /// A short round shares its machine with other tests.
    bool areGood(bool isShortRound, double listingMs) const
    {
        const double patience = isShortRound ? 10 : 1;
        const double enough = isShortRound ? qMax(listingMs, 200.0) : listingMs;
        const double late = qMax(50.0, 3 * bus.last());
        return isAlive && isQuiet && endMs <= 1000 && newMs <= (isShortRound ? 20000 : 10000)
            && mebibytes <= 150 && during.at(0.5) <= qMax(enough, patience * 2 * before.at(0.5))
            && during.at(0.99) <= qMax(listingMs, patience * late)
            && turn <= patience * qMax(20.0, 2 * bus.last());
    }
    void print(const char *name, bool isGood) const
    {
        std::printf("%-34s %6.1f %6.1f %7.1f %6.1f %6d %6lld %5s %6lld %6lld %s\n", name,
            before.at(0.5), during.at(0.5), during.at(0.99), bus.last(), turn,
            static_cast<long long>(mebibytes), isQuiet ? "yes" : "no",
            static_cast<long long>(newMs), static_cast<long long>(endMs), isGood ? "" : "FAILED");
        std::fflush(stdout);
    }
};

HostileServer serverOf(const Attack &attack)
{
    return HostileServer([&attack](const std::string &request, const Send &send) {
        if (attack.serve && attack.serve(request, send))
            return;
        if (attack.describe && request.compare(0, 4, "GET ") == 0)
            send(attack.describe());
        else
            serveDecently(request, send);
    });
}

/// Attacks for so long; the bridge's memory at most, in MiB.
qint64 attackBeside(
    BridgeFixture &bridge, const Attack &attack, const QString &folder, double seconds, Figures &to)
{
    const HostileServer server = serverOf(attack);
    const auto name = [](int i) {
        return i == 0 ? hostileUdn : hostileUdn + std::to_string(i);
    };
    for (int i = 0; i < attack.devices; ++i)
        server.announce(name(i));
    if (attack.call && attack.devices > 0)
        bridge.waitForServer(QString::fromStdString(name(attack.devices - 1)));
    HostileClient client(attack, bridge.address(), serverPath(QString::fromStdString(hostileUdn)));
    qint64 most = 0;
    for (double done = 0; done < seconds; done += 0.25) {
        timeListings(bridge, folder, 0.25, to.during, to.bus);
        most = qMax(most, mebibytes(bridge.pid()));
    }
    return most;
}

/// Milliseconds until a server that comes now is listed.
qint64 newcomerMs(BridgeFixture &bridge)
{
    const QString udn = newUdn();
    const HostileServer server(serveDecently);
    QElapsedTimer since;
    for (since.start(); since.elapsed() < 30000 && !bridge.servers().contains(serverPath(udn));) {
        server.announce(udn.toStdString());
        QTest::qWait(100);
    }
    return since.elapsed();
}

/// Ends the bridge, where it is asked for while the bus takes none of its answers.
/// Its memory then, in MiB.
qint64 end(BridgeFixture &bridge, const Attack &attack, Figures &to)
{
    const HostileServer server = serverOf(attack);
    const qint64 pid = bridge.pid();
    QVector<Call> unread;
    if (attack.stopsBus) {
        server.announce(hostileUdn);
        bridge.waitForServer(QString::fromStdString(hostileUdn));
        for (int i = 0; i < 2000; ++i)
            unread.append(
                bridge.startListing(serverPath(QString::fromStdString(hostileUdn)), 0, 80));
        QTest::qWait(300);
        kill(pid_t(bridge.busPid()), SIGSTOP);
        QTest::qWait(1000);
    }
    const qint64 memory = mebibytes(pid);
    QElapsedTimer end;
    end.start();
    to.isAlive = bridge.stop() == 0;
    to.endMs = end.elapsed();
    if (attack.stopsBus)
        kill(pid_t(bridge.busPid()), SIGCONT);
    return memory;
}

bool holds(const Attack &attack, double seconds)
{
    BridgeFixture bridge(BridgeFixture::Running, {"-vv"});
    ChildProcess healthy;
    const QString healthyUdn = newUdn();
    healthy.startAndReadLine(SCRIPTED_UPNP_SERVER, {healthyUdn});
    if (bridge.waitForServer(healthyUdn).isEmpty())
        return false;
    const QString folder = objectPath(healthyUdn, "f");
    Figures figures;
    Times warmUp, quietBus;
    timeListings(bridge, folder, 0.5, warmUp, quietBus);
    timeListings(bridge, folder, 1, figures.before, quietBus);
    const qint64 pid = bridge.pid(), memory = mebibytes(pid);
    const int open = descriptors(pid);
    bridge.log();
    figures.mebibytes = attackBeside(bridge, attack, folder, seconds, figures) - memory;
    figures.turn = longestTurn(bridge.log());
    figures.newMs = newcomerMs(bridge);
    figures.isQuiet = QTest::qWaitFor(
        [&] {
            return mebibytes(pid) - memory <= 20 && descriptors(pid) <= open + 2
                && busyMs(pid) <= 25;
        },
        seconds < 1 ? 30000 : 10000); // a short round shares its machine
    figures.mebibytes = qMax(figures.mebibytes, end(bridge, attack, figures) - memory);
    const bool isGood = figures.areGood(seconds < 1, attack.listingMs);
    figures.print(attack.name, isGood);
    return isGood;
}

} // namespace

int main(int argc, char **argv)
{
    const QString why = enterTestLan();
    if (!why.isEmpty()) {
        qWarning("SKIP: %s", qPrintable(why));
        return skippedTest;
    }
    const QCoreApplication app(argc, argv);
    dbus_threads_init_default();
    const double seconds = app.arguments().value(1, "2").toDouble();
    const QString only = app.arguments().value(2);
    std::printf("%-34s %6s %6s %7s %6s %6s %6s %5s %6s %6s\n", "listing of a healthy server, ms",
        "usual", "median", "99th", "bus", "turn", "MiB", "quiet", "new", "end");
    bool allHold = true;
    for (const Attack &attack : attacks()) {
        if (QString(attack.name).contains(only))
            allHold = holds(attack, seconds) && allHold;
    }
    return allHold ? 0 : 1;
}
