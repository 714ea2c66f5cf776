// attacks [SECONDS [NAME]]: hostile media servers and hostile clients, one after the other, each
// beside a healthy server whose listings are timed before and meanwhile, and beside the bus's own
// answers. Prints a line an attack; status 1 where the bridge didn't hold.

#include "BridgeFixture.h"
#include "HostileServer.h"
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
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>

namespace {

const std::string udn = "uuid:a77acc00-0000-0000-0000-000000000001";
constexpr size_t mebibyte = 1 << 20;

/// One way to attack. A part that is missing is done as a decent server or client does it.
struct Attack
{
    const char *name;
    /// The description as sent, header and all.
    std::function<std::string()> describe = {};
    /// Answers the description, or a SOAP action, in its own way; whether it did.
    std::function<bool(const std::string &request, const Send &send)> serve = {};
    /// UDNs that are announced.
    int devices = 1;
    /// What a program on the bus does, in a thread, over and over.
    std::function<void(DBusConnection *bus, const std::string &server)> call = {};
    /// The bus takes nothing while the bridge is to end.
    bool stopsBus = false;
};

std::string didl(const std::string &objects)
{
    return soapResult("Browse",
        "<Result><![CDATA[<DIDL-Lite>" + objects
            + "</DIDL-Lite>]]></Result><NumberReturned>20</NumberReturned><TotalMatches>20"
              "</TotalMatches>");
}

/// Answers every Browse with these objects.
auto browse(const std::string &objects)
{
    return [answer = std::make_shared<std::string>(httpAnswer(didl(objects)))](
               const std::string &request, const Send &send) {
        return request.find("#Browse") != std::string::npos && send(*answer);
    };
}

/// Begins with `head` and goes on with `rest` as long as anybody reads.
auto endless(const char *what, const std::string &head, const std::string &rest)
{
    return [=](const std::string &request, const Send &send) {
        if (request.find(what) == std::string::npos)
            return false;
        for (bool goesOn = send(head); goesOn;)
            goesOn = send(rest);
        return true;
    };
}

void serveDecently(const std::string &request, const Send &send)
{
    const auto asks = [&](const char *what) {
        return request.find(what) != std::string::npos;
    };
    if (request.compare(0, 4, "GET ") == 0)
        send(httpAnswer(description(udn)));
    else if (asks("#GetSearchCapabilities"))
        send(httpAnswer(soapResult("GetSearchCapabilities", "<SearchCaps/>")));
    else if (asks("#GetSortCapabilities"))
        send(httpAnswer(soapResult("GetSortCapabilities", "<SortCaps/>")));
    else
        send(httpAnswer(didl("<item id='1'><dc:title>1</dc:title></item>")));
}

DBusMessage *newCall(const std::string &path, const char *interface, const char *method)
{
    return dbus_message_new_method_call("com.intel.dleyna-server", path.c_str(), interface, method);
}

void send(DBusConnection *bus, DBusMessage *call)
{
    dbus_connection_send(bus, call, nullptr);
    dbus_message_unref(call);
}

void addTexts(DBusMessageIter *to, int type, size_t count, const char *text)
{
    DBusMessageIter array;
    dbus_message_iter_open_container(
        to, DBUS_TYPE_ARRAY, type == DBUS_TYPE_STRING ? "s" : "o", &array);
    while (count-- > 0)
        dbus_message_iter_append_basic(&array, type, &text);
    dbus_message_iter_close_container(to, &array);
}

DBusMessage *newListing(const std::string &path, unsigned max, size_t filterNames)
{
    DBusMessage *call = newCall(path, "org.gnome.UPnP.MediaContainer2", "ListChildren");
    const unsigned offset = 0;
    dbus_message_append_args(
        call, DBUS_TYPE_UINT32, &offset, DBUS_TYPE_UINT32, &max, DBUS_TYPE_INVALID);
    DBusMessageIter body;
    dbus_message_iter_init_append(call, &body);
    addTexts(&body, DBUS_TYPE_STRING, filterNames, "*");
    return call;
}

void listOnce(DBusConnection *bus, const std::string &server, unsigned max = 20)
{
    DBusMessage *call = newListing(server, max, 1);
    if (DBusMessage *answer = dbus_connection_send_with_reply_and_block(bus, call, 9000, nullptr))
        dbus_message_unref(answer);
    dbus_message_unref(call);
}

void browseMany(DBusConnection *bus, const std::string &server, size_t count)
{
    DBusMessage *call = newCall(server, "com.intel.dLeynaServer.MediaDevice", "BrowseObjects");
    DBusMessageIter body;
    dbus_message_iter_init_append(call, &body);
    addTexts(&body, DBUS_TYPE_OBJECT_PATH, count, "/com/intel/dLeynaServer/none");
    addTexts(&body, DBUS_TYPE_STRING, 1, "*");
    send(bus, call);
    dbus_connection_flush(bus);
    usleep(200000);
}

void listMany(DBusConnection *bus, const std::string &server, int count)
{
    for (int i = 0; i < count; ++i)
        send(bus, newListing(server, 20, 1));
    dbus_connection_flush(bus);
    for (int i = 0; i < 30; ++i)
        dbus_connection_read_write_dispatch(bus, 10);
}

void sendDescriptors(DBusConnection *bus)
{
    const int descriptor = eventfd(0, EFD_CLOEXEC);
    for (int i = 0; i < 80; ++i) {
        DBusMessage *call =
            newCall("/com/intel/dLeynaServer", "com.intel.dLeynaServer.Manager", "GetServers");
        for (int n = 0; n < 16; ++n)
            dbus_message_append_args(call, DBUS_TYPE_UNIX_FD, &descriptor, DBUS_TYPE_INVALID);
        send(bus, call);
    }
    dbus_connection_flush(bus);
    close(descriptor);
}

std::vector<Attack> attacks()
{
    const auto list = [](DBusConnection *bus, const std::string &server) {
        listOnce(bus, server);
    };
    const auto named = [](const std::string &more) {
        return [more] {
            return httpAnswer(description(udn, more));
        };
    };
    const std::string ok = "HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\n";
    const std::string chunk = "1000\r\n" + std::string(0x1000, 'x') + "\r\n";
    std::vector<Attack> all;
    all.push_back({"a description without end", {},
        endless("GET ", ok + "Transfer-Encoding: chunked\r\n\r\n", chunk), 200});
    all.push_back({"102 Processing over and over", {},
        endless("GET ", "", "HTTP/1.1 102 Processing\r\n\r\n")});
    all.push_back({"trailers without end", {},
        endless("#Browse", ok + "Transfer-Encoding: chunked\r\n\r\n0\r\n", "a: b\r\n"), 1, list});
    all.push_back({"a description of 58 MiB of <a/>", named(times(58 * mebibyte / 4, "<a/>"))});
    all.push_back(
        {"a description of 1 MiB of <a/>", named(times(mebibyte / 4 - 500, "<a/>")), {}, 40});
    all.push_back({"a name of 25 MiB of 0xff",
        named("<friendlyName>" + std::string(25 * mebibyte, '\xff') + "</friendlyName>")});
    all.push_back({"an answer of 58 MiB of <item/>", {},
        browse(times(58 * mebibyte / 7, "<item/>")), 1, list});
    all.push_back(
        {"an answer of 1 MiB of <item/>", {}, browse(times(mebibyte / 7, "<item/>")), 1, list});
    all.push_back({"an item of 1 MiB of <res/>", {},
        browse("<item id='1'>" + times(mebibyte / 6, "<res/>") + "</item>"), 1, list});
    all.push_back({"a title of 1 MiB of 0xff", {},
        browse("<item id='1'><dc:title>" + std::string(mebibyte, '\xff') + "</dc:title></item>"), 1,
        list});
    all.push_back({"capabilities of 60 MiB", {}, [](const std::string &request, const Send &send) {
                       return request.find("Capabilities") != std::string::npos
                           && send(httpAnswer(soapResult("GetSearchCapabilities",
                               "<SearchCaps>" + times(30 * mebibyte, "a,") + "</SearchCaps>")));
                   }});
    all.push_back(
        {"80 calls with 16 descriptors", {}, {}, 0, [](DBusConnection *bus, const std::string &) {
             sendDescriptors(bus);
             usleep(100000);
         }});
    all.push_back(
        {"a million paths", {}, {}, 1, [](DBusConnection *bus, const std::string &server) {
             browseMany(bus, server, 1'000'000);
         }});
    all.push_back({"5,000 paths", {}, {}, 1, [](DBusConnection *bus, const std::string &server) {
                       browseMany(bus, server, 5'000);
                   }});
    all.push_back({"two million names in a filter", {}, {}, 1,
        [](DBusConnection *bus, const std::string &server) {
            send(bus, newListing(server, 20, 2'000'000));
            dbus_connection_flush(bus);
            usleep(200000);
        }});
    all.push_back({"1,000 listings", {}, {}, 1, [](DBusConnection *bus, const std::string &server) {
                       listMany(bus, server, 1'000);
                   }});
    all.push_back({"a server that hangs, and clients leave", {},
        [](const std::string &request, const Send &) {
            return request.find("#Browse") != std::string::npos;
        },
        1,
        [](DBusConnection *bus, const std::string &server) {
            listMany(bus, server, 12);
        }});
    all.push_back({"half a page, then a fault", {},
        [](const std::string &request, const Send &send) {
            const bool isFirst = request.find("<StartingIndex>0<") != std::string::npos;
            return request.find("#Browse") != std::string::npos
                && send(
                    httpAnswer(isFirst ? soapResult("Browse",
                                   "<Result>&lt;x/&gt;</Result><NumberReturned>1"
                                   "</NumberReturned><TotalMatches>99</TotalMatches>")
                                       : "<s:Envelope><s:Body><s:Fault/></s:Body></s:Envelope>"));
        },
        1,
        [](DBusConnection *bus, const std::string &server) {
            listOnce(bus, server, 0);
        }});
    all.push_back({"a bus that stands still", {}, {}, 0, {}, true});
    return all;
}

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
    double at(double part) const { return value(int(part * (size() - 1))); }
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

/// The longest turn that the log tells of, in milliseconds; 20 where none was longer.
int longestTurn(const QByteArray &log)
{
    static const QRegularExpression turn("main loop took (\\d+) ms");
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
    qint64 mebibytes = 0, endMs = 0;
    bool isQuiet = false, isAlive = false;

    /// A short round shares its machine with other tests.
    bool areGood(bool isShortRound) const
    {
        const double patience = isShortRound ? 10 : 1;
        const double late = qMax(50.0, 3 * bus.last());
        return isAlive && isQuiet && endMs <= 1000 && mebibytes <= 150
            && during.at(0.5) <= patience * 2 * before.at(0.5) && during.at(0.99) <= patience * late
            && turn <= patience * qMax(20.0, 2 * bus.last());
    }
    void print(const char *name, bool isGood) const
    {
        std::printf("%-34s %6.1f %6.1f %7.1f %6.1f %6d %6lld %5s %6lld %s\n", name, before.at(0.5),
            during.at(0.5), during.at(0.99), bus.last(), turn, static_cast<long long>(mebibytes),
            isQuiet ? "yes" : "no", static_cast<long long>(endMs), isGood ? "" : "FAILED");
        std::fflush(stdout);
    }
};

/// Attacks for so long; the bridge's memory at most, in MiB.
qint64 attackBeside(
    BridgeFixture &bridge, const Attack &attack, const QString &folder, double seconds, Figures &to)
{
    HostileServer server([&](const std::string &request, const Send &send) {
        if (attack.serve && attack.serve(request, send))
            return;
        if (attack.describe && request.compare(0, 4, "GET ") == 0)
            send(attack.describe());
        else
            serveDecently(request, send);
    });
    for (int i = 0; i < attack.devices; ++i)
        server.announce(i == 0 ? udn : udn + std::to_string(i));
    if (attack.call && attack.devices > 0)
        bridge.waitForServer(QString::fromStdString(udn));
    HostileClient client(attack, bridge.address(), serverPath(QString::fromStdString(udn)));
    qint64 most = 0;
    for (double done = 0; done < seconds; done += 0.25) {
        timeListings(bridge, folder, 0.25, to.during, to.bus);
        most = qMax(most, mebibytes(bridge.pid()));
    }
    return most;
}

/// Ends the bridge, where it is asked for while the bus takes none of its answers.
void end(BridgeFixture &bridge, const QString &folder, bool stopsBus, Figures &to)
{
    QVector<Call> unread;
    if (stopsBus) {
        for (int i = 0; i < 2000; ++i)
            unread.append(bridge.startListing(folder, 0, 20));
        QTest::qWait(50);
        kill(pid_t(bridge.busPid()), SIGSTOP);
        QTest::qWait(300);
    }
    QElapsedTimer end;
    end.start();
    to.isAlive = bridge.stop() == 0;
    to.endMs = end.elapsed();
    if (stopsBus)
        kill(pid_t(bridge.busPid()), SIGCONT);
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
    figures.isQuiet = QTest::qWaitFor(
        [&] {
            return mebibytes(pid) - memory <= 20 && descriptors(pid) <= open + 2
                && busyMs(pid) <= 25;
        },
        10000);
    end(bridge, folder, attack.stopsBus, figures);
    const bool isGood = figures.areGood(seconds < 1);
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
    std::printf("%-34s %6s %6s %7s %6s %6s %6s %5s %6s\n", "listing of a healthy server, ms",
        "usual", "median", "99th", "bus", "turn", "MiB", "quiet", "end");
    bool allHold = true;
    for (const Attack &attack : attacks()) {
        if (QString(attack.name).contains(only))
            allHold = holds(attack, seconds) && allHold;
    }
    return allHold ? 0 : 1;
}
