#include "RandomRequest.h"

#include <api/core/CMRoot.h>
#include <api/core/OrkaRoles.h>
#include <api/core/OrkaValue.h>
#include <api/core/orka.h>

#include <climits>

namespace {

const QString upnp = QStringLiteral("upnp");

// A few only: the plug-in keeps an empty record of every server it was asked for.
const QStringList oddNodes{"", "/", "//", "/uuid:nobody-1", "/uuid:nobody-1/30",
    "/uuid:nobody-2/3634", "/uuid:soak-1/", "/uuid:soak-1/zz", "/uuid:soak-1/a/b",
    "/uuid:soak-1/..%2f..", "/uuid:soak-1%00/30", "/uuid:soak-1/30%0a", "context", "contexts/x",
    "/\xc3\xbc", "%25/%3F%23%26"};

const QStringList samples{"0,99,10", "0,5,0", "5,1,1", "-3,3,1", "a,b,c", "1,2", "", "0,0,0,0",
    "2147483647,2147483647,2147483647", "0,-1,-1", "99999999999,1,1"};

const QStringList searchKeys{"menu", "Artist", "Album", "DisplayName", "", "Nonsense"};

CMPath prepareItems()
{
    return CMPath(upnp, OrkaPlayListPrepareItems());
}

} // namespace

std::function<void()> RandomRequest::make()
{
    const quint32 kind = m_dice.below(100);
    if (kind < 45)
        return rows();
    if (kind < 70)
        return data();
    if (kind < 80)
        return searchText();
    return kind < 98 ? prepare() : prepareNothing();
}

CMPath RandomRequest::path()
{
    const bool isThere = m_dice.chance(75);
    CMPath path = CMPath::fromEncoded(
        upnp + QLatin1Char(':') + (isThere ? m_dice.pick(m_nodes) : m_dice.pick(oddNodes)));
    if (m_dice.chance(25))
        path.addParam(QStringLiteral("search"), m_dice.pick(searchKeys));
    if (m_dice.chance(15))
        path.addParam(QStringLiteral("query"), m_dice.text());
    if (m_dice.chance(20))
        path.addParam(QStringLiteral("itemType"), QStringLiteral("container"));
    return m_dice.chance(2) ? CMPath(QStringLiteral("nowhere"), path.base()) : path;
}

QStringList RandomRequest::roles()
{
    static const QStringList all{OrkaRoles::Path(), OrkaRoles::Title(), OrkaRoles::Type(),
        OrkaRoles::MediaData(), OrkaRoles::Icon(), OrkaRoles::Search(), OrkaRoles::Permission(),
        QStringLiteral("nonsense")};
    return all.mid(int(m_dice.below(8)), int(m_dice.below(8)));
}

std::function<void()> RandomRequest::rows()
{
    static const QList<QPair<int, int>> ranges{{0, 19}, {0, 0}, {3, 3}, {0, 999}, {20, 10}, {-1, 5},
        {INT_MIN, INT_MAX}, {INT_MAX, INT_MAX}, {0, -1}};
    CMPath at = path();
    QPair<int, int> range = m_dice.pick(ranges);
    QString kind = QStringLiteral("rows");
    if (m_dice.chance(15)) {
        at.addParam(QStringLiteral("sample"), m_dice.pick(samples));
        // A sample takes as many calls as rows are asked for.
        range.second = int(m_dice.below(12)) - 1;
        kind = QStringLiteral("sampled rows");
    }
    const QStringList wanted = roles();
    const auto reply = m_ledger.enter<OrkaRowsRoles>(kind,
        QStringLiteral("rows %1 to %2 of %3")
            .arg(range.first)
            .arg(range.second)
            .arg(at.toEncoded()),
        Ledger::Answered);
    return [=] {
        CMRoot()->getRows(at, range.first, range.second, -1, wanted, reply);
    };
}

std::function<void()> RandomRequest::data()
{
    const CMPath at = path();
    const QStringList wanted = roles();
    const auto reply = m_ledger.enter<QVariantList>(
        QStringLiteral("data"), QStringLiteral("data of ") + at.toEncoded(), Ledger::Answered);
    return [=] {
        CMRoot()->getData(at, wanted, reply);
    };
}

std::function<void()> RandomRequest::searchText()
{
    const CMPath at = path();
    OrkaValue value;
    value.setString_(m_dice.text());
    const QVariant sent = m_dice.chance(70) ? value.toVariant() : arbitraryValue(m_dice);
    const auto reply = m_ledger.enter<QVariant>(QStringLiteral("search text"),
        QStringLiteral("search text at ") + at.toEncoded(), Ledger::Answered);
    return [=] {
        CMRoot()->setData(at, sent, reply);
    };
}

CMPath RandomRequest::playable()
{
    static const QStringList kinds{QStringLiteral("track"), QStringLiteral("track"),
        QStringLiteral("container"), QStringLiteral("server")};
    CMPath at = path();
    return at.addParam(QStringLiteral("itemType"), m_dice.pick(kinds));
}

std::function<void()> RandomRequest::prepare()
{
    QVariantList paths{playable().toEncoded()};
    for (quint32 more = m_dice.below(5); more > 0; --more) {
        const bool isUnknown = m_dice.chance(10);
        paths.append(isUnknown ? m_dice.text() : playable().toEncoded());
    }
    // "nowhere" is nobody's prefix; the plug-in looks at what stands behind it.
    const auto reply = m_ledger.enter<QVariant>(QStringLiteral("preparation"),
        QStringLiteral("preparing ") + QVariant(paths).toStringList().join(QLatin1Char(' ')),
        Ledger::Answered);
    return [=] {
        CMRoot()->setData(prepareItems(), paths, reply);
    };
}

std::function<void()> RandomRequest::prepareNothing()
{
    static const QVariantList nothing{QVariantList(), QStringLiteral("upnp:/uuid:soak-1"), 7,
        QVariantHash(), QVariantList{"upnp:/uuid:soak-1?itemType=menu"},
        QVariantList{"", "\n", ":"}};
    const QVariant value = m_dice.pick(nothing);
    const bool isEmpty = value.toList().isEmpty();
    const auto reply = m_ledger.enter<QVariant>(QStringLiteral("preparation of nothing"),
        QStringLiteral("preparing nothing"),
        isEmpty ? Ledger::Unanswered : Ledger::AnsweredAndKept);
    return [=] {
        CMRoot()->setData(prepareItems(), value, reply);
    };
}
