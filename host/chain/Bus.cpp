#include "chain/Bus.h"

#include "Text.h"
#include "chain/Wait.h"

#include <QDBusPendingCallWatcher>
#include <QFile>
#include <QStringList>

#include <ctime>
#include <unistd.h>

namespace {

const QString daemonName = QStringLiteral("org.freedesktop.DBus");

bool failed(const QDBusMessage &reply)
{
    return reply.type() != QDBusMessage::ReplyMessage;
}

QString commandOf(uint process)
{
    QFile file(QStringLiteral("/proc/%1/cmdline").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    const QByteArray program = file.readAll().split('\0').value(0);
    return QString::fromLocal8Bit(program.mid(program.lastIndexOf('/') + 1));
}

/// As the kernel counts, since the machine's start; 0 where it can't be known.
std::chrono::milliseconds startOf(uint process)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray stat = file.readAll();
    // The program's name comes in parentheses and may hold anything.
    const QByteArray ticks = stat.mid(stat.lastIndexOf(')') + 2).split(' ').value(19);
    return std::chrono::milliseconds(ticks.toLongLong() * 1000 / sysconf(_SC_CLK_TCK));
}

std::chrono::milliseconds sinceBoot()
{
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::milliseconds(now.tv_nsec / 1'000'000);
}

} // namespace

Bus::Bus(const QDBusConnection &connection, std::chrono::milliseconds limit)
    : m_connection(connection)
    , m_limit(limit)
{
}

QDBusMessage Bus::send(const QDBusMessage &call) const
{
    const QDBusPendingCallWatcher watcher(m_connection.asyncCall(call, int(m_limit.count())));
    Wait wait(m_limit);
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &wait, &Wait::wake);
    return wait.until([&] { return watcher.isFinished(); }) ? watcher.reply() : QDBusMessage();
}

QDBusMessage Bus::ask(const QString &method, const QVariantList &arguments) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        daemonName, QStringLiteral("/org/freedesktop/DBus"), daemonName, method);
    call.setArguments(arguments);
    return send(call);
}

QString Bus::owner(const QString &name) const
{
    const QDBusMessage reply = ask(QStringLiteral("GetNameOwner"), {name});
    return failed(reply) ? QString() : reply.arguments().value(0).toString();
}

bool Bus::canActivate(const QString &name) const
{
    const QDBusMessage reply = ask(QStringLiteral("ListActivatableNames"), {});
    return !failed(reply) && reply.arguments().value(0).toStringList().contains(name);
}

QString Bus::activate(const QString &name) const
{
    const QDBusMessage reply = ask(QStringLiteral("StartServiceByName"), {name, 0U});
    if (!failed(reply))
        return QString();
    return reply.errorMessage().isEmpty() ? Text::tr("the bus did not answer in time")
                                          : reply.errorMessage();
}

bool Bus::answers(const QString &name) const
{
    return !failed(send(QDBusMessage::createMethodCall(name, QStringLiteral("/"),
        QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping"))));
}

uint Bus::processOf(const QString &uniqueName) const
{
    const QDBusMessage reply = ask(QStringLiteral("GetConnectionUnixProcessID"), {uniqueName});
    return failed(reply) ? 0 : reply.arguments().value(0).toUInt();
}

QString Bus::describeOwner(const QString &uniqueName) const
{
    const uint process = processOf(uniqueName);
    const QString command = process == 0 ? QString() : commandOf(process);
    return command.isEmpty() ? uniqueName
                             : Text::tr("%1 (process %2)").arg(command, QString::number(process));
}

std::chrono::milliseconds Bus::ageOf(const QString &uniqueName) const
{
    const std::chrono::milliseconds start = startOf(processOf(uniqueName));
    return start.count() > 0 ? sinceBoot() - start : std::chrono::milliseconds(0);
}
