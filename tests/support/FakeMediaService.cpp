#include "FakeMediaService.h"

#include "NamesOnBus.h"
#include "PrivateBus.h"

#include <QCoreApplication>
#include <QDBusObjectPath>
#include <QDeadlineTimer>

#include <algorithm>

QString FakeCall::text() const
{
    QStringList shown;
    for (const QVariant &argument : message.arguments()) {
        const bool isList = argument.userType() == QMetaType::QStringList;
        shown.append(
            isList ? QString("[%1]").arg(argument.toStringList().size()) : argument.toString());
    }
    return QStringLiteral("%1 %2 (%3)").arg(member(), path(), shown.join(", "));
}

bool FakeMatch::matches(const FakeCall &call) const
{
    const QVariantList arguments = call.arguments();
    return times != 0 && (member.isEmpty() || member == call.member())
        && (path.isEmpty() || path == call.path())
        && (argument.isEmpty() || arguments.contains(argument));
}

FakeMediaService::FakeMediaService(const PrivateBus &bus)
    : m_bus(bus)
    , m_connection(QString())
{
    comeBack();
}

FakeMediaService::~FakeMediaService()
{
    vanish();
}

void FakeMediaService::comeBack()
{
    static int number = 0;
    m_connectionName = QStringLiteral("fake-media-service-%1").arg(++number);
    m_connection = m_bus.open(m_connectionName);
    m_connection.registerVirtualObject(names::managerPath, this, QDBusConnection::SubPath);
    // After a death the daemon may still be about to notice it.
    const QDeadlineTimer deadline(5000);
    while (!m_connection.registerService(names::service)) {
        if (deadline.hasExpired())
            qFatal("Somebody else on the test's bus is the media service.");
    }
}

void FakeMediaService::vanish()
{
    m_held.clear();
    // Calls that have come and were not handled keep the connection open.
    m_connection.unregisterObject(names::managerPath, QDBusConnection::UnregisterTree);
    QCoreApplication::removePostedEvents(this);
    m_connection = QDBusConnection(QString());
    PrivateBus::close(m_connectionName);
}

void FakeMediaService::announce(const QString &signal, const QString &server)
{
    QDBusMessage message = QDBusMessage::createSignal(names::managerPath, names::manager, signal);
    message << QVariant::fromValue(QDBusObjectPath(server));
    m_connection.send(message);
    ++m_activity;
}

void FakeMediaService::lose(const QString &server)
{
    tree.remove(server);
    announceLost(server);
}

bool FakeMediaService::handleMessage(const QDBusMessage &message, const QDBusConnection &)
{
    if (message.type() != QDBusMessage::MethodCallMessage)
        return false;
    const FakeCall call{message};
    ++m_activity;
    m_calls.append(call);
    const std::optional<Rule> rule = ruleFor(call, false);
    if (rule && !rule->answer)
        m_held.append(call);
    else
        reply(call, rule ? rule->answer(call) : treeAnswer(call));
    return true;
}

std::optional<FakeMediaService::Rule> FakeMediaService::ruleFor(
    const FakeCall &call, bool releasing)
{
    const auto found = std::find_if(m_rules.rbegin(), m_rules.rend(),
        [&](const Rule &rule) { return rule.match.matches(call) && (rule.answer || !releasing); });
    if (found == m_rules.rend())
        return std::nullopt;
    if (found->match.times > 0)
        --found->match.times;
    return *found;
}

FakeReply FakeMediaService::treeAnswer(const FakeCall &call) const
{
    if (call.path() != names::managerPath)
        return tree.answer(call.path(), call.member(), call.arguments());
    if (call.member() != "GetServers")
        return FakeReply::error(names::unknownMethod, "No such method");
    QList<QDBusObjectPath> servers;
    for (const QString &path : tree.servers())
        servers.append(QDBusObjectPath(path));
    return {{QVariant::fromValue(servers)}};
}

void FakeMediaService::reply(const FakeCall &call, const FakeReply &reply)
{
    ++m_activity;
    m_connection.send(reply.isError()
            ? call.message.createErrorReply(reply.errorName, reply.errorMessage)
            : call.message.createReply(reply.values));
}

int FakeMediaService::release(const FakeMatch &match)
{
    int released = 0;
    for (int i = 0; i < m_held.size();) {
        if (!match.matches(m_held.at(i))) {
            ++i;
            continue;
        }
        releaseAt(i);
        ++released;
    }
    return released;
}

void FakeMediaService::releaseAt(int index)
{
    const FakeCall call = m_held.takeAt(index);
    const std::optional<Rule> rule = ruleFor(call, true);
    reply(call, rule ? rule->answer(call) : treeAnswer(call));
}

void FakeMediaService::settle() const
{
    PrivateBus::settle(m_connection, [this] { return m_activity; });
}

QVector<FakeCall> FakeMediaService::calls(const FakeMatch &match) const
{
    QVector<FakeCall> matching;
    std::copy_if(m_calls.begin(), m_calls.end(), std::back_inserter(matching),
        [&](const FakeCall &call) { return match.matches(call); });
    return matching;
}

QString FakeMediaService::callsText() const
{
    QStringList lines;
    for (const FakeCall &call : m_calls)
        lines.append(call.text());
    return lines.join(QLatin1Char('\n'));
}
