#include "tree/PlaceResolver.h"

#include "Failure.h"
#include "Text.h"
#include "chain/NetworkReport.h"
#include "chain/ServiceCalls.h"
#include "chain/Session.h"
#include "output/Output.h"
#include "output/SafeText.h"
#include "tree/NearestTitles.h"
#include "tree/RowPages.h"
#include "tree/TitleSearch.h"

#include <QRegularExpression>
#include <QUrl>

#include <algorithm>

namespace {

using Nodes = QVector<OrkaRoles>;

constexpr std::chrono::milliseconds nextServer(20);
constexpr std::chrono::milliseconds questionLimit(1000);
constexpr int mostNamed = 5;
constexpr int longestModel = 60;

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

Failure ambiguous(const QString &title, const QStringList &lines)
{
    return noSuchPlace(
        Text::tr(
            "The title %1 is there %Ln times. Name the one you mean:\n  %2", nullptr, lines.size())
            .arg(quoted(title), lines.mid(0, mostNamed).join(QStringLiteral("\n  "))));
}

/// What tells media servers of one name apart; empty where the media service doesn't say.
struct Device
{
    QString host;
    int port = -1;
    QString model;
};

Device deviceOf(Session &session, const OrkaRoles &server)
{
    const ServiceCalls service(questionLimit);
    const QString object =
        service.objectOf(server.path().base(), session.mediaService().servers().paths());
    if (object.isEmpty())
        return {};
    const QUrl url(valueOf(service.property(object, QStringLiteral("Location"))).toString());
    return {url.host(), url.port(),
        valueOf(service.property(object, QStringLiteral("ModelName"))).toString()};
}

QString withPort(const Device &device)
{
    return QStringLiteral("%1:%2").arg(device.host, QString::number(device.port));
}

/// Each as a place to write, its model and its path.
QStringList apart(Session &session, const Nodes &servers)
{
    QVector<Device> devices;
    for (const OrkaRoles &server : servers)
        devices.append(deviceOf(session, server));
    QStringList lines;
    for (int i = 0; i < servers.size(); ++i) {
        const Device &device = devices.at(i);
        const auto neighbours = std::count_if(devices.begin(), devices.end(),
            [&](const Device &other) { return other.host == device.host; });
        QStringList parts;
        if (!device.host.isEmpty()) {
            parts << quoted(QStringLiteral("%1 (%2)").arg(titleInPlace(titleOf(servers.at(i))),
                neighbours == 1 ? device.host : withPort(device)));
        }
        if (!device.model.isEmpty())
            parts << shortened(safeText(device.model), longestModel);
        parts << safeText(servers.at(i).path().toEncoded());
        lines << parts.join(QStringLiteral(", "));
    }
    return lines;
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
            Text::tr("The media server of %1 hasn't shown up. \"orka servers\" lists those "
                     "that are there; --wait SECONDS waits for one that is starting.")
                .arg(quoted(place.text))
            + absentServers(NetworkReport::read()));
    }
    if (place.path.base() != ServerList::serverBase(place.path))
        m_session.setName(place.path, place.text);
    return place.path;
}

QVector<OrkaRoles> PlaceResolver::serversCalled(const QString &text)
{
    static const QRegularExpression withHost(QStringLiteral("^(.*) \\(([^()]+)\\)$"));
    Nodes found = withTitle(m_servers.servers(), text);
    const QRegularExpressionMatch parts = withHost.match(text);
    if (!found.isEmpty() || !parts.hasMatch())
        return found;
    for (const OrkaRoles &server : withTitle(m_servers.servers(), parts.captured(1))) {
        const Device device = deviceOf(m_session, server);
        if (parts.captured(2) == device.host || parts.captured(2) == withPort(device))
            found.append(server);
    }
    return found;
}

CMPath PlaceResolver::findServer(const QString &title)
{
    m_servers.waitFor([&](const Nodes &) { return !serversCalled(title).isEmpty(); });
    // Servers show up one after another: a second one of this name may be next.
    m_servers.standStill(nextServer);
    const Nodes found = serversCalled(title);
    if (found.size() > 1)
        throw ambiguous(title, apart(m_session, found));
    if (!found.isEmpty())
        return found.first().path();
    if (m_servers.servers().isEmpty()) {
        const NetworkReport report = NetworkReport::read();
        throw noSuchPlace(noServersSentence(report, title) + absentServers(report));
    }
    NearestTitles nearest(title);
    for (const OrkaRoles &server : m_servers.servers())
        nearest.add(titleOf(server));
    throw noSuchPlace(Text::tr("There is no media server %1.%2 \"orka servers\" lists those "
                               "that are there.")
                          .arg(quoted(title), nearest.question())
        + absentServers(NetworkReport::read()));
}

/// What is known of others that aren't there, behind a sentence about one.
QString PlaceResolver::absentServers(const NetworkReport &report) const
{
    QString text;
    for (const QString &problem :
        m_session.mediaService().namedServers().problems() + report.absent)
        text += QLatin1Char('\n') + problem;
    return text;
}

PlaceResolver::Entries PlaceResolver::readEntries(const CMPath &parent, RowRange range)
{
    Entries entries;
    RowPages pages(
        m_session, parent, range, {OrkaRoles::Path(), OrkaRoles::Title(), OrkaRoles::Type()});
    Rows page;
    try {
        while (pages.next(&page)) {
            entries.nodes += page.rows;
            entries.count = page.rowsCount;
        }
    } catch (const Failure &failure) {
        if (entries.nodes.isEmpty() && range.first == 0)
            throw;
        entries.failure = failure.sentence();
    }
    entries.lacking = pages.lacking();
    return entries;
}

CMPath PlaceResolver::findChild(const CMPath &parent, const QString &title, Kind wanted)
{
    constexpr int few = PageSize::first;
    Entries entries = readEntries(parent, {0, few - 1});
    const bool isMore = mayFollow(entries.count, entries.nodes.size(), entries.nodes.size() == few);
    if (isMore && entries.failure.isEmpty()) {
        const CMPath path = searchByTitle(m_session, parent, title, wanted == Folder);
        if (!path.isEmpty())
            return path;
        const Entries rest = readEntries(parent, {few, RowRange::everything});
        entries.nodes += rest.nodes;
        entries.lacking += rest.lacking;
        entries.failure = rest.failure;
    }
    const Nodes candidates = wanted == Folder ? containersOf(entries.nodes) : entries.nodes;
    const Nodes found = withTitle(candidates, title);
    if (found.isEmpty())
        throw noEntry(parent, title, wanted, candidates, entries.trouble());
    if (found.size() > 1) {
        QStringList paths;
        for (const OrkaRoles &node : found)
            paths.append(safeText(node.path().toEncoded()));
        throw ambiguous(title, paths);
    }
    if (!entries.trouble().isEmpty()) {
        tell(Text::tr("There may be another %1 in %2: its list is incomplete. %3")
                 .arg(quoted(title), m_session.nameOf(parent), entries.trouble()));
    }
    return found.first().path();
}

QString PlaceResolver::Entries::trouble() const
{
    return lacking > 0 && failure.isEmpty()
        ? Text::tr("The media server counts %Ln more entries than it gives.", nullptr, lacking)
        : failure;
}

Failure PlaceResolver::noEntry(const CMPath &parent, const QString &title, Kind wanted,
    const Nodes &candidates, const QString &trouble) const
{
    NearestTitles nearest(title);
    for (const OrkaRoles &node : candidates)
        nearest.add(titleOf(node));
    const bool isFolder = wanted == Folder;
    if (!trouble.isEmpty()) {
        return Failure(AnsweredWithError, QStringLiteral("incomplete"),
            (isFolder
                    ? Text::tr(
                        "There is no folder %1 in %2 so far, but the list is incomplete: it may be "
                        "among what is missing. %3")
                    : Text::tr(
                        "There is no entry %1 in %2 so far, but the list is incomplete: it may be "
                        "among what is missing. %3"))
                .arg(quoted(title), m_session.nameOf(parent), trouble));
    }
    return noSuchPlace(
        (isFolder ? Text::tr("There is no folder %1 in %2.%3 \"orka ls\" lists what is there.")
                  : Text::tr("There is no entry %1 in %2.%3 \"orka ls\" lists what is there."))
            .arg(quoted(title), m_session.nameOf(parent), nearest.question()));
}
