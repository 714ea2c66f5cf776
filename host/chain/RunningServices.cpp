#include "chain/RunningServices.h"

#include "Failure.h"
#include "Text.h"
#include "chain/BridgeProcess.h"
#include "chain/Bus.h"
#include "chain/ServiceCalls.h"
#include "chain/ServiceStarter.h"
#include "chain/StuckBus.h"
#include "chain/UsersBus.h"
#include "chain/Wait.h"
#include "output/SafeText.h"

#include <api/core/orka.h>

#include <QFile>
#include <QVector>

#include <algorithm>
#include <csignal>

namespace {

constexpr std::chrono::milliseconds endLimit(5'000);
/// Nothing survives SIGKILL for longer.
constexpr std::chrono::milliseconds killLimit(2'000);
constexpr std::chrono::milliseconds answerLimit(1'000);

bool endsWithin(std::chrono::milliseconds limit, const std::function<bool()> &ended)
{
    return Wait(limit, Text::tr("Ending the media service")).poll(ended);
}

Failure staysThere(const QString &program)
{
    return Failure(NoAnswer, QStringLiteral("noAnswer"),
        Text::tr("The media service %1 was told to end and doesn't. End the process.")
            .arg(safeText(program)));
}

bool isRunning(uint process)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(process));
    if (process == 0 || !stat.open(QIODevice::ReadOnly))
        return false;
    const QByteArray line = stat.readAll();
    return line.mid(line.lastIndexOf(')') + 2, 1) != "Z"; // nobody may wait for it
}

/// Returns the processes of the service that was there and of its bus; none where none was.
QVector<uint> endOn(const QString &name)
{
    const QString description = Text::tr("the bus %1").arg(quoted(name));
    inTimeOnBus(description, answerLimit, [name] { orkaOpenDBusConnection(name); });
    const Bus bus(orkaDBusConnection(), answerLimit);
    const QString service = ServiceStarter::busName();
    const QString owner = bus.owner(service);
    if (owner.isEmpty())
        return {};
    const QString program = bus.describeOwner(owner);
    const uint process = bus.processOf(owner);
    const QVector<uint> processes{process, bus.processOf(QStringLiteral("org.freedesktop.DBus"))};
    const QDBusMessage stop = ServiceCalls::bridgeCall(QStringLiteral("Stop"));
    if (bus.send(stop).type() != QDBusMessage::ReplyMessage
        && !(BridgeProcess::isLasting(process) && kill(pid_t(process), SIGTERM) == 0)) {
        throw Failure(AnsweredWithError, QStringLiteral("notOurs"),
            Text::tr("The media service %1 isn't the bridge of this program, so it is left "
                     "alone. End it as it was started.")
                .arg(safeText(program)));
    }
    const auto hasEnded = [&] {
        return bus.owner(service) != owner;
    };
    if (endsWithin(endLimit, hasEnded))
        return processes;
    // Frozen, it hears nothing else.
    if (!BridgeProcess::isLasting(process) || kill(pid_t(process), SIGKILL) != 0
        || !endsWithin(killLimit, hasEnded))
        throw staysThere(program);
    return processes;
}

/// Whatever holds the lock: a bus that is frozen can't be asked to end, nor can a command that was
/// stopped while it started one.
void killHolders(UsersBus &users)
{
    for (const pid_t process : users.holders())
        kill(process, SIGKILL);
    if (!endsWithin(killLimit, [&] { return users.take(); }))
        throw users.blocked();
    users.removeSocket();
}

void endOnUsersBus(UsersBus &users)
{
    // One that is being started is ended when it is there; a command that begins meanwhile may hold
    // the lock for a service of its own.
    QVector<uint> processes;
    const auto hasEnded = [&] {
        if (processes.isEmpty() && users.isListening())
            processes = endOn(users.address());
        return users.take()
            || (!processes.isEmpty()
                && std::none_of(processes.begin(), processes.end(), isRunning));
    };
    try {
        if (!endsWithin(endLimit, hasEnded))
            killHolders(users);
    } catch (const StuckBus &) {
        killHolders(users); // which lets go of the thread that is left in it, too
    }
}

} // namespace

bool endRunningServices(const GlobalOptions &options)
{
    const bool wasThere = !endOn(options.bus).isEmpty();
    if (options.bus != QLatin1String("session"))
        return wasThere;
    UsersBus users;
    if (users.take())
        return wasThere;
    endOnUsersBus(users);
    return true;
}
