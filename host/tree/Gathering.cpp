#include "tree/Gathering.h"

#include "Text.h"
#include "chain/Session.h"
#include "output/Progress.h"
#include "output/SafeText.h"
#include "tree/ContentWatch.h"
#include "tree/Place.h"
#include "tree/RowPages.h"
#include "tree/ServerList.h"

#include <api/core/orka.h>

namespace {

/// Nobody nests folders like this; a server that invents them does.
constexpr std::size_t deepest = 500;
constexpr int mostNamed = 5;
constexpr int longestTitle = 100;

Failure incomplete(const QString &sentence)
{
    return Failure(AnsweredWithError, QStringLiteral("incomplete"), sentence);
}

/// A list of rows by its very path.
bool isSearch(const CMPath &path)
{
    return path.hasParam(QStringLiteral("search"));
}

} // namespace

/// A container on the way down, and how far its rows have been taken.
struct Gathering::Folder
{
    CMPath path;
    QString name;
    RowPages pages;
    Rows page = {};
    int next = 0;
    KnownFiles::PagePointer known = {};
};

Gathering::Gathering(Session &session, const Kinds &kinds, Take take)
    : m_session(session)
    , m_kinds(kinds)
    , m_take(std::move(take))
    , m_progress(std::make_unique<Progress>(Text::tr("Collecting")))
{
}

Gathering::~Gathering() = default;

void Gathering::add(const CMPath &path, const QString &name)
{
    m_session.setName(path, name);
    std::shared_ptr<ContentWatch> &watch = m_watches[ServerList::serverBase(path)];
    if (!watch)
        watch = std::make_shared<ContentWatch>(m_session, path);
    const bool isFolder = isSearch(path) || path.base() == ServerList::serverBase(path);
    const OrkaRoles node = isFolder ? OrkaRoles() : readNode(path);
    if (isFolder || node.type() == OrkaRolesType::Container) {
        walk(path, name);
    } else if (!node.isEmpty()) {
        takeItem(node, nullptr);
    }
    tellWithoutAddress(name);
}

void Gathering::finish()
{
    for (auto watch = m_watches.cbegin(); watch != m_watches.cend(); ++watch) {
        const QString change = m_silent.contains(watch.key()) ? QString() : watch.value()->change();
        if (!change.isEmpty())
            m_failures.append(incomplete(change));
    }
}

void Gathering::tellWithoutAddress(const QString &place)
{
    const int count = m_withoutAddress.size();
    if (count == 0)
        return;
    QStringList named;
    for (const QString &title : m_withoutAddress.mid(0, mostNamed))
        named.append(quoted(shortened(title, longestTitle)));
    if (count > mostNamed)
        named.append(Text::tr("%Ln more", nullptr, count - mostNamed));
    m_failures.append(incomplete(Text::tr("The media server gives no address for %Ln of what is "
                                          "in %1, so nobody can play it: %2.",
        nullptr, count)
                                     .arg(quoted(place), named.join(QStringLiteral(", ")))));
    m_withoutAddress.clear();
}

/// Empty where it can't be read.
OrkaRoles Gathering::readNode(const CMPath &path)
{
    try {
        return m_session.data(path, OrkaRoles::all());
    } catch (const Failure &failure) {
        fail(path, failure);
        return OrkaRoles();
    }
}

void Gathering::walk(const CMPath &path, const QString &name)
{
    push(path, name);
    while (!m_folders.empty()) {
        Folder &folder = *m_folders.back();
        if (folder.next < folder.page.rows.size()) {
            takeRow(folder.page.rows.at(folder.next++));
        } else if (!readMore(&folder)) {
            m_folders.pop_back();
        }
        tellProgress();
    }
}

void Gathering::push(const CMPath &path, const QString &name)
{
    const QString server = ServerList::serverBase(path);
    const QString object = isSearch(path) ? path.toEncoded() : path.base();
    if (m_silent.contains(server) || m_visited.contains(object))
        return;
    m_visited.insert(object);
    m_session.setName(path, name);
    if (m_folders.size() == deepest) {
        fail(path, incomplete(Text::tr("%1 isn't read: it is nested too deep.").arg(quoted(name))));
        return;
    }
    std::shared_ptr<PageSize> &size = m_pageSizes[server];
    if (!size)
        size = std::make_shared<PageSize>();
    m_folders.push_back(std::unique_ptr<Folder>(
        new Folder{path, name, {m_session, path, {}, OrkaRoles::all(), size, true}}));
}

/// False where there is no more, or nothing that can be read.
bool Gathering::readMore(Folder *folder)
{
    if (m_silent.contains(ServerList::serverBase(folder->path)))
        return false;
    folder->next = 0;
    try {
        if (folder->pages.next(&folder->page)) {
            const int rows = folder->page.rows.size();
            const int first = folder->pages.position() - rows;
            folder->known =
                std::make_shared<KnownFiles::Page>(KnownFiles::Page{folder->path, first, rows});
            return true;
        }
    } catch (const Failure &failure) {
        fail(folder->path, failure);
        return false;
    }
    ++m_foldersRead;
    if (folder->pages.lacking() > 0) {
        fail(folder->path,
            incomplete(Text::tr("The media server counts %Ln more rows in %1 than it gives.",
                nullptr, folder->pages.lacking())
                           .arg(quoted(folder->name))));
    }
    return false;
}

void Gathering::takeRow(const OrkaRoles &row)
{
    if (row.type() == OrkaRolesType::Container) {
        const QString title = titleInPlace(row.title().toString());
        const QString &parent = m_folders.back()->name;
        const bool isTop = parent.isEmpty() || parent == QLatin1String("/");
        push(row.path(), isTop ? title : parent + QLatin1Char('/') + title);
    } else if (row.type() == OrkaRolesType::Search) {
        return; // a way to search, nothing that plays
    } else if (m_kinds.contains(int(playableKind(row)))) {
        takeItem(row, m_folders.back()->known);
    } else {
        ++m_otherKinds;
    }
}

void Gathering::takeItem(const OrkaRoles &row, const KnownFiles::PagePointer &page)
{
    OrkaPlayListItem item = itemOfRow(row);
    try {
        if (item.isEmpty())
            item = prepared(row);
    } catch (const Failure &failure) {
        fail(row.path(), failure);
        return;
    }
    if (item.url().isEmpty()) {
        const QString title = row.title().toString();
        if (!m_withoutAddress.contains(title))
            m_withoutAddress.append(title);
        return;
    }
    while (const KnownFiles::PagePointer wanted = m_known.wanted(item, row.path(), page))
        askSizes(wanted.get());
    if (!m_known.add(item, row.path(), page))
        return;
    ++m_items;
    m_take(item);
}

void Gathering::askSizes(KnownFiles::Page *page)
{
    page->asked = true;
    const ServiceCalls service(m_session.options().timeout);
    const QString server = ServerList::serverBase(page->folder);
    if (!m_serviceObjects.contains(server))
        m_serviceObjects.insert(server, service.objectOf(server, objectPaths(service.servers())));
    const QString object = m_serviceObjects.value(server);
    if (!object.isEmpty())
        KnownFiles::takeSizes(service.send(KnownFiles::sizesCall(object, *page)), page);
}

/// What the worker makes of one object; empty where it makes nothing.
OrkaPlayListItem Gathering::prepared(const OrkaRoles &row)
{
    const CMPath track =
        row.path().withoutParams().addParam(QStringLiteral("itemType"), QStringLiteral("track"));
    const CMPath prepareItems = m_session.path(OrkaPlayListPrepareItems());
    m_session.setName(prepareItems, row.title().toString()); // which sentences are about
    const QVariantList items =
        m_session.set(prepareItems, QVariantList{track.toEncoded()}, QString()).toList();
    return items.isEmpty() ? OrkaPlayListItem()
                           : OrkaPlayListItem(OrkaHash::fromVariant(items.first()));
}

void Gathering::fail(const CMPath &path, const Failure &failure)
{
    m_session.renewTime(); // for the next folder
    const QString server = ServerList::serverBase(path);
    const bool isNodeSilent =
        failure.status() == NoAnswer && m_session.givesRow(m_session.path(server), 0);
    m_failures.append(isNodeSilent ? m_session.silenceOf(path) : failure);
    if (!isNodeSilent && (failure.status() == NoAnswer || failure.status() == Missing))
        m_silent.insert(server);
}

void Gathering::tellProgress()
{
    m_progress->setDoing(Text::tr("Collecting: %1, %2")
                             .arg(Text::tr("%Ln folders", nullptr, m_foldersRead),
                                 Text::tr("%Ln tracks", nullptr, m_items)));
}
