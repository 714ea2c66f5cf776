#include <api/core/CMGlobal.h>
#include <api/core/CMNodesWorker.h>
#include <api/core/CMSyncWorker.h>
#include <api/core/OrkaPlayListItem.h>
#include <api/core/OrkaRoles.h>
#include <api/core/OrkaValue.h>
#include <api/core/orka.h>

#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace {

using Nodes = QVector<OrkaRoles>;

/// ESC, a newline and a C1 control inside a title.
constexpr const char *hostile = "\x1b[31mred\nline\u009b2J";

/// What is on the shelf: tracks, with an address or with one made of their path, and folders.
struct Entry
{
    const char *parent, *path, *title, *url = nullptr;
};
constexpr Entry entries[] = {
    {"/shelf", "/shelf/big", "Big"},
    {"/shelf", "/shelf/slash", "AC/DC"},
    {"/shelf", "/shelf/broken", "Broken"},
    {"/shelf", "/shelf/silent", "Silent"},
    {"/shelf", "/shelf/hostile", hostile, ""},
    {"/shelf", "/shelf/cjk", "漢字"},
    {"/shelf", "/shelf/bigtrack", "Big", ""},
    {"/shelf/cjk", "/shelf/file", hostile, "file:///etc/passwd"},
    {"/shelf/cjk", "/shelf/option", hostile, "--script=evil"},
    {"/shelf/cjk", "/shelf/spaces", hostile, "http://192.0.2.1/a b\n.mp3"},
    {"/shelf/cjk", "/shelf/same", "Same", "http://192.0.2.1/a b\n.mp3"},
    {"/shelf/cjk", "/shelf/slash", "Loop"},
    {"/shelf/slash", "/shelf/backslash", "back\\slash", ""},
    {"/shelf/slash", "/shelf/cjk", "Loop"},
    {"/shelf/slash", "/shelf/composed", "Caf\u00e9", ""},
};

/// A worker as the host meets one: a media server "Shelf" with folders and tracks that are hard to
/// name and to print, with answers of every kind: rows, errors and none at all.
class ShelfWorker : public CMNodesWorker
{
public:
    explicit ShelfWorker(const QHash<QString, QVariant> &config)
        : CMNodesWorker(config, QStringLiteral("ShelfWorker"))
    {
        m_root = CMListRowsNode::create(nodes(), addPrefix(QString()));
        m_root->rowsAppend(node("/shelf", "Shelf", "server"));
        m_root->rowsAppend(node("/twin1", "Twin", "server"));
        QTimer::singleShot(
            5, this, [this] { m_root->rowsAppend(node("/twin2", "Twin", "server")); });
        QTimer::singleShot(
            300, this, [this] { m_root->rowsAppend(node("/late", "Late", "server")); });
        QTimer::singleShot(
            900, this, [this] { m_root->rowsRemoveStartingWithPath(addPrefix("/twin2")); });
    }

    void getRowsRequest(const CMGetRowsRequest &request) override;
    void getDataRequest(const CMGetDataRequest &request) override;
    void setDataRequest(const CMSetDataRequest &request) override;

private:
    OrkaRoles node(const QString &base, const QString &title,
        const QString &itemType = QStringLiteral("container")) const;
    OrkaRoles track(const QString &base, const QString &title, const QString &url = {}) const;
    Nodes children(const QString &base) const;
    Nodes rowsOf(const CMPath &path) const;

    CMListRowsNode *m_root;
    /// Kept, so that it stays open.
    CMVoidReply m_unanswered;
};

OrkaRoles ShelfWorker::node(
    const QString &base, const QString &title, const QString &itemType) const
{
    OrkaRoles roles;
    roles.setPath(CMPath(prefix(), base).addParam("itemType", itemType));
    roles.setTitle(title);
    roles.setType(OrkaRolesType::Container);
    return roles;
}

OrkaRoles ShelfWorker::track(const QString &base, const QString &title, const QString &url) const
{
    OrkaMetaData metaData;
    metaData.setArtist("Ann");
    metaData.setAlbum("Blue");
    OrkaResource resource;
    resource.setDuration(185000);
    resource.setUri(url.isEmpty() ? "http://192.0.2.1" + base + ".mp3" : url);
    OrkaList<OrkaResource> resources;
    resources.append(resource);
    OrkaMediaData media;
    media.setMetaData(metaData);
    media.setResources(resources);
    OrkaRoles roles = node(base, title, "track");
    roles.setType(OrkaRolesType::Audio);
    roles.setMediaData(media);
    return roles;
}

Nodes ShelfWorker::children(const QString &base) const
{
    Nodes nodes;
    for (const Entry &entry : entries) {
        const QString path = QString::fromLatin1(entry.path),
                      title = QString::fromUtf8(entry.title);
        if (base == QLatin1String(entry.parent))
            nodes.append(entry.url ? track(path, title, entry.url) : node(path, title));
    }
    for (int i = 0; base == "/shelf/big" && i < 1200; ++i) {
        const int number = i == 1003 ? 3 : i; // a title that is there twice
        nodes.append(track(base + QString::number(i), "Track " + QString::number(number)));
    }
    return nodes;
}

Nodes ShelfWorker::rowsOf(const CMPath &path) const
{
    const QString search = path.param("search");
    if (search.isNull())
        return children(path.base());
    OrkaRoles row;
    row.setPath(path.withoutParams().addParam("search", "title"));
    row.setTitle(search == "menu" ? "Title" : path.param("query"));
    const bool searchable = path.base() == "/shelf";
    return searchable ? Nodes{row} : Nodes();
}

void ShelfWorker::getRowsRequest(const CMGetRowsRequest &request)
{
    if (qEnvironmentVariableIsSet("ORKA_TEST_TELL"))
        std::fprintf(stderr, "asked %s\n", qPrintable(request.path().base()));
    if (nodes()->getRowsRequest(request))
        return;
    if (request.path().base() == "/shelf/silent") {
        m_unanswered = request.reply();
        return;
    }
    if (request.path().base() == "/shelf/broken") {
        request.setError(
            CMError("shelfBroken", TrString("Error"), TrString("The shelf is broken")));
        return;
    }
    const Nodes all = rowsOf(request.path());
    QVariantList rows;
    for (int i = request.firstRow(); i <= request.lastRow() && i < all.size(); ++i)
        rows.append(QVariant(CMGlobal::itemRolesToList(request.roles(), all.at(i))));
    OrkaRowsRoles answer;
    answer.setRows(rows);
    answer.setRowsCount(all.size());
    answer.setRowsVersion(7);
    request.reply().setValue(answer);
}

void ShelfWorker::getDataRequest(const CMGetDataRequest &request)
{
    if (nodes()->getDataRequest(request))
        return;
    const QString base = request.path().base();
    const Nodes all = children("/shelf") + children("/shelf/slash");
    const auto found = std::find_if(all.begin(), all.end(),
        [&base](const OrkaRoles &node) { return node.path().base() == base; });
    if (found == all.end()) {
        request.setError(CMError(TrString("No such node")));
        return;
    }
    request.reply().setValue(CMGlobal::itemRolesToList(request.roles(), *found));
}

void ShelfWorker::setDataRequest(const CMSetDataRequest &request)
{
    CMSetDataRequest::Reply reply = request.reply();
    const OrkaHash value = OrkaHash::fromVariant(request.value());
    if (request.path().base() == OrkaPlayListPrepareItems()) {
        QVariantList items; // each titled with its path
        for (const QVariant &path : request.value().toList()) {
            OrkaPlayListItem item;
            item.setTitle(path.toString());
            item.setUrl("http://192.0.2.1/1.mp3");
            items.append(item.toVariant());
        }
        reply.setValue(items);
    } else if (value.contains(OrkaValue::String_())) {
        CMPath results = request.path();
        results.addParam("query", OrkaValue(value).string_());
        reply.setValue(results.toEncoded());
    } else {
        reply.setValue(request.value());
    }
}

} // namespace

extern "C" Q_DECL_EXPORT void *worker_create(const char *, void *config)
{
    return new CMSyncWorker(new ShelfWorker(*static_cast<QHash<QString, QVariant> *>(config)));
}
