#include "chain/ServiceStarter.h"

#include "Failure.h"
#include "Text.h"
#include "chain/Bus.h"
#include "chain/KeptAddresses.h"
#include "chain/Wait.h"
#include "output/SafeText.h"

#include <api/core/orka.h>

namespace {

constexpr std::chrono::milliseconds leastStartTime(1'000);
/// A media service that is silent for so long hangs.
constexpr std::chrono::milliseconds answerLimit(5'000);
constexpr std::chrono::milliseconds pingLimit(1'000);
/// The bridge answers when its first search is over; the others at once, and search for 3 s.
constexpr std::chrono::milliseconds bridgeSearch(2'000);
constexpr std::chrono::milliseconds otherSearch(3'500);

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
    m_start = std::make_unique<ServiceStart>(m_options);
    watch();
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

void ServiceStarter::leave()
{
    m_there = false;
    emit gone();
}

bool ServiceStarter::returns()
{
    const bool isConnected = orkaDBusConnection().isConnected();
    if (!isConnected && m_start->bridge() == nullptr) {
        throw missing(QStringLiteral("noBus"),
            Text::tr("The connection to %1 has ended, so no media service can come back. "
                     "Run the command again when the bus is there.")
                .arg(busDescription()));
    }
    try {
        if (m_start->bridge() != nullptr) {
            begin(); // the bus may have ended with the bridge
            return true;
        }
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

bool ServiceStarter::answers(const QString &address)
{
    // One that was just started may search first, whatever the time for an answer is.
    Wait wait(std::max(std::min(m_options.timeout, answerLimit), m_servers->untilSettled()),
        Text::tr("Asking the media service"));
    connect(m_servers.get(), &ServiceServers::changed, &wait, &Wait::wake);
    connect(m_namedServers.get(), &NamedServers::changed, &wait, &Wait::wake);
    connect(this, &ServiceStarter::gone, &wait, &Wait::wake);
    return wait.until([&] {
        return m_servers->state() != ServiceServers::Asked || !m_there
            || (!address.isNull() && m_namedServers->hasAnswered(address));
    });
}

void ServiceStarter::requireAnswer(const QString &address)
{
    if (!answers(address))
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
        (isLasting() ? Text::tr(
             "The media service does not answer: %1 has the name %2 on %3. \"orka stop\" ends it.")
                     : Text::tr("The media service does not answer: %1 has the name %2 on %3. End "
                                "it, or start it again."))
            .arg(safeText(program()), busName(), busDescription()));
}

void ServiceStarter::requireSameOwner()
{
    if (m_there && Bus(orkaDBusConnection(), m_options.timeout).owner(busName()) != m_owner)
        leave();
    requireThere();
}

void ServiceStarter::requireThere() const
{
    if (!m_there && !orkaDBusConnection().isConnected()) {
        throw missing(QStringLiteral("busLeft"),
            Text::tr("The connection to %1 has ended: the bus crashed or was stopped. What was "
                     "asked of the media service is lost; run the command again when the bus is "
                     "back. A private bus is started anew.")
                .arg(busDescription()));
    }
    if (!m_there) {
        throw serviceLeft(
            Text::tr("The media service has left %1: it crashed or was stopped. What was "
                     "asked of it is lost; run the command again, which starts a new one "
                     "where none is there.")
                .arg(busDescription()));
    }
}
