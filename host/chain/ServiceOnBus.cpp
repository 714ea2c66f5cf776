#include "chain/ServiceOnBus.h"

#include "Failure.h"
#include "chain/Bus.h"
#include "chain/Installation.h"
#include "chain/StuckBus.h"
#include "chain/Wait.h"
#include "output/Output.h"
#include "output/SafeText.h"

#include <api/core/orka.h>

#include <QDBusError>

namespace {

constexpr std::chrono::seconds startLimit(10);
/// A media service that is silent for so long hangs.
constexpr std::chrono::milliseconds answerLimit(5'000);
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

} // namespace

ServiceOnBus::ServiceOnBus(const GlobalOptions &options)
    : m_options(options)
{
    m_clock.start();
    openBus();
    const bool wantsOurs = m_options.mediaService == MediaServiceSource::Bridge;
    if (wantsOurs || !useServiceOnBus())
        startBridge();
    watch();
}

ServiceOnBus::~ServiceOnBus()
{
    m_watcher.disconnect(this);
    if (m_bridge) {
        m_bridge->disconnect(this);
        m_bridge->stop();
    }
}

void ServiceOnBus::openBus()
{
    m_busDescription = describeBus(m_options.bus);
    if (openInTime(m_options.bus, remaining()))
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
    openPrivateBus();
}

void ServiceOnBus::openPrivateBus()
{
    m_busDaemon = std::make_unique<BusDaemon>();
    m_busDescription = QStringLiteral("a private bus of ours");
    if (!openInTime(m_busDaemon->address(), remaining())) {
        throw missing(QStringLiteral("noBus"),
            QStringLiteral("The private bus at %1 was started but can't be reached: %2. Name a bus "
                           "with --bus ADDRESS.")
                .arg(m_busDaemon->address(), orkaDBusConnection().lastError().message()));
    }
}

/// False where the bridge has to do it; throws where it mustn't.
bool ServiceOnBus::useServiceOnBus()
{
    if (m_busDaemon)
        return false;
    const Bus bus(orkaDBusConnection(), remaining());
    if (!bus.owner(busName()).isEmpty())
        return true;
    QString why = QStringLiteral("nothing on it owns or can be started as %1").arg(busName());
    if (bus.canActivate(busName())) {
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

void ServiceOnBus::startBridge()
{
    const Bus bus(orkaDBusConnection(), remaining());
    if (!m_busDaemon && !bus.owner(busName()).isEmpty())
        takenName(); // a bridge was asked for, and somebody else has the name
    const QString program = m_options.bridge.isEmpty() ? Installation::bridge() : m_options.bridge;
    if (program.isEmpty()) {
        throw missing(QStringLiteral("noMediaService"),
            QStringLiteral("There is no media service: %1 has none, and orka-media-bridge is "
                           "neither installed nor on PATH. Install it, or name it with --bridge.")
                .arg(m_busDescription));
    }
    m_bridge = std::make_unique<ChildProcess>(ChildProcess::Service);
    m_bridge->setStandardOutputFile(QProcess::nullDevice());
    if (m_options.verbosity > 0)
        m_bridge->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_bridge->setProgram(program);
    m_bridge->setArguments(bridgeArguments());
    waitForBridge();
}

void ServiceOnBus::takenName()
{
    if (m_options.bus == QLatin1String("session")) {
        openPrivateBus();
        return;
    }
    throw missing(QStringLiteral("noMediaService"),
        QStringLiteral("The bridge can't be started on %1: another program has the name %2 there. "
                       "Leave --media-service bridge out to use that one.")
            .arg(m_busDescription, busName()));
}

QStringList ServiceOnBus::bridgeArguments() const
{
    QStringList arguments{QStringLiteral("--bus"), bus()};
    if (m_options.verbosity > 0)
        arguments << (m_options.verbosity == 1 ? QStringLiteral("-v") : QStringLiteral("-vv"));
    return arguments;
}

/// Until somebody owns the name: our bridge, or one that another program started meanwhile.
void ServiceOnBus::waitForBridge()
{
    QDBusServiceWatcher arrival(
        busName(), orkaDBusConnection(), QDBusServiceWatcher::WatchForRegistration);
    const std::chrono::milliseconds limit =
        std::min<std::chrono::milliseconds>(startLimit, remaining());
    Wait wait(limit, QStringLiteral("Starting the media service"));
    connect(&arrival, &QDBusServiceWatcher::serviceRegistered, &wait, &Wait::wake);
    connect(m_bridge.get(), &QProcess::stateChanged, &wait, &Wait::wake);
    m_bridge->start();

    const Bus bus(orkaDBusConnection(), startLimit);
    const auto owned = [&bus] {
        return !bus.owner(busName()).isEmpty();
    };
    const auto ended = [this] {
        return m_bridge->state() == QProcess::NotRunning;
    };
    const bool inTime = wait.until([&] { return ended() || owned(); });
    if (!owned()) {
        throw bridgeFailed(inTime
                ? QStringLiteral("it ended with status %1").arg(m_bridge->exitCode())
                : QStringLiteral("it took longer than %1 s").arg(double(limit.count()) / 1000));
    }
}

Failure ServiceOnBus::bridgeFailed(const QString &why)
{
    const QString said = QString::fromUtf8(m_bridge->readAllStandardError()).trimmed();
    return missing(QStringLiteral("noMediaService"),
        QStringLiteral("The media service %1 could not be started: %2%3. Try it by hand with "
                       "--help, or name another with --bridge.")
            .arg(quoted(m_bridge->program()),
                m_bridge->error() == QProcess::FailedToStart ? m_bridge->errorString() : why,
                said.isEmpty() ? QString() : QStringLiteral(" and said %1").arg(quoted(said))));
}

void ServiceOnBus::watch()
{
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

void ServiceOnBus::meet(const QString &owner)
{
    const Bus bus(orkaDBusConnection(), m_options.timeout);
    m_owner = owner;
    m_there = true;
    const bool isBridge = bus.describeOwner(owner).startsWith(QLatin1String("orka-media-bridge"));
    m_servers =
        std::make_unique<ServiceServers>(bus.ageOf(owner), isBridge ? bridgeSearch : otherSearch);
}

/// Of the time that a start may take in all.
std::chrono::milliseconds ServiceOnBus::remaining() const
{
    const std::chrono::milliseconds left =
        m_options.timeout - std::chrono::milliseconds(m_clock.elapsed());
    return std::max(left, std::chrono::milliseconds(0));
}

void ServiceOnBus::leave()
{
    m_there = false;
    emit gone();
}

bool ServiceOnBus::returns()
{
    m_clock.start();
    if (!orkaDBusConnection().isConnected()) {
        throw missing(QStringLiteral("noBus"),
            QStringLiteral("The connection to %1 has ended, so no media service can come back. "
                           "Run the command again when the bus is there.")
                .arg(m_busDescription));
    }
    const Bus bus(orkaDBusConnection(), m_options.timeout);
    try {
        if (bus.owner(busName()).isEmpty() && m_bridge)
            waitForBridge();
        else if (bus.owner(busName()).isEmpty() && bus.canActivate(busName()))
            bus.activate(busName());
    } catch (const Failure &) {
        return false; // there will be another try
    }
    const QString owner = bus.owner(busName());
    if (!owner.isEmpty())
        meet(owner);
    return m_there;
}

QString ServiceOnBus::program() const
{
    return Bus(orkaDBusConnection(), m_options.timeout).describeOwner(m_owner);
}

bool ServiceOnBus::answers()
{
    // One that was just started may search first, whatever the time for an answer is.
    Wait wait(std::max(std::min(m_options.timeout, answerLimit), m_servers->untilSettled()),
        QStringLiteral("Asking the media service"));
    connect(m_servers.get(), &ServiceServers::changed, &wait, &Wait::wake);
    connect(this, &ServiceOnBus::gone, &wait, &Wait::wake);
    return wait.until([this] { return m_servers->state() != ServiceServers::Asked || !m_there; });
}

void ServiceOnBus::requireAnswer()
{
    if (!answers()) {
        throw Failure(NoAnswer, QStringLiteral("noAnswer"),
            QStringLiteral("The media service does not answer: %1 has the name %2 on %3. End it, "
                           "or start it again.")
                .arg(safeText(program()), busName(), m_busDescription));
    }
    requireThere();
}

void ServiceOnBus::requireSameOwner()
{
    if (m_there && Bus(orkaDBusConnection(), m_options.timeout).owner(busName()) != m_owner)
        leave();
    requireThere();
}

void ServiceOnBus::requireThere() const
{
    if (!m_there) {
        throw missing(QStringLiteral("noMediaService"),
            QStringLiteral("The media service has left %1: it crashed or was stopped. What was "
                           "asked of it is lost; run the command again, which starts a new one "
                           "where none is there.")
                .arg(m_busDescription));
    }
}
