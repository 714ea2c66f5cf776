#include "Round.h"

#include <api/core/CMRoot.h>
#include <api/core/OrkaRoles.h>
#include <api/core/orka.h>

#include <climits>

namespace {

// A few only: the plug-in keeps an empty record of every server it was asked for.
const QStringList oddNodes{"", "/", "//", "/uuid:nobody-1", "/uuid:nobody-1/30",
    "/uuid:nobody-2/3634", "/uuid:soak-1/", "/uuid:soak-1/zz", "/uuid:soak-1/a/b",
    "/uuid:soak-1/..%2f..", "/uuid:soak-1%00/30", "/uuid:soak-1/30%0a", "context", "contexts/x",
    "/\xc3\xbc", "%25/%3F%23%26"};

const QStringList samples{"0,99,10", "0,5,0", "5,1,1", "-3,3,1", "a,b,c", "1,2", "", "0,0,0,0",
    "2147483647,2147483647,2147483647", "0,-1,-1", "99999999999,1,1"};

const QStringList searchKeys{"menu", "Artist", "Album", "DisplayName", "", "Nonsense"};

const QStringList allRoles{
    "path", "title", "type", "mediaData", "icon", "search", "permission", "nonsense"};

const QList<QPair<int, int>> ranges{{0, 19}, {0, 0}, {3, 3}, {0, 999}, {20, 10}, {-1, 5},
    {INT_MIN, INT_MAX}, {INT_MAX, INT_MAX}, {0, -1}};

const QVariantList nothings{QVariantList(), "upnp:/uuid:soak-1", 7, QVariantHash(),
    QVariantList{"upnp:/uuid:soak-1?itemType=menu"}, QVariantList{"", "\n", ":"}};

CMPath prepareItems()
{
    return CMPath("upnp", OrkaPlayListPrepareItems());
}

} // namespace

std::function<void()> Round::randomRequest()
{
    const quint32 kind = m_dice.below(100);
    if (kind < 45)
        return askRows();
    if (kind < 70)
        return askData();
    if (kind < 80)
        return askSearchText();
    return kind < 98 ? askToPrepare() : askToPrepareNothing();
}

CMPath Round::randomPath()
{
    const QStringList &nodes = m_dice.chance(75) ? m_nodes : oddNodes;
    CMPath path = CMPath::fromEncoded("upnp:" + m_dice.pick(nodes));
    if (m_dice.chance(25))
        path.addParam("search", m_dice.pick(searchKeys));
    if (m_dice.chance(15))
        path.addParam("query", m_dice.text());
    if (m_dice.chance(20))
        path.addParam("itemType", "container");
    return m_dice.chance(2) ? CMPath("nowhere", path.base()) : path;
}

QStringList Round::randomRoles()
{
    const int first = int(m_dice.below(8));
    return allRoles.mid(first, int(m_dice.below(8)));
}

std::function<void()> Round::askRows()
{
    CMPath at = randomPath();
    QPair<int, int> range = m_dice.pick(ranges);
    const bool isSample = m_dice.chance(15);
    if (isSample) {
        at.addParam("sample", m_dice.pick(samples));
        // A sample takes as many calls as rows are asked for.
        range.second = int(m_dice.below(12)) - 1;
    }
    const QStringList wanted = randomRoles();
    const auto reply = m_ledger.enter<OrkaRowsRoles>(isSample ? "sampled rows" : "rows",
        QString("rows %1 to %2 of ").arg(range.first).arg(range.second) + at.toEncoded());
    return [=] {
        CMRoot()->getRows(at, range.first, range.second, -1, wanted, reply);
    };
}

std::function<void()> Round::askData()
{
    const CMPath at = randomPath();
    const QStringList wanted = randomRoles();
    const auto reply = m_ledger.enter<QVariantList>("data", "data of " + at.toEncoded());
    return [=] {
        CMRoot()->getData(at, wanted, reply);
    };
}

std::function<void()> Round::askSearchText()
{
    const CMPath at = randomPath();
    const QVariant text = QVariantHash{{"string_", m_dice.text()}};
    const QVariant sent = m_dice.chance(70) ? text : arbitraryValue(m_dice);
    const auto reply = m_ledger.enter<QVariant>("search text", "search text at " + at.toEncoded());
    return [=] {
        CMRoot()->setData(at, sent, reply);
    };
}

QString Round::randomPlayable()
{
    static const QStringList kinds{"track", "track", "container", "server"};
    CMPath at = randomPath();
    return at.addParam("itemType", m_dice.pick(kinds)).toEncoded();
}

std::function<void()> Round::askToPrepare()
{
    // "nowhere" is nobody's prefix; the plug-in looks at what stands behind it.
    QStringList paths{randomPlayable()};
    for (quint32 more = m_dice.below(5); more > 0; --more)
        paths.append(m_dice.chance(10) ? m_dice.text() : randomPlayable());
    const auto reply = m_ledger.enter<QVariant>("preparation", "preparing " + paths.join(' '));
    return [=] {
        CMRoot()->setData(prepareItems(), QVariant(paths).toList(), reply);
    };
}

std::function<void()> Round::askToPrepareNothing()
{
    const QVariant value = m_dice.pick(nothings);
    const auto reply = m_ledger.enter<QVariant>("preparation of nothing", "preparing nothing",
        value.toList().isEmpty() ? Ledger::Unanswered : Ledger::AnsweredAndKept);
    return [=] {
        CMRoot()->setData(prepareItems(), value, reply);
    };
}
