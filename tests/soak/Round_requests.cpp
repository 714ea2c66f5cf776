#include "Round.h"

#include <api/core/CMRoot.h>
#include <api/core/orka.h>

#include <climits>

namespace {

// A few only: the plug-in keeps an empty record of every server it was asked for.
const QStringList oddNodes{"", "//", "/uuid:nobody-1/30", "/uuid:soak-1/", "/uuid:soak-1/zz",
    "/uuid:soak-1/a/b", "/uuid:soak-1/..%2f..", "/uuid:soak-1/30%0a", "context", "%25/%3F%23%26"};
const QStringList samples{"0,99,10", "0,5,0", "-3,3,1", "a,b,c", "1,2", "0,-1,-1",
    "2147483647,2147483647,2147483647", "99999999999,1,1"};
const QStringList searchKeys{"menu", "artist", "title", "", "Nonsense"};
const QStringList kinds{"track", "track", "container", "server"};
const QStringList allRoles{
    "path", "title", "type", "mediaData", "icon", "search", "permission", "nonsense"};
const QList<QPair<int, int>> ranges{
    {0, 19}, {3, 3}, {0, 999}, {20, 10}, {-1, 5}, {INT_MIN, INT_MAX}, {INT_MAX, INT_MAX}, {0, -1}};
const QVariantList nothings{QVariantList(), 7, QVariantList{"upnp:/uuid:soak-1?itemType=menu"}};

} // namespace

template<typename T>
CMReply<T> Round::enter(const QString &text, const QString &wanted)
{
    const ReplyProbe<T> probe;
    m_asked.push_back({text, wanted, [probe] {
                           return probe.outcome();
                       }});
    return probe.reply();
}

Round::Send Round::randomRequest()
{
    const int kind = m_dice.below(100);
    if (kind < 45)
        return askRows();
    if (kind >= 70)
        return askSet();
    const CMPath at = randomPath();
    const QStringList roles = allRoles.mid(m_dice.below(8), m_dice.below(8));
    const auto reply = enter<QVariantList>("data of " + at.toEncoded());
    return [=] {
        CMRoot()->getData(at, roles, reply);
    };
}

CMPath Round::randomPath()
{
    CMPath path =
        CMPath::fromEncoded("upnp:" + m_dice.pick(m_dice.chance(75) ? m_nodes : oddNodes));
    if (m_dice.chance(25))
        path.addParam("search", m_dice.pick(searchKeys));
    if (m_dice.chance(15))
        path.addParam("query", m_dice.text());
    if (m_dice.chance(20))
        path.addParam("itemType", "container");
    return m_dice.chance(2) ? CMPath("nowhere", path.base()) : path;
}

Round::Send Round::askRows()
{
    CMPath at = randomPath();
    QPair<int, int> range = m_dice.pick(ranges);
    if (m_dice.chance(15)) {
        at.addParam("sample", m_dice.pick(samples));
        // A sample takes as many calls as rows are asked for.
        range.second = m_dice.below(12) - 1;
    }
    const QStringList roles = allRoles.mid(m_dice.below(8), m_dice.below(8));
    const auto reply = enter<OrkaRowsRoles>(
        QString("rows %1 to %2 of ").arg(range.first).arg(range.second) + at.toEncoded());
    return [=] {
        CMRoot()->getRows(at, range.first, range.second, -1, roles, reply);
    };
}

/// A search text, or a preparation: of nodes that may be played, of nothing at all.
Round::Send Round::askSet()
{
    CMPath at("upnp", OrkaPlayListPrepareItems());
    QVariant value;
    QString wanted;
    if (m_dice.chance(33)) {
        at = randomPath();
        value = m_dice.chance(70) ? QVariantHash{{"string_", m_dice.text()}} : m_dice.value();
    } else if (m_dice.chance(10)) {
        value = m_dice.pick(nothings);
        wanted = value.toList().isEmpty() ? "pending" : "answered, but its request is still kept";
    } else {
        QVariantList paths;
        for (int left = m_dice.below(6); left >= 0; --left) {
            const QString path = randomPath().addParam("itemType", m_dice.pick(kinds)).toEncoded();
            paths.append(left > 0 && m_dice.chance(10) ? m_dice.text() : path);
        }
        value = paths;
    }
    const auto reply = enter<QVariant>("setting " + at.toEncoded(), wanted);
    return [=] {
        CMRoot()->setData(at, value, reply);
    };
}
