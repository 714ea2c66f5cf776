#include "ShelfTree.h"

#include <api/core/CMGlobal.h>
#include <api/core/CMNodesWorker.h>
#include <api/core/CMSyncWorker.h>
#include <api/core/OrkaPlayListItem.h>
#include <api/core/OrkaValue.h>
#include <api/core/orka.h>

#include <QTimer>

namespace {

/// A worker as the host meets one, with answers of every kind: rows, errors and none at all.
class ShelfWorker : public CMNodesWorker
{
public:
    explicit ShelfWorker(const QHash<QString, QVariant> &config)
        : CMNodesWorker(config, QStringLiteral("ShelfWorker"))
    {
        m_root = CMListRowsNode::create(nodes(), addPrefix(QString()));
        add("/shelf", "Shelf");
        add("/twin1", "Twin");
        add("/twin2", "Twin");
        QTimer::singleShot(300, this, [this] { add("/late", "Late"); });
        QTimer::singleShot(900, this,
            [this] { m_root->rowsRemoveStartingWithPath(addPrefix(QStringLiteral("/twin2"))); });
    }

    void getRowsRequest(const CMGetRowsRequest &request) override;
    void getDataRequest(const CMGetDataRequest &request) override;
    void setDataRequest(const CMSetDataRequest &request) override;

private:
    void add(const char *base, const char *title)
    {
        m_root->rowsAppend(
            ShelfTree::server(prefix(), QString::fromLatin1(base), QString::fromLatin1(title)));
    }
    QVector<OrkaRoles> rowsOf(const CMPath &path) const;
    QVariant prepare(const QVariantList &paths) const;

    CMListRowsNode *m_root;
    /// Kept, so that it stays open.
    CMVoidReply m_unanswered;
};

QVector<OrkaRoles> ShelfWorker::rowsOf(const CMPath &path) const
{
    const QString search = path.param(QStringLiteral("search"));
    if (search.isNull()) {
        return ShelfTree::children(prefix(), path.base());
    }
    OrkaRoles row;
    CMPath rowPath = path.withoutParams();
    if (search != QLatin1String("menu")) {
        row.setTitle(path.param(QStringLiteral("query")));
        row.setPath(rowPath);
    } else if (path.base() == QLatin1String("/shelf")) {
        row.setTitle(QStringLiteral("Title"));
        row.setPath(rowPath.addParam(QStringLiteral("search"), QStringLiteral("title")));
    } else {
        return {};
    }
    return {row};
}

void ShelfWorker::getRowsRequest(const CMGetRowsRequest &request)
{
    if (nodes()->getRowsRequest(request)) {
        return;
    }
    if (request.path().base() == QLatin1String("/shelf/silent")) {
        m_unanswered = request.reply();
        return;
    }
    if (request.path().base() == QLatin1String("/shelf/broken")) {
        request.setError(CMError(QStringLiteral("shelfBroken"), TrString(QStringLiteral("Error")),
            TrString(QStringLiteral("The shelf is broken"))));
        return;
    }
    const QVector<OrkaRoles> all = rowsOf(request.path());
    QVariantList rows;
    for (int i = request.firstRow(); i <= request.lastRow() && i < all.size(); ++i) {
        rows.append(QVariant(CMGlobal::itemRolesToList(request.roles(), all.at(i))));
    }
    OrkaRowsRoles answer;
    answer.setRows(rows);
    answer.setRowsCount(all.size());
    answer.setRowsVersion(7);
    request.reply().setValue(answer);
}

void ShelfWorker::getDataRequest(const CMGetDataRequest &request)
{
    if (nodes()->getDataRequest(request)) {
        return;
    }
    const OrkaRoles node = ShelfTree::node(prefix(), request.path().base());
    if (node.isEmpty()) {
        request.setError(CMError(TrString(QStringLiteral("No such node"))));
        return;
    }
    request.reply().setValue(CMGlobal::itemRolesToList(request.roles(), node));
}

/// One item a path, titled with the path; then three with addresses that no player may be given.
QVariant ShelfWorker::prepare(const QVariantList &paths) const
{
    QStringList urls{QStringLiteral("file:///etc/passwd"), QStringLiteral("--script=evil"),
        QStringLiteral("http://192.0.2.1/a b\n.mp3")};
    QVariantList items;
    const auto add = [&items](const QString &title, const QString &url) {
        OrkaPlayListItem item;
        item.setTitle(title);
        item.setArtist(QStringLiteral("Ann"));
        item.setDurationSeconds(61);
        item.setUrl(url);
        items.append(item.toVariant());
    };
    for (const QVariant &path : paths) {
        add(path.toString(),
            qEnvironmentVariable("ORKA_TEST_URL", QStringLiteral("http://192.0.2.1/1.mp3")));
    }
    for (const QString &url : urls) {
        add(ShelfTree::hostileTitle(), url);
    }
    return items;
}

void ShelfWorker::setDataRequest(const CMSetDataRequest &request)
{
    const CMSetDataRequest::Reply reply = request.reply();
    const OrkaHash value = OrkaHash::fromVariant(request.value());
    if (request.path().base() == OrkaPlayListPrepareItems()) {
        CMSetDataRequest::Reply(reply).setValue(prepare(request.value().toList()));
    } else if (value.contains(OrkaValue::String_())) {
        CMPath results = request.path();
        results.addParam(QStringLiteral("query"), OrkaValue(value).string_());
        CMSetDataRequest::Reply(reply).setValue(results.toEncoded());
    } else {
        CMSetDataRequest::Reply(reply).setValue(request.value());
    }
}

} // namespace

extern "C" Q_DECL_EXPORT void *worker_create(const char *, void *config)
{
    return new CMSyncWorker(new ShelfWorker(*static_cast<QHash<QString, QVariant> *>(config)));
}
