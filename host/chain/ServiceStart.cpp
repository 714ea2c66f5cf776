#include "chain/ServiceStart.h"

#include "Failure.h"
#include "KnownSentences.h"
#include "Text.h"
#include "chain/Bus.h"
#include "chain/ServiceStarter.h"
#include "chain/StuckBus.h"
#include "chain/UsersBus.h"
#include "chain/Wait.h"
#include "output/Output.h"
#include "output/SafeText.h"

#include <api/core/orka.h>

#include <QDBusError>
#include <QDBusServiceWatcher>

namespace {

constexpr std::chrono::seconds startLimit(10);

QString serviceName()
{
    return ServiceStarter::busName();
}

QString describeBus(const QString &bus)
{
    if (bus == QLatin1String("session"))
        return Text::tr("the session bus");
    return bus == QLatin1String("system") ? Text::tr("the system bus")
                                          : Text::tr("the bus at %1").arg(quoted(bus));
}

/// Opens the workers' connection.
bool openInTime(const QString &bus, std::chrono::milliseconds limit)
{
    inTimeOnBus(describeBus(bus), limit, [bus] { orkaOpenDBusConnection(bus); });
    return orkaDBusConnection().isConnected();
}

QString tookTooLong(std::chrono::milliseconds limit)
{
    return Text::tr("it took longer than %L1 s").arg(double(limit.count()) / 1000, 0, 'g', 2);
}

} // namespace

ServiceStart::ServiceStart(const GlobalOptions &options)
    : m_options(options)
{
    m_clock.start();
    if (opensNamedBus() && (usesServiceThere() || startsBridgeThere()))
        return;
    m_bridge = std::make_unique<BridgeProcess>(m_options);
    if (!usesUsersBus())
        startOnOwnBus();
}

ServiceStart::~ServiceStart() = default;

/// False where a private one does; throws where it mustn't.
bool ServiceStart::opensNamedBus()
{
    m_bus = m_options.bus;
    m_busDescription = describeBus(m_bus);
    if (openInTime(m_bus, remaining()))
        return true;
    const bool mayMakeOne = m_options.bus == QLatin1String("session")
        && m_options.mediaService != MediaServiceSource::Session;
    if (mayMakeOne)
        return false;
    throw missing(QStringLiteral("noBus"),
        Text::tr("There is no media service, since %1 can't be reached: %2. Start the bus, "
                 "or name another with --bus.")
            .arg(m_busDescription,
                translatedSentence(safeText(orkaDBusConnection().lastError().message()))));
}

/// False where the bridge has to do it; throws where it mustn't.
bool ServiceStart::usesServiceThere()
{
    const Bus bus(orkaDBusConnection(), remaining());
    const QString owner = bus.owner(serviceName());
    const bool isOurs = BridgeProcess::isLasting(bus.processOf(owner));
    if (m_options.mediaService == MediaServiceSource::Bridge && !isOurs)
        return false;
    const bool mayReplace = isOurs && m_options.mediaService != MediaServiceSource::Session;
    if (!owner.isEmpty() && !(mayReplace && BridgeProcess::endedOutdated(bus, m_options)))
        return true;
    requireMayStart();
    return m_options.mediaService != MediaServiceSource::Bridge && activates(bus);
}

/// The same of the service that the bus can start.
bool ServiceStart::activates(const Bus &bus)
{
    QString why = Text::tr("nothing on it owns or can be started as %1").arg(serviceName());
    if (bus.canActivate(serviceName())) {
        const QString error = bus.activate(serviceName());
        if (error.isEmpty())
            return true;
        why = Text::tr("starting %1 failed: %2").arg(serviceName(), safeText(error));
        if (m_options.mediaService == MediaServiceSource::Auto) {
            tell(Text::tr("On %1, %2. The bridge of this program is used instead.")
                     .arg(m_busDescription, why));
        }
    }
    if (m_options.mediaService == MediaServiceSource::Session) {
        throw missing(QStringLiteral("noMediaService"),
            Text::tr("There is no media service on %1: %2. Start one (orka-media-bridge, or "
                     "dLeyna where it is packaged), or leave --media-service session out.")
                .arg(m_busDescription, why));
    }
    return false;
}

/// False where somebody else has the name, and a private bus does; throws where it mustn't.
bool ServiceStart::startsBridgeThere()
{
    requireMayStart();
    if (Bus(orkaDBusConnection(), remaining()).owner(serviceName()).isEmpty()) {
        m_bridge = std::make_unique<BridgeProcess>(m_options);
        m_bridge->start(m_bus, m_options.serviceStays());
        waitForBridge();
        return true;
    }
    if (m_options.bus == QLatin1String("session"))
        return false;
    throw missing(QStringLiteral("noMediaService"),
        Text::tr("The bridge can't be started on %1: another program has the name %2 there. "
                 "Leave --media-service bridge out to use that one.")
            .arg(m_busDescription, serviceName()));
}

/// False where the service isn't to be kept for the next command, or can't be; that is said.
bool ServiceStart::usesUsersBus()
{
    if (!m_options.serviceStays())
        return false;
    std::unique_ptr<UsersBus> users;
    try {
        users = std::make_unique<UsersBus>();
    } catch (const Failure &failure) {
        if (!m_options.mayStartService)
            throw;
        tell(failure.sentence());
        return false;
    }
    m_bus = users->address();
    m_busDescription = Text::tr("the private bus of this user");
    openInTime(m_bus, remaining()); // what was open before isn't this one
    waitOn(*users);
    return true;
}

/// Whichever command comes first starts it; the others wait for that, or for what is left of an
/// earlier one to end.
void ServiceStart::waitOn(UsersBus &users)
{
    bool isStarting = false;
    const std::chrono::milliseconds limit = startTime();
    const bool inTime = Wait(limit, Text::tr("Starting the media service")).poll([&] {
        if (isStarting && m_bridge->hasEnded())
            m_bridge->fail(QString());
        if (!isStarting && users.take()) {
            requireMayStart();
            isStarting = true;
            m_bridge->startWith(users);
        }
        return isOn(users);
    });
    if (!inTime && !isStarting)
        throw users.blocked();
    if (!inTime)
        m_bridge->fail(tookTooLong(limit));
    m_bridge->isStarted();
}

bool ServiceStart::isOn(const UsersBus &users)
{
    const bool isOpen = orkaDBusConnection().isConnected()
        || (users.isListening() && openInTime(m_bus, remaining()));
    const Bus bus(orkaDBusConnection(), remaining());
    return isOpen && !bus.owner(serviceName()).isEmpty()
        && !BridgeProcess::endedOutdated(bus, m_options);
}

void ServiceStart::startOnOwnBus()
{
    requireMayStart();
    m_busDaemon = std::make_unique<BusDaemon>();
    m_bus = m_busDaemon->address();
    m_busDescription = Text::tr("a private bus of ours");
    if (!openInTime(m_bus, remaining())) {
        throw missing(QStringLiteral("noBus"),
            Text::tr("The private bus at %1 was started but can't be reached: %2. Name a bus "
                     "with --bus ADDRESS.")
                .arg(m_bus, orkaDBusConnection().lastError().message()));
    }
    m_bridge->start(m_bus, false);
    waitForBridge();
}

/// Until somebody owns the name: our bridge, or one that another program started meanwhile.
void ServiceStart::waitForBridge()
{
    QDBusServiceWatcher arrival(
        serviceName(), orkaDBusConnection(), QDBusServiceWatcher::WatchForRegistration);
    const std::chrono::milliseconds limit = startTime();
    Wait wait(limit, Text::tr("Starting the media service"));
    QObject::connect(&arrival, &QDBusServiceWatcher::serviceRegistered, &wait, &Wait::wake);
    QObject::connect(m_bridge.get(), &BridgeProcess::ended, &wait, &Wait::wake);

    const Bus bus(orkaDBusConnection(), startLimit);
    const auto owned = [&bus] {
        return !bus.owner(serviceName()).isEmpty();
    };
    wait.until([&] { return m_bridge->hasEnded() || owned(); });
    if (!owned())
        m_bridge->fail(tookTooLong(limit));
    m_bridge->isStarted();
}

void ServiceStart::requireMayStart() const
{
    if (!m_options.mayStartService) {
        throw missing(QStringLiteral("noMediaService"),
            Text::tr("No media service is running on %1.").arg(m_busDescription));
    }
}

/// For a service to be there.
std::chrono::milliseconds ServiceStart::startTime() const
{
    return std::min<std::chrono::milliseconds>(startLimit, remaining());
}

/// Of the time that a start may take in all.
std::chrono::milliseconds ServiceStart::remaining() const
{
    const std::chrono::milliseconds left =
        m_options.timeout - std::chrono::milliseconds(m_clock.elapsed());
    return std::max(left, std::chrono::milliseconds(0));
}
