#include "chain/ServiceStarter.h"

#include "Failure.h"
#include "chain/Bus.h"
#include "chain/KeptAddresses.h"
#include "chain/StuckBus.h"
#include "chain/UsersBus.h"
#include "chain/Wait.h"
#include "output/Output.h"
#include "output/SafeText.h"

#include <api/core/orka.h>

#include <QDBusError>
#include <QTimer>

namespace {

constexpr std::chrono::seconds startLimit(10);
constexpr std::chrono::milliseconds leastStartTime(1'000);
constexpr int lookEvery = 10; // milliseconds
/// A media service that is silent for so long hangs.
constexpr std::chrono::milliseconds answerLimit(5'000);
constexpr std::chrono::milliseconds pingLimit(1'000);
/// The bridge answers when its first search is over; the others at once, and search for 3 s.
constexpr std::chrono::milliseconds bridgeSearch(2'000);
constexpr std::chrono::milliseconds otherSearch(3'500);

QString describeBus(const QString &bus)
{
    return bus == QLatin1String("session") || bus == QLatin1String("system")
        ? QStringLiteral("the %1 bus").arg(bus)
        : QStringLiteral("the bus at %1").arg(quoted(bus));
}

/// Opens the workers' connection.
bool openInTime(const QString &bus, std::chrono::milliseconds limit)
{
    inTimeOnBus(describeBus(bus), limit, [bus] { orkaOpenDBusConnection(bus); });
    return orkaDBusConnection().isConnected();
}

QString tookTooLong(std::chrono::milliseconds limit)
{
    return QStringLiteral("it took longer than %1 s").arg(double(limit.count()) / 1000, 0, 'g', 2);
}

/// However short the time for an answer is, a bus and a service need theirs.
GlobalOptions withTimeToStart(GlobalOptions options)
{
    options.timeout = std::max(options.timeout, leastStartTime);
    return options;
}

} // namespace

ServiceStarter::ServiceStarter(const GlobalOptions &options)
    : m_options(withTimeToStart(options))
{
    begin();
}

ServiceStarter::~ServiceStarter()
{
    m_watcher.disconnect(this);
}

void ServiceStarter::begin()
{
    m_clock.start();
    m_bridge.reset();
    openBus();
    if (!m_bridge && !useServiceOnBus())
        startBridge();
    watch();
}

void ServiceStarter::openBus()
{
    m_bus = m_options.bus;
    m_busDescription = describeBus(m_bus);
    if (openInTime(m_bus, remaining()))
        return;
    const QString why = orkaDBusConnection().lastError().message();
    const bool mayMakeOne = m_options.bus == QLatin1String("session")
        && m_options.mediaService != MediaServiceSource::Session;
    if (!mayMakeOne) {
        throw missing(QStringLiteral("noBus"),
            QStringLiteral("There is no media service, since %1 can't be reached: %2. Start the "
                           "bus, or name another with --bus.")
                .arg(m_busDescription, safeText(why)));
    }
    startPrivately();
}

void ServiceStarter::startPrivately()
{
    m_bridge = std::make_unique<BridgeProcess>(m_options);
    if (const auto users = m_options.serviceStays() ? usersBus() : nullptr) {
        useUsersBus(*users);
    } else {
        requireMayStart();
        startBus();
        m_bridge->start(m_bus, false);
        waitForBridge();
    }
}

void ServiceStarter::requireMayStart() const
{
    if (!m_options.mayStartService) {
        throw missing(QStringLiteral("noMediaService"),
            QStringLiteral("No media service is running on %1.").arg(m_busDescription));
    }
}

void ServiceStarter::startBus()
{
    m_busDaemon = std::make_unique<BusDaemon>();
    m_bus = m_busDaemon->address();
    m_busDescription = QStringLiteral("a private bus of ours");
    if (!openInTime(m_bus, remaining())) {
        throw missing(QStringLiteral("noBus"),
            QStringLiteral("The private bus at %1 was started but can't be reached: %2. Name a bus "
                           "with --bus ADDRESS.")
                .arg(m_bus, orkaDBusConnection().lastError().message()));
    }
}

/// Nothing where the service can't be kept for the next command; that is said.
std::unique_ptr<UsersBus> ServiceStarter::usersBus() const
{
    try {
        return std::make_unique<UsersBus>();
    } catch (const Failure &failure) {
        if (!m_options.mayStartService)
            throw;
        tell(failure.sentence());
        return nullptr;
    }
}

/// Whichever command comes first starts it; the others wait for that, or for what is left of an
/// earlier one to end.
void ServiceStarter::useUsersBus(UsersBus &users)
{
    m_bus = users.address();
    m_busDescription = QStringLiteral("the private bus of this user");
    openInTime(m_bus, remaining()); // what was open before isn't this one
    bool isStarting = false;
    const std::chrono::milliseconds limit = startTime();
    Wait wait(limit, QStringLiteral("Starting the media service"));
    QTimer look;
    connect(&look, &QTimer::timeout, &wait, &Wait::wake);
    look.start(lookEvery);
    const bool inTime = wait.until([&] {
        if (isStarting && m_bridge->hasEnded())
            m_bridge->fail(QString());
        if (!isStarting && users.take()) {
            requireMayStart();
            isStarting = true;
            m_bridge->startWith(users);
        }
        return isOnUsersBus(users);
    });
    if (!inTime && !isStarting)
        throw users.blocked();
    if (!inTime)
        m_bridge->fail(tookTooLong(limit));
    m_bridge->isStarted();
}

bool ServiceStarter::isOnUsersBus(const UsersBus &users)
{
    const bool isOpen = orkaDBusConnection().isConnected()
        || (users.isListening() && openInTime(m_bus, remaining()));
    const Bus bus(orkaDBusConnection(), remaining());
    return isOpen && !bus.owner(busName()).isEmpty()
        && !BridgeProcess::endedOutdated(bus, m_options);
}

/// False where the bridge has to do it; throws where it mustn't.
bool ServiceStarter::useServiceOnBus()
{
    const Bus bus(orkaDBusConnection(), remaining());
    const QString owner = bus.owner(busName());
    if (m_options.mediaService == MediaServiceSource::Bridge
        && !BridgeProcess::isLasting(bus.processOf(owner)))
        return false;
    if (!owner.isEmpty() && !BridgeProcess::endedOutdated(bus, m_options))
        return true;
    requireMayStart();
    QString why = QStringLiteral("nothing on it owns or can be started as %1").arg(busName());
    if (owner.isEmpty() && bus.canActivate(busName())) {
        const QString error = bus.activate(busName());
        if (error.isEmpty())
            return true;
        why = QStringLiteral("starting %1 failed: %2").arg(busName(), safeText(error));
        if (m_options.mediaService == MediaServiceSource::Auto) {
            tell(QStringLiteral("On %1, %2. The bridge of this program is used instead.")
                     .arg(m_busDescription, why));
        }
    }
    if (m_options.mediaService == MediaServiceSource::Session) {
        throw missing(QStringLiteral("noMediaService"),
            QStringLiteral("There is no media service on %1: %2. Start one (orka-media-bridge, or "
                           "dLeyna where it is packaged), or leave --media-service session out.")
                .arg(m_busDescription, why));
    }
    return false;
}

void ServiceStarter::startBridge()
{
    const Bus bus(orkaDBusConnection(), remaining());
    if (!bus.owner(busName()).isEmpty()) {
        takenName(); // a bridge was asked for, and somebody else has the name
        return;
    }
    m_bridge = std::make_unique<BridgeProcess>(m_options);
    m_bridge->start(m_bus, m_options.serviceStays());
    waitForBridge();
}

void ServiceStarter::takenName()
{
    if (m_options.bus == QLatin1String("session")) {
        startPrivately();
        return;
    }
    throw missing(QStringLiteral("noMediaService"),
        QStringLiteral("The bridge can't be started on %1: another program has the name %2 there. "
                       "Leave --media-service bridge out to use that one.")
            .arg(m_busDescription, busName()));
}

std::chrono::milliseconds ServiceStarter::startTime() const
{
    return std::min<std::chrono::milliseconds>(startLimit, remaining());
}

/// Until somebody owns the name: our bridge, or one that another program started meanwhile.
void ServiceStarter::waitForBridge()
{
    QDBusServiceWatcher arrival(
        busName(), orkaDBusConnection(), QDBusServiceWatcher::WatchForRegistration);
    const std::chrono::milliseconds limit = startTime();
    Wait wait(limit, QStringLiteral("Starting the media service"));
    connect(&arrival, &QDBusServiceWatcher::serviceRegistered, &wait, &Wait::wake);
    connect(m_bridge.get(), &BridgeProcess::ended, &wait, &Wait::wake);

    const Bus bus(orkaDBusConnection(), startLimit);
    const auto owned = [&bus] {
        return !bus.owner(busName()).isEmpty();
    };
    wait.until([&] { return m_bridge->hasEnded() || owned(); });
    if (!owned())
        m_bridge->fail(tookTooLong(limit));
    m_bridge->isStarted();
}

void ServiceStarter::watch()
{
    m_watcher.disconnect(this);
    m_watcher.setConnection(orkaDBusConnection());
    // Another owner is another service, which knows nothing of what the first was asked.
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    m_watcher.addWatchedService(busName());
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString &, const QString &, const QString &owner) {
            if (m_there && owner != m_owner)
                leave();
            if (!owner.isEmpty())
                emit back();
        });
    meet(Bus(orkaDBusConnection(), m_options.timeout).owner(busName()));
}

void ServiceStarter::meet(const QString &owner)
{
    const Bus bus(orkaDBusConnection(), m_options.timeout);
    m_owner = owner;
    m_there = !owner.isEmpty(); // it may have left since it was seen
    m_isBridge = bus.describeOwner(owner).startsWith(QLatin1String("orka-media-bridge"));
    m_servers = std::make_unique<ServiceServers>(
        owner, bus.ageOf(owner), m_isBridge ? bridgeSearch : otherSearch);
    QStringList addresses = m_options.servers;
    if (m_options.usesKept)
        addresses += KeptAddresses::read();
    addresses.removeDuplicates();
    m_namedServers = std::make_unique<NamedServers>(addresses, m_options.timeout);
}

/// Of the time that a start may take in all.
std::chrono::milliseconds ServiceStarter::remaining() const
{
    const std::chrono::milliseconds left =
        m_options.timeout - std::chrono::milliseconds(m_clock.elapsed());
    return std::max(left, std::chrono::milliseconds(0));
}

void ServiceStarter::leave()
{
    m_there = false;
    emit gone();
}

bool ServiceStarter::returns()
{
    const bool isConnected = orkaDBusConnection().isConnected();
    if (!isConnected && !m_bridge) {
        throw missing(QStringLiteral("noBus"),
            QStringLiteral("The connection to %1 has ended, so no media service can come back. "
                           "Run the command again when the bus is there.")
                .arg(m_busDescription));
    }
    try {
        if (m_bridge) {
            begin(); // the bus may have ended with the bridge
            return true;
        }
        m_clock.start();
        const Bus bus(orkaDBusConnection(), m_options.timeout);
        if (bus.owner(busName()).isEmpty() && bus.canActivate(busName()))
            bus.activate(busName());
        const QString owner = bus.owner(busName());
        if (!owner.isEmpty())
            meet(owner);
    } catch (const Failure &) {
        // there will be another try
    }
    return m_there;
}

bool ServiceStarter::isLasting() const
{
    return BridgeProcess::isLasting(
        Bus(orkaDBusConnection(), m_options.timeout).processOf(m_owner));
}

QDateTime ServiceStarter::startedAt() const
{
    const Bus bus(orkaDBusConnection(), m_options.timeout);
    return QDateTime::currentDateTime().addMSecs(-bus.ageOf(m_owner).count());
}

QString ServiceStarter::program() const
{
    return Bus(orkaDBusConnection(), m_options.timeout).describeOwner(m_owner);
}

bool ServiceStarter::answers()
{
    // One that was just started may search first, whatever the time for an answer is.
    Wait wait(std::max(std::min(m_options.timeout, answerLimit), m_servers->untilSettled()),
        QStringLiteral("Asking the media service"));
    connect(m_servers.get(), &ServiceServers::changed, &wait, &Wait::wake);
    connect(this, &ServiceStarter::gone, &wait, &Wait::wake);
    return wait.until([this] { return m_servers->state() != ServiceServers::Asked || !m_there; });
}

void ServiceStarter::requireAnswer()
{
    if (!answers())
        throw silence();
    requireThere();
}

void ServiceStarter::requireSignOfLife() const
{
    if (!Bus(orkaDBusConnection(), pingLimit).answers(busName()))
        throw silence();
}

Failure ServiceStarter::silence() const
{
    return Failure(NoAnswer, QStringLiteral("noAnswer"),
        QStringLiteral("The media service does not answer: %1 has the name %2 on %3. %4")
            .arg(safeText(program()), busName(), m_busDescription,
                isLasting() ? QStringLiteral("\"orka stop\" ends it.")
                            : QStringLiteral("End it, or start it again.")));
}

void ServiceStarter::requireSameOwner()
{
    if (m_there && Bus(orkaDBusConnection(), m_options.timeout).owner(busName()) != m_owner)
        leave();
    requireThere();
}

void ServiceStarter::requireThere() const
{
    if (!m_there) {
        throw serviceLeft(
            QStringLiteral("The media service has left %1: it crashed or was stopped. What was "
                           "asked of it is lost; run the command again, which starts a new one "
                           "where none is there.")
                .arg(m_busDescription));
    }
}
