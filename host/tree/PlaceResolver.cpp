#include "tree/PlaceResolver.h"

#include "Failure.h"
#include "chain/Session.h"
#include "output/SafeText.h"
#include "tree/NearestTitles.h"
#include "tree/RowsReader.h"

namespace {

using Nodes = QVector<OrkaRoles>;

constexpr std::chrono::milliseconds nextServer(20);

QString titleOf(const OrkaRoles &node)
{
    return node.title().toString();
}

/// The nodes with this title, however its accents are composed.
Nodes withTitle(const Nodes &nodes, const QString &title)
{
    const QString wanted = title.normalized(QString::NormalizationForm_C);
    Nodes found;
    for (const OrkaRoles &node : nodes) {
        if (titleOf(node).normalized(QString::NormalizationForm_C) == wanted)
            found.append(node);
    }
    return found;
}

Nodes containersOf(const Nodes &nodes)
{
    Nodes containers;
    for (const OrkaRoles &node : nodes) {
        if (node.type() == OrkaRolesType::Container)
            containers.append(node);
    }
    return containers;
}

Failure noSuchPlace(const QString &sentence)
{
    return missing(QStringLiteral("noSuchPlace"), sentence);
}

Failure ambiguous(const QString &title, const Nodes &nodes)
{
    QStringList paths;
    for (const OrkaRoles &node : nodes.mid(0, 5))
        paths.append(safeText(node.path().toEncoded()));
    return noSuchPlace(
        QStringLiteral("The title %1 is there %2 times. Name the one you mean by "
                       "its path:\n  %3")
            .arg(quoted(title), QString::number(nodes.size()), paths.join(QStringLiteral("\n  "))));
}

QString seconds(std::chrono::milliseconds time)
{
    return QStringLiteral("%1 s").arg(double(time.count()) / 1000);
}

} // namespace

PlaceResolver::PlaceResolver(Session &session)
    : m_session(session)
    , m_servers(session)
{
}

CMPath PlaceResolver::resolve(const Place &place, Kind wanted)
{
    if (!place.path.isEmpty())
        return resolvePath(place);
    if (place.titles.isEmpty()) {
        m_servers.settle();
        return m_session.root();
    }
    CMPath path = findServer(place.titles.first());
    QString name = titleInPlace(place.titles.first());
    for (int i = 1; i < place.titles.size(); ++i) {
        const bool last = i + 1 == place.titles.size();
        path = findChild(path, place.titles.at(i), last ? wanted : Folder);
        name += QLatin1Char('/') + titleInPlace(place.titles.at(i));
        m_session.setName(path, name);
    }
    return path;
}

CMPath PlaceResolver::resolvePath(const Place &place)
{
    if (!m_servers.waitForServersOf({place.path})) {
        throw noSuchPlace(
            QStringLiteral("The media server of %1 hasn't shown up in %2. \"orka servers\" lists "
                           "those that are there; --wait gives a slow one more time.")
                .arg(quoted(place.text), seconds(m_session.options().wait)));
    }
    return place.path;
}

CMPath PlaceResolver::findServer(const QString &title)
{
    m_servers.waitFor([&](const Nodes &servers) { return !withTitle(servers, title).isEmpty(); });
    // Servers show up one after another: a second one of this name may be next.
    m_servers.standStill(nextServer);
    const Nodes found = withTitle(m_servers.servers(), title);
    if (found.size() > 1)
        throw ambiguous(title, found);
    if (!found.isEmpty())
        return found.first().path();
    if (m_servers.servers().isEmpty()) {
        throw noSuchPlace(QStringLiteral("No media server has shown up in %1, so there is no %2. "
                                         "Start one on this network, or give it more time with "
                                         "--wait; \"orka doctor\" checks every part.")
                              .arg(seconds(m_session.options().wait), quoted(title)));
    }
    NearestTitles nearest(title);
    for (const OrkaRoles &server : m_servers.servers())
        nearest.add(titleOf(server));
    throw noSuchPlace(QStringLiteral("There is no media server %1.%2 \"orka servers\" lists those "
                                     "that are there.")
                          .arg(quoted(title), nearest.question()));
}

CMPath PlaceResolver::findChild(const CMPath &parent, const QString &title, Kind wanted)
{
    const QStringList roles{OrkaRoles::Path(), OrkaRoles::Title(), OrkaRoles::Type()};
    const Nodes all = readRows(m_session, parent, {}, roles).rows;
    const Nodes candidates = wanted == Folder ? containersOf(all) : all;
    const Nodes found = withTitle(candidates, title);
    if (found.isEmpty()) {
        NearestTitles nearest(title);
        for (const OrkaRoles &node : candidates)
            nearest.add(titleOf(node));
        throw noSuchPlace(
            QStringLiteral("There is no %1 %2 in %3.%4 \"orka ls\" lists what is "
                           "there.")
                .arg(wanted == Folder ? QStringLiteral("folder") : QStringLiteral("entry"),
                    quoted(title), m_session.nameOf(parent), nearest.question()));
    }
    if (found.size() > 1)
        throw ambiguous(title, found);
    return found.first().path();
}
