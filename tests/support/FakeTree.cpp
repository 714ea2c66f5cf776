#include "FakeTree.h"

#include "FakeQuery.h"
#include "NamesOnBus.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>

namespace {

const QString childCount = "ChildCount";

QVariant pathValue(const QString &path)
{
    return QVariant::fromValue(QDBusObjectPath(path));
}

QVariantMap with(QVariantMap properties, const QVariantMap &more)
{
    properties.insert(more);
    return properties;
}

/// Which interface a property belongs to; what isn't listed is an item's.
QString interfaceOf(const QString &property)
{
    static const QStringList ofObject{"Path", "Parent", "DisplayName", "Creator", "Type", "TypeEx",
        "Restricted", "ObjectUpdateID", "DLNAManaged"};
    static const QStringList ofContainer{"Searchable", "CreateClasses", "ContainerUpdateID"};
    static const QStringList ofDevice{
        "FriendlyName", "UDN", "SearchCaps", "DeviceType", "Location", "ModelName"};
    if (ofObject.contains(property))
        return names::object;
    if (ofContainer.contains(property))
        return names::container;
    return ofDevice.contains(property) ? names::device : names::item;
}

} // namespace

QVariant propertyMaps(const QList<QVariantMap> &maps)
{
    QDBusArgument array;
    array.beginArray(qMetaTypeId<QVariantMap>());
    for (const QVariantMap &map : maps)
        array << map;
    array.endArray();
    return QVariant::fromValue(array);
}

bool FakeTree::Object::isContainer() const
{
    return properties.value("Type").toString() == "container";
}

QString FakeTree::serverPath(const QString &udn)
{
    QString path = names::serverPrefix;
    for (const char byte : udn.toUtf8()) {
        const bool plain = isalnum(static_cast<unsigned char>(byte)) != 0;
        path += plain ? QString(QLatin1Char(byte))
                      : QLatin1Char('_') + QString::fromLatin1(QByteArray(1, byte).toHex());
    }
    return path;
}

QString FakeTree::objectPath(const QString &server, const QByteArray &id)
{
    return server + QLatin1Char('/') + QString::fromLatin1(id.toHex());
}

QString FakeTree::addServer(
    const QString &udn, const QString &name, const QVariant &searchCaps, const QString &path)
{
    const QString place = path.isEmpty() ? serverPath(udn) : path;
    Object server;
    server.parent = place;
    server.properties = {{"FriendlyName", name}, {"UDN", udn}, {"DisplayName", "root"},
        {"Type", "container"}, {"TypeEx", "container"}, {"Path", pathValue(place)},
        {"Parent", pathValue(place)}, {"Searchable", true}};
    if (searchCaps.isValid())
        server.properties.insert("SearchCaps", searchCaps);
    m_objects.insert(place, server);
    m_servers.removeAll(place);
    m_servers.append(place);
    return place;
}

QString FakeTree::addContainer(
    const QString &parent, const QByteArray &id, const QString &title, const QVariantMap &more)
{
    return addItem(parent, id,
        with({{"DisplayName", title}, {"Type", "container"}, {"TypeEx", "container.storageFolder"},
                 {"Searchable", true}},
            more));
}

QString FakeTree::addTrack(
    const QString &parent, const QByteArray &id, const QString &title, const QVariantMap &more)
{
    const QStringList urls{"http://192.0.2.1:8200/MediaItems/" + QString(id) + ".mp3"};
    return addItem(parent, id,
        with({{"DisplayName", title}, {"Type", "music"}, {"TypeEx", "music"},
                 {"MIMEType", "audio/mpeg"}, {"URLs", urls}},
            more));
}

QString FakeTree::addItem(const QString &parent, const QByteArray &id, QVariantMap properties)
{
    const QString path = objectPath(serverOf(parent), id);
    properties.insert("Path", pathValue(path));
    properties.insert("Parent", pathValue(parent));
    m_objects.insert(path, {parent, properties, {}});
    addLink(parent, path);
    return path;
}

void FakeTree::addLink(const QString &parent, const QString &object)
{
    m_objects[parent].children.append(object);
}

void FakeTree::remove(const QString &path)
{
    const Object object = m_objects.take(path);
    m_servers.removeAll(path);
    if (m_objects.contains(object.parent))
        m_objects[object.parent].children.removeAll(path);
    for (const QString &child : object.children)
        remove(child);
}

QVariantMap FakeTree::properties(const QString &path) const
{
    return m_objects.value(path).properties;
}

void FakeTree::setProperty(const QString &path, const QString &name, const QVariant &value)
{
    m_objects[path].properties.insert(name, value);
}

FakeReply FakeTree::answer(
    const QString &path, const QString &member, const QVariantList &arguments) const
{
    const auto object = m_objects.find(path);
    if (object == m_objects.end())
        return missing(path);
    if (member == "Get")
        return get(*object, arguments.value(0).toString(), arguments.value(1).toString());
    if (member == "GetAll")
        return getAll(*object, arguments.value(0).toString());
    if (member == "ListChildren")
        return listChildren(*object, arguments);
    if (member == "SearchObjectsEx")
        return search(path, arguments);
    return FakeReply::error(names::unknownMethod, "No such method: " + member);
}

FakeReply FakeTree::missing(const QString &path) const
{
    if (!m_objects.contains(serverOf(path)))
        return FakeReply::error(names::unknownMethod, "Object does not exist at path " + path);
    const QByteArray id = path.section(QLatin1Char('/'), 6).toLatin1();
    if (id.isEmpty() || QByteArray::fromHex(id).toHex() != id)
        return FakeReply::error(names::badPath, "object path is badly formed.");
    return FakeReply::error(names::operationFailed, "Browse operation failed: No such object");
}

FakeReply FakeTree::interfaceError(const Object &object, const QString &interface) const
{
    const bool container = object.isContainer();
    const QString message =
        QString("Interface not supported on %1.").arg(container ? "container" : "item");
    const bool supported = interface.isEmpty() || interface == names::object
        || (interface == names::container && container) || (interface == names::item && !container)
        || (interface == names::device && object.isServer());
    return supported ? FakeReply() : FakeReply::error(names::unknownInterface, message);
}

/// Containers may have an item's properties too; asked for all interfaces they give them.
QVariantMap FakeTree::ofInterface(const Object &object, const QString &interface) const
{
    QVariantMap found;
    for (auto it = object.properties.begin(); it != object.properties.end(); ++it) {
        if (interface.isEmpty() || interfaceOf(it.key()) == interface)
            found.insert(it.key(), it.value());
    }
    if (object.isContainer() && (interface.isEmpty() || interface == names::container))
        found.insert(childCount, uint(object.children.size()));
    return found;
}

FakeReply FakeTree::get(const Object &object, const QString &interface, const QString &name) const
{
    const FakeReply wrong = interfaceError(object, interface);
    if (wrong.isError())
        return wrong;
    const bool count = name == childCount && interface != names::device;
    const QVariant value =
        count ? uint(object.children.size()) : ofInterface(object, interface).value(name);
    if (!value.isValid())
        return FakeReply::error(names::unknownProperty, "Unknown property " + name);
    return {{QVariant::fromValue(QDBusVariant(value))}};
}

FakeReply FakeTree::getAll(const Object &object, const QString &interface) const
{
    const FakeReply wrong = interfaceError(object, interface);
    return wrong.isError() ? wrong : FakeReply{{ofInterface(object, interface)}};
}

FakeReply FakeTree::listChildren(const Object &object, const QVariantList &arguments) const
{
    const QList<QVariantMap> rows = slice(object.children, arguments.value(0).toUInt(),
        arguments.value(1).toUInt(), arguments.value(2).toStringList());
    return {{propertyMaps(rows)}};
}

FakeReply FakeTree::search(const QString &path, const QVariantList &arguments) const
{
    const QStringList caps = properties(serverOf(path)).value("SearchCaps").toStringList();
    if (caps.isEmpty())
        return FakeReply::error(names::operationFailed, "Search operation failed: Action Failed");
    const FakeQuery query(arguments.value(0).toString());
    if (!query.name.isEmpty()
        && !QStringList{"Artist", "Album", "DisplayName", "Type"}.contains(query.name))
        return FakeReply::error(names::badQuery, "Query string is not valid.");
    QStringList all;
    collect(path, &all);
    QStringList found;
    for (const QString &candidate : qAsConst(all)) {
        const QString value = properties(candidate).value(query.name).toString();
        if (query.fits(value == "music" ? "audio.music" : value))
            found.append(candidate);
    }
    const QList<QVariantMap> rows = slice(found, arguments.value(1).toUInt(),
        arguments.value(2).toUInt(), arguments.value(3).toStringList());
    return {{propertyMaps(rows), uint(found.size())}};
}

void FakeTree::collect(const QString &path, QStringList *found) const
{
    for (const QString &child : m_objects.value(path).children) {
        if (found->contains(child))
            continue;
        found->append(child);
        collect(child, found);
    }
}

QList<QVariantMap> FakeTree::slice(
    const QStringList &paths, uint offset, uint max, const QStringList &filter) const
{
    QList<QVariantMap> rows;
    if (offset >= uint(paths.size()))
        return rows;
    for (const QString &path : paths.mid(int(offset), max == 0 ? -1 : int(max))) {
        QVariantMap all = ofInterface(m_objects.value(path), QString());
        QVariantMap row;
        for (auto it = all.begin(); it != all.end(); ++it) {
            if (filter.contains(it.key()) || filter == QStringList{"*"})
                row.insert(it.key(), it.value());
        }
        rows.append(row);
    }
    return rows;
}
