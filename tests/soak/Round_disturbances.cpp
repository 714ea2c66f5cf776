#include "Round.h"

#include "MediaServiceNames.h"
#include "NetworkInfo.h"

namespace {

const QStringList members{"", "", "Get", "GetAll", "ListChildren", "SearchObjectsEx"};

const QStringList oddServers{"/", names::managerPath, "/com/intel/dLeynaServer/server",
    names::serverPrefix + "nobody", names::serverPrefix + "a/b/c", "/somebody/else"};

} // namespace

/// Three servers, one of them of the older path grammar; folders in folders, one that contains
/// itself, tracks.
void Round::furnish()
{
    FakeTree tree;
    m_nodes.clear();
    for (int number = 1; number <= 3; ++number) {
        const QString udn = QStringLiteral("uuid:soak-%1").arg(number);
        const QString old = number == 3 ? names::serverPrefix + "3" : QString();
        const QVariant caps = number == 2 ? arbitraryValue(m_dice)
                                          : QVariant(QStringList{"Artist", "Album", "DisplayName"});
        const QString server = tree.addServer(udn, m_dice.text(), caps, old);
        const auto noted = [&](const QString &object) {
            m_nodes.append(QString(object).replace(server, '/' + udn));
            return object;
        };
        QString parent = noted(server);
        for (int depth = 0; depth < 3; ++depth) {
            const QByteArray id = QByteArray::number(depth);
            parent = noted(tree.addContainer(parent, id, m_dice.text()));
            for (int track = 0; track < 8; ++track)
                noted(tree.addTrack(parent, id + '-' + QByteArray::number(track), m_dice.text(),
                    {{"Artist", m_dice.text()}}));
        }
        tree.addLink(parent, parent);
    }
    m_service.tree = tree;
}

void Round::takeRules()
{
    m_service.forgetRules();
    m_service.answer({}, [this](const FakeCall &call) { return answer(call); });
}

void Round::disturb()
{
    using Disturbance = void (Round::*)();
    static const QList<Disturbance> all{&Round::holdSome, &Round::holdSome, &Round::releaseSome,
        &Round::releaseSome, &Round::releaseSome, &Round::freezeOrThaw, &Round::kill,
        &Round::replaceService, &Round::announceServers, &Round::announceOddities,
        &Round::changeNetwork};
    // A dead service comes back before anything else happens to it.
    if (m_isGone)
        revive();
    else
        (this->*m_dice.pick(all))();
}

void Round::holdSome()
{
    const int calls = 1 + int(m_dice.below(15));
    m_service.hold({m_dice.pick(members), {}, {}, calls});
    m_tally.inject("reply held", calls);
}

void Round::releaseSome()
{
    for (quint32 left = m_dice.below(20); left > 0 && m_service.held() > 0; --left) {
        const int index = int(m_dice.below(quint32(m_service.held())));
        if (index > 0)
            m_tally.inject("replies out of order");
        m_service.releaseAt(index);
    }
}

void Round::freezeOrThaw()
{
    m_isFrozen = !m_isFrozen;
    if (m_isFrozen) {
        m_service.hold({});
        m_tally.inject("service frozen");
    } else {
        takeRules();
        m_service.release();
    }
}

void Round::kill()
{
    m_tally.inject("service killed");
    m_service.vanish();
    m_isGone = true;
}

void Round::revive()
{
    m_service.comeBack();
    m_isGone = false;
    for (const QString &server : m_service.tree.servers())
        m_service.announceFound(server);
}

void Round::replaceService()
{
    m_tally.inject("service replaced by another");
    m_service.vanish();
    furnish();
    revive();
}

void Round::announceServers()
{
    const QString server = m_dice.pick(m_service.tree.servers());
    if (m_dice.chance(50)) {
        m_tally.inject("server lost");
        m_service.announceLost(server);
    }
    if (m_dice.chance(70)) {
        m_tally.inject("server found");
        m_service.announceFound(server);
    }
    if (m_dice.chance(30)) {
        m_tally.inject("server found twice");
        m_service.announceFound(server);
        m_service.announceFound(server);
    }
}

void Round::announceOddities()
{
    if (m_dice.chance(50)) {
        m_tally.inject("unknown server lost");
        m_service.announceLost(m_dice.pick(oddServers));
    } else {
        m_tally.inject("found a path that is no server");
        m_service.announceFound(m_dice.pick(oddServers));
    }
}

void Round::changeNetwork()
{
    m_tally.inject("network addresses changed");
    QStringList ips;
    for (quint32 left = m_dice.below(4); left > 0; --left)
        ips.append(m_dice.chance(50) ? m_dice.text() : "192.168.1.7");
    publishNetwork(ips);
}
