#pragma once

#include "BridgeFixture.h"
#include "FakeMediaService.h"
#include "ScriptedUpnpServer.h"

/// A media service on a bus of its own with two servers: "uuid:c0", which can search, holds a
/// folder "n" of 25 tracks "n$0"… titled "Track 00001"…, an empty folder "e", and a track "t" with
/// tags; "uuid:c1" holds nothing and can't search.
class ServiceUnderTest
{
public:
    virtual ~ServiceUnderTest() = default;
    virtual QDBusConnection bus() = 0;
    /// The second server leaves.
    virtual void loseSecond() = 0;
};

/// The tests' own, in this process.
class FakeUnderTest : public ServiceUnderTest
{
public:
    FakeUnderTest()
    {
        FakeTree &tree = m_service.tree;
        const QString server =
            tree.addServer("uuid:c0", "NAS", QStringList{"Artist", "DisplayName"});
        const QString numbers = tree.addContainer(server, "n", "Numbers");
        for (int i = 0; i < 25; ++i) {
            tree.addTrack(numbers, "n$" + QByteArray::number(i),
                QStringLiteral("Track %1").arg(i + 1, 5, 10, QLatin1Char('0')));
        }
        tree.addContainer(server, "e", "Empty");
        tree.addTrack(server, "t", "Say \"Hello\"",
            {{"Artist", "Ann"}, {"Album", "Alb"}, {"Genre", "Pop"}, {"Date", "2001-01-01"},
                {"Duration", 60}, {"TrackNumber", 3}});
        tree.addServer("uuid:c1", "Deaf");
    }
    QDBusConnection bus() override { return m_client; }
    void loseSecond() override { m_service.lose(FakeTree::serverPath("uuid:c1")); }

private:
    PrivateBus m_bus;
    QDBusConnection m_client = m_bus.open("client");
    FakeMediaService m_service{m_bus};
};

/// Ours for systems without one, over two UPnP servers of the tests.
class BridgeUnderTest : public ServiceUnderTest
{
public:
    BridgeUnderTest()
    {
        m_first.tree.addFolder("n", "0", "Numbers", 25);
        m_first.tree.addFolder("e", "0", "Empty");
        m_first.tree.addTrack("t", "0", "Say \"Hello\"",
            "<upnp:artist>Ann</upnp:artist><upnp:album>Alb</upnp:album><upnp:genre>Pop</upnp:genre>"
            "<dc:date>2001-01-01</dc:date>"
            "<upnp:originalTrackNumber>3</upnp:originalTrackNumber>");
        m_second.behaviour.searchCaps.clear();
        m_second.behaviour.fail.insert("Search", 708);
        m_bridge.add(m_first);
        m_bridge.add(m_second);
    }
    QDBusConnection bus() override { return m_bridge.bus(); }
    void loseSecond() override { m_second.leave(); }

private:
    BridgeFixture m_bridge;
    ScriptedUpnpServer m_first{"uuid:c0", "NAS"};
    ScriptedUpnpServer m_second{"uuid:c1", "Deaf"};
};
