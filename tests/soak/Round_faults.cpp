#include "Round.h"

#include "NamesOnBus.h"
#include "NetworkInfo.h"

#include <QDBusObjectPath>
#include <QDBusVariant>

namespace {

const QStringList propertyNames{"Type", "MIMEType", "DisplayName", "Artist", "Album", "AlbumArtURL",
    "URLs", "Creator", "Genre", "Path", "Date", "Duration", "Bitrate", "SampleRate", "ChildCount",
    ""};
const QStringList errorNames{
    names::operationFailed, names::unknownMethod, "org.freedesktop.DBus.Error.NoReply"};
const QStringList members{"", "", "Get", "GetAll", "ListChildren", "SearchObjectsEx"};
const QStringList oddServers{"/", names::managerPath, names::serverPrefix + "nobody",
    names::serverPrefix + "a/b/c", "/somebody/else"};

QVariantMap track(int number)
{
    const QDBusObjectPath path(names::serverPrefix + QStringLiteral("3/%1").arg(number));
    return {{"Type", "music"}, {"DisplayName", "Track"}, {"MIMEType", "audio/mpeg"},
        {"URLs", QStringList{"http://10.0.0.9/track"}}, {"Path", QVariant::fromValue(path)}};
}

} // namespace

/// Three servers, one of them of the older path grammar; folders in folders, the last of which
/// contains itself, tracks.
void Round::furnish()
{
    FakeTree tree;
    m_nodes.clear();
    for (const char *number : {"1", "2", "3"}) {
        const QString udn = QString("uuid:soak-") + number;
        const QVariant caps =
            *number == '2' ? m_dice.value() : QStringList{"Artist", "DisplayName"};
        const QString server = tree.addServer(
            udn, m_dice.text(), caps, *number == '3' ? names::serverPrefix + "3" : QString());
        QString parent = server;
        for (int object = 0; object < 27; ++object) {
            const QByteArray id = QByteArray::number(object);
            m_nodes.append('/' + udn + FakeTree::objectPath(QString(), id));
            if (object % 9 == 0)
                parent = tree.addContainer(parent, id, m_dice.text());
            else
                tree.addTrack(parent, id, m_dice.text(), {{"Artist", m_dice.text()}});
        }
        m_nodes.append('/' + udn);
        tree.addLink(parent, parent);
    }
    m_service.tree = tree;
}

void Round::takeRules()
{
    m_service.forgetRules();
    m_service.answer({}, [this](const FakeCall &call) { return answer(call); });
}

/// Mostly what the tree holds, else what a correct service would never say.
FakeReply Round::answer(const FakeCall &call)
{
    // Without servers there is little to ask for, so what is read of them fails less often.
    const bool isAboutServers =
        call.path() == names::managerPath || call.arguments().contains(names::device);
    if (!m_dice.chance(isAboutServers ? m_faultRate / 6 : m_faultRate))
        return m_service.treeAnswer(call);
    const int kind = m_dice.below(8);
    if (kind < 3)
        return FakeReply::error(m_dice.pick(errorNames), m_dice.text());
    if (kind < 5 || call.path() == names::managerPath)
        return {QVariantList{m_dice.value(), m_dice.value()}.mid(m_dice.below(3))};
    if (call.member() == "Get")
        return {{QVariant::fromValue(QDBusVariant(m_dice.value()))}};
    if (call.member() == "GetAll")
        return {{strangeObject()}};
    QList<QVariantMap> objects;
    if (m_dice.chance(2)) {
        for (int i = 0; i < 2000; ++i)
            objects.append(track(i));
    }
    for (int left = m_dice.below(6); left > 0; --left)
        objects.append(strangeObject());
    FakeReply reply{{propertyMaps(objects)}};
    if (call.member() == "SearchObjectsEx")
        reply.values.append(uint(objects.size()));
    return reply;
}

QVariantMap Round::strangeObject()
{
    QVariantMap object = track(m_dice.below(20));
    // Containers among them are listed in turn; their number is limited, so a walk ends.
    if (m_dice.chance(30))
        object.insert("Type", "container");
    for (const QString &name : propertyNames) {
        if (m_dice.chance(20))
            object.insert(name, m_dice.value());
        else if (m_dice.chance(10))
            object.remove(name);
    }
    return object;
}

void Round::disturb()
{
    // A dead service comes back before anything else happens to it.
    if (m_isGone) {
        revive();
        return;
    }
    const QList<QString> servers = m_service.tree.servers() + oddServers.mid(m_dice.below(6));
    const QList<std::function<void()>> disturbances{
        // some answers late, some calls never answered for a while
        [&] {
            m_service.hold({m_dice.pick(members), {}, {}, 1 + m_dice.below(15)});
        },
        [&] { m_service.hold({}); },
        [&] { takeRules(); },
        // out of order
        [&] {
            for (int left = m_dice.below(20); left > 0 && m_service.held() > 0; --left)
                m_service.releaseAt(m_dice.below(m_service.held()));
        },
        [&] { m_service.release(); },
        // killed; replaced by another
        [&] {
            m_service.vanish();
            m_isGone = true;
        },
        [&] {
            m_service.vanish();
            furnish();
            revive();
        },
        // servers, among them what is none: lost, found, found twice
        [&] { m_service.announceLost(m_dice.pick(servers)); },
        [&] {
            const QString server = m_dice.pick(servers);
            for (int times = m_dice.below(3); times >= 0; --times)
                m_service.announceFound(server);
        },
        [&] {
            publishNetwork(QStringList{m_dice.text(), "192.168.1.7"}.mid(m_dice.below(3)));
        },
    };
    m_dice.pick(disturbances)();
}

void Round::revive()
{
    m_service.comeBack();
    m_isGone = false;
    for (const QString &server : m_service.tree.servers())
        m_service.announceFound(server);
}
