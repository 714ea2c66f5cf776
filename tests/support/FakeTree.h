#pragma once

#include <QHash>
#include <QMetaType>
#include <QStringList>
#include <QVariantMap>

/// What a call is answered with: values, or an error.
struct FakeReply
{
    QVariantList values = {};
    QString errorName = {};
    QString errorMessage = {};

    bool isError() const { return !errorName.isEmpty(); }
    static FakeReply error(const QString &name, const QString &message)
    {
        return {{}, name, message};
    }
};

Q_DECLARE_METATYPE(FakeReply)

/// A list of property maps as it travels (aa{sv}), made without the plug-in's registered types.
QVariant propertyMaps(const QList<QVariantMap> &maps);

/// The media servers of a fake service with everything on them, and the answers that the real
/// service gives about them. Knows nothing of the bus.
class FakeTree
{
public:
    /// Where a server with this UDN stands in the newer grammar: every byte that isn't a letter or
    /// a digit as `_xx`.
    static QString serverPath(const QString &udn);
    /// Where the object with this UPnP id stands below a server.
    static QString objectPath(const QString &server, const QByteArray &id);

    /// `searchCaps` is what the property `SearchCaps` holds; an invalid variant leaves the property
    /// out. Returns the server's path: `path`, or that of its UDN.
    QString addServer(const QString &udn, const QString &name,
        const QVariant &searchCaps = QStringList(), const QString &path = QString());
    /// Returns the object's path. `more` overrides what an ordinary container has.
    QString addContainer(const QString &parent, const QByteArray &id, const QString &title,
        const QVariantMap &more = {});
    /// `properties` as they are, with a path and a parent.
    QString addItem(const QString &parent, const QByteArray &id, QVariantMap properties);
    /// A music track with a URL. `more` overrides.
    QString addTrack(const QString &parent, const QByteArray &id, const QString &title,
        const QVariantMap &more = {});
    /// Makes an object a child of a second container, or of itself.
    void addLink(const QString &parent, const QString &object);
    /// The object and everything below it.
    void remove(const QString &path);

    const QStringList &servers() const { return m_servers; }
    QVariantMap properties(const QString &path) const;
    void setProperty(const QString &path, const QString &name, const QVariant &value);

    /// The answer of the object at `path` to one method of its interfaces.
    FakeReply answer(
        const QString &path, const QString &member, const QVariantList &arguments) const;

private:
    struct Object
    {
        QString parent;
        QVariantMap properties;
        QStringList children;
        bool isServer() const { return properties.contains(QStringLiteral("UDN")); }
        bool isContainer() const;
    };

    static QString serverOf(const QString &path) { return path.section('/', 0, 5); }
    FakeReply missing(const QString &path) const;
    FakeReply interfaceError(const Object &object, const QString &interface) const;
    QVariantMap ofInterface(const Object &object, const QString &interface) const;
    FakeReply get(const Object &object, const QString &interface, const QString &name) const;
    FakeReply getAll(const Object &object, const QString &interface) const;
    FakeReply listChildren(const Object &object, const QVariantList &arguments) const;
    FakeReply search(const QString &path, const QVariantList &arguments) const;
    void collect(const QString &path, QStringList *found) const;
    QList<QVariantMap> slice(
        const QStringList &paths, uint offset, uint max, const QStringList &filter) const;

    QHash<QString, Object> m_objects;
    QStringList m_servers;
};
