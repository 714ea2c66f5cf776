#include "MediaServiceNames.h"
#include "Round.h"

#include <api/core/CMValueItem.h>
#include <api/core/OrkaNetworkInfo.h>
#include <api/core/orka.h>

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
        const QString old = number == 3 ? names::serverPrefix + QLatin1Char('3') : QString();
        const QVariant caps = number == 2 ? arbitraryValue(m_dice)
                                          : QVariant(QStringList{"Artist", "Album", "DisplayName"});
        QString parent = tree.addServer(udn, m_dice.text(), caps, old);
        m_nodes.append(QLatin1Char('/') + udn);
        for (int depth = 0; depth < 3; ++depth) {
            const QByteArray id = QByteArray::number(depth);
            parent = tree.addContainer(parent, id, m_dice.text());
            m_nodes.append(QStringLiteral("/%1/%2").arg(udn, QString::fromLatin1(id.toHex())));
            for (int track = 0; track < 8; ++track) {
                const QByteArray trackId = id + '-' + QByteArray::number(track);
                tree.addTrack(parent, trackId, m_dice.text(), {{"Artist", m_dice.text()}});
                m_nodes.append(
                    QStringLiteral("/%1/%2").arg(udn, QString::fromLatin1(trackId.toHex())));
            }
        }
        tree.addLink(parent, parent);
    }
    m_service.tree = tree;
}

void Round::takeRules()
{
    m_service.forgetRules();
    m_service.answer({}, [this](const FakeCall &call) { return m_answers.answer(call); });
}

void Round::disturb()
{
    using Disturbance = void (Round::*)();
    static const QList<Disturbance> all{&Round::holdSome, &Round::holdSome, &Round::releaseSome,
        &Round::releaseSome, &Round::releaseSome, &Round::freezeOrThaw, &Round::killOrRevive,
        &Round::replaceService, &Round::announceServers, &Round::announceOddities,
        &Round::changeNetwork};
    // A dead service comes back before anything else happens to it.
    if (m_isGone)
        killOrRevive();
    else
        (this->*m_dice.pick(all))();
}

void Round::holdSome()
{
    const int calls = 1 + int(m_dice.below(15));
    m_service.hold({m_dice.pick(members), {}, {}, calls});
    m_tally.inject(Fault::HeldReply, calls);
}

void Round::releaseSome()
{
    for (quint32 left = m_dice.below(20); left > 0 && m_service.held() > 0; --left) {
        const int index = int(m_dice.below(quint32(m_service.held())));
        if (index > 0)
            m_tally.inject(Fault::ReorderedReply);
        m_service.releaseAt(index);
    }
}

void Round::freezeOrThaw()
{
    m_isFrozen = !m_isFrozen;
    if (!m_isFrozen) {
        takeRules();
        m_service.release();
        return;
    }
    m_service.hold({});
    m_tally.inject(Fault::ServiceFrozen);
}

void Round::killOrRevive()
{
    m_isGone = !m_isGone;
    if (m_isGone) {
        m_tally.inject(Fault::ServiceKilled);
        m_service.vanish();
        return;
    }
    m_service.comeBack();
    for (const QString &server : m_service.tree.servers())
        m_service.announceFound(server);
}

void Round::replaceService()
{
    m_tally.inject(Fault::ServiceReplaced);
    m_service.vanish();
    furnish();
    m_service.comeBack();
    for (const QString &server : m_service.tree.servers())
        m_service.announceFound(server);
}

void Round::announceServers()
{
    const QString server = m_dice.pick(m_service.tree.servers());
    if (m_dice.chance(50)) {
        m_tally.inject(Fault::ServerLost);
        m_service.announceLost(server);
    }
    if (m_dice.chance(70)) {
        m_tally.inject(Fault::ServerFound);
        m_service.announceFound(server);
    }
    if (m_dice.chance(30)) {
        m_tally.inject(Fault::ServerFoundTwice);
        m_service.announceFound(server);
        m_service.announceFound(server);
    }
}

void Round::announceOddities()
{
    if (m_dice.chance(50)) {
        m_tally.inject(Fault::UnknownServerLost);
        m_service.announceLost(m_dice.pick(oddServers));
    } else {
        m_tally.inject(Fault::OddServerFound);
        m_service.announceFound(m_dice.pick(oddServers));
    }
}

void Round::changeNetwork()
{
    m_tally.inject(Fault::NetworkChanged);
    OrkaList<OrkaNetworkAddress> addresses;
    for (quint32 left = m_dice.below(4); left > 0; --left) {
        OrkaNetworkAddress address;
        address.setIp(m_dice.chance(50) ? m_dice.text() : QStringLiteral("192.168.1.7"));
        addresses.append(address);
    }
    OrkaNetworkWiredInterface wired;
    wired.setAddresses(addresses);
    OrkaNetworkInfo info;
    info.setWired(wired);
    OrkaValue value;
    value.setNetworkInfo(info);
    CMValueStore::setValue(OrkaNetworkInfoPath(), value);
}
