#pragma once

#include "MediaServiceNames.h"

#include <QDBusMessage>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <chrono>

/// What the media service answered to one call.
struct ServiceAnswer
{
    /// Whether an answer came in time, be it an error.
    bool came = false;
    /// Both empty where it is no error.
    QString errorName;
    QString error;
    QVariantList values;

    bool isError() const { return !errorName.isEmpty(); }
    bool isGood() const { return came && !isError(); }
};

/// Calls to the media service's own objects, past any worker. Each is waited for in the event loop,
/// `limit` at most.
class ServiceCalls
{
public:
    explicit ServiceCalls(std::chrono::milliseconds limit);

    /// The object of the service itself.
    static QString managerPath() { return QLatin1String(mediaService::managerPath); }

    /// A call of its manager, which lists the servers and announces them.
    static QDBusMessage managerCall(const QString &method);

    /// A call of what only our bridge has, on the same object; without an argument where it is
    /// null.
    static QDBusMessage bridgeCall(const QString &method, const QString &argument = QString());

    /// The object paths of its media servers.
    ServiceAnswer servers() const;
    /// What only our bridge tells: why the list may be about to become longer, in sentences.
    QStringList awaitedServers() const;
    /// A property of a media server.
    static QDBusMessage propertyCall(const QString &server, const QString &name);
    ServiceAnswer property(const QString &server, const QString &name) const;
    /// All that is known of any object.
    static QDBusMessage everythingCall(const QString &object);
    ServiceAnswer everything(const QString &object) const;
    /// The path of one child of a container, counted from 0.
    ServiceAnswer child(const QString &container, uint position) const;
    /// These properties of some children, counted from 0.
    static QDBusMessage childrenCall(const QString &container, uint first, uint count,
        const QStringList &properties = {QStringLiteral("Path")});
    ServiceAnswer children(
        const QString &container, uint first, uint count, const QStringList &properties) const;
    /// At most `most` of the objects below a container that a query of the service's describes, and
    /// how many there are.
    static QDBusMessage searchCall(
        const QString &container, const QString &query, uint most, const QStringList &properties);
    ServiceAnswer search(const QString &container, const QString &query, uint most,
        const QStringList &properties) const;
    static QDBusMessage childCountCall(const QString &container);
    ServiceAnswer childCount(const QString &container) const;
    /// "/…/server/…/36" for the base of a node path, "/uuid:…/36"; empty where none of `servers`
    /// has this UDN.
    QString objectOf(const QString &base, const QStringList &servers) const;

    /// What came of a call; a reply that the library made up, as nothing came in time, is none.
    static ServiceAnswer answerOf(const QDBusMessage &reply);
    ServiceAnswer send(const QDBusMessage &call) const;

private:
    ServiceAnswer call(const QString &object, const QString &interface, const QString &method,
        const QVariantList &arguments) const;

    std::chrono::milliseconds m_limit;
};

/// Whether a server's object path is made of this UDN, as they are since dLeyna 0.6.
bool isPathOf(const QString &server, const QString &udn);
// What is read out of an answer is nothing where the answer isn't good, or is of another type.

/// The object paths in an answer of `servers()`.
QStringList objectPaths(const ServiceAnswer &answer);
/// Whether an answer of `child()`, `children()` or `search()` is a list of objects, be it empty.
bool listsObjects(const ServiceAnswer &answer);
/// The objects in an answer of `child()`, `children()` or `search()`.
QList<QVariantMap> childrenOf(const ServiceAnswer &answer);
/// The value in the answer of `property()` or `childCount()`; invalid where there is none.
QVariant valueOf(const ServiceAnswer &answer);
/// The properties in an answer of `everything()`.
QVariantMap propertiesOf(const ServiceAnswer &answer);
