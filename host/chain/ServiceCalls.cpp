#include "chain/ServiceCalls.h"

#include "chain/Bus.h"
#include "chain/ServiceStarter.h"

#include <api/core/orka.h>

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>

#include <optional>

namespace {

namespace interfaces = mediaService::interfaces;

const QString deviceInterface = QLatin1String(interfaces::device);
const QString bridgeInterface = QLatin1String(interfaces::bridge);
const QString containerInterface = QLatin1String(interfaces::container);
const QString propertiesInterface = QLatin1String(interfaces::properties);

/// As the object path of a server ends since dLeyna 0.6; before, it was a number.
QString escaped(const QString &udn)
{
    QString text;
    const QByteArray bytes = udn.toUtf8();
    for (const char c : bytes) {
        const bool plain =
            (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        text += plain ? QString(QLatin1Char(c))
                      : QStringLiteral("_%1").arg(uchar(c), 2, 16, QLatin1Char('0'));
    }
    return text;
}

constexpr const char *objectsSignature = "aa{sv}";

/// The first value of an answer; of another type than `signature` it is none. Qt would go on for
/// ever taking one type out of an array of another.
std::optional<QDBusArgument> firstOf(const ServiceAnswer &answer, const char *signature)
{
    const auto value = answer.values.value(0).value<QDBusArgument>();
    const bool fits = answer.isGood() && value.currentSignature() == QLatin1String(signature);
    return fits ? std::optional(value) : std::nullopt;
}

template<typename T>
T decoded(const std::optional<QDBusArgument> &value)
{
    return value ? qdbus_cast<T>(*value) : T();
}

} // namespace

ServiceCalls::ServiceCalls(std::chrono::milliseconds limit)
    : m_limit(limit)
{
}

QDBusMessage ServiceCalls::managerCall(const QString &method)
{
    return QDBusMessage::createMethodCall(
        ServiceStarter::busName(), managerPath(), QLatin1String(interfaces::manager), method);
}

QDBusMessage ServiceCalls::bridgeCall(const QString &method, const QString &argument)
{
    QDBusMessage call = managerCall(method);
    call = QDBusMessage::createMethodCall(call.service(), call.path(), bridgeInterface, method);
    if (!argument.isNull())
        call.setArguments({argument});
    return call;
}

ServiceAnswer ServiceCalls::send(const QDBusMessage &call) const
{
    return answerOf(Bus(orkaDBusConnection(), m_limit).send(call));
}

ServiceAnswer ServiceCalls::answerOf(const QDBusMessage &reply)
{
    ServiceAnswer answer;
    const bool isError = reply.type() == QDBusMessage::ErrorMessage;
    // The bus says so where the service ended meanwhile, and the library where the time is over.
    answer.came = reply.type() == QDBusMessage::ReplyMessage
        || (isError && reply.errorName() != QLatin1String("org.freedesktop.DBus.Error.NoReply"));
    if (isError) {
        answer.errorName = reply.errorName();
        answer.error = reply.errorMessage();
    } else {
        answer.values = reply.arguments();
    }
    return answer;
}

ServiceAnswer ServiceCalls::call(const QString &object, const QString &interface,
    const QString &method, const QVariantList &arguments) const
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(ServiceStarter::busName(), object, interface, method);
    call.setArguments(arguments);
    return send(call);
}

ServiceAnswer ServiceCalls::servers() const
{
    return send(managerCall(QStringLiteral("GetServers")));
}

QDBusMessage ServiceCalls::propertyCall(const QString &server, const QString &name)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        ServiceStarter::busName(), server, propertiesInterface, QStringLiteral("Get"));
    call.setArguments({deviceInterface, name});
    return call;
}

ServiceAnswer ServiceCalls::property(const QString &server, const QString &name) const
{
    return send(propertyCall(server, name));
}

QDBusMessage ServiceCalls::everythingCall(const QString &object)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        ServiceStarter::busName(), object, propertiesInterface, QStringLiteral("GetAll"));
    call.setArguments({QString()});
    return call;
}

ServiceAnswer ServiceCalls::everything(const QString &object) const
{
    return send(everythingCall(object));
}

QStringList ServiceCalls::awaitedServers() const
{
    return valueOf(call(managerPath(), propertiesInterface, QStringLiteral("Get"),
                       {bridgeInterface, QStringLiteral("AwaitedServers")}))
        .toStringList();
}

ServiceAnswer ServiceCalls::child(const QString &container, uint position) const
{
    return send(childrenCall(container, position, 1));
}

QDBusMessage ServiceCalls::searchCall(
    const QString &container, const QString &query, uint most, const QStringList &properties)
{
    QDBusMessage call = QDBusMessage::createMethodCall(ServiceStarter::busName(), container,
        containerInterface, QStringLiteral("SearchObjectsEx"));
    call.setArguments({query, 0U, most, properties, QString()});
    return call;
}

ServiceAnswer ServiceCalls::search(
    const QString &container, const QString &query, uint most, const QStringList &properties) const
{
    return send(searchCall(container, query, most, properties));
}

QDBusMessage ServiceCalls::childrenCall(
    const QString &container, uint first, uint count, const QStringList &properties)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        ServiceStarter::busName(), container, containerInterface, QStringLiteral("ListChildren"));
    call.setArguments({first, count, properties});
    return call;
}

ServiceAnswer ServiceCalls::children(
    const QString &container, uint first, uint count, const QStringList &properties) const
{
    return send(childrenCall(container, first, count, properties));
}

QDBusMessage ServiceCalls::childCountCall(const QString &container)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        ServiceStarter::busName(), container, propertiesInterface, QStringLiteral("Get"));
    call.setArguments({containerInterface, QStringLiteral("ChildCount")});
    return call;
}

ServiceAnswer ServiceCalls::childCount(const QString &container) const
{
    return send(childCountCall(container));
}

QString ServiceCalls::objectOf(const QString &base, const QStringList &servers) const
{
    const QString udn = base.section(QLatin1Char('/'), 1, 1);
    const QString below = base.section(QLatin1Char('/'), 2);
    for (const QString &server : servers) {
        if (isPathOf(server, udn)
            || valueOf(property(server, QStringLiteral("UDN"))).toString() == udn)
            return below.isEmpty() ? server : server + QLatin1Char('/') + below;
    }
    return QString();
}

bool isPathOf(const QString &server, const QString &udn)
{
    return server.section(QLatin1Char('/'), -1) == escaped(udn);
}

QStringList objectPaths(const ServiceAnswer &answer)
{
    QStringList paths;
    for (const QDBusObjectPath &path : decoded<QList<QDBusObjectPath>>(firstOf(answer, "ao")))
        paths.append(path.path());
    return paths;
}

QVariant valueOf(const ServiceAnswer &answer)
{
    return answer.values.value(0).value<QDBusVariant>().variant();
}

bool listsObjects(const ServiceAnswer &answer)
{
    return firstOf(answer, objectsSignature).has_value();
}

QList<QVariantMap> childrenOf(const ServiceAnswer &answer)
{
    return decoded<QList<QVariantMap>>(firstOf(answer, objectsSignature));
}

QVariantMap propertiesOf(const ServiceAnswer &answer)
{
    return decoded<QVariantMap>(firstOf(answer, "a{sv}"));
}
