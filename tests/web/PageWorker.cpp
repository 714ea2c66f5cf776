#include <api/core/CMGlobal.h>
#include <api/core/CMNodesWorker.h>
#include <api/core/CMSyncWorker.h>
#include <api/core/OrkaRoles.h>
#include <playListHelper/PlayListHelper.h>

namespace {

constexpr int bigCount = 100'000;

/// Media servers: "Big", a sorted list of very many tracks with covers; "Uncounted", its first 150
/// without a count; "Empty"; and "Hostile", whose titles and pictures mean harm. Pictures are at the
/// address in ORKA_TEST_ART.
class PageWorker : public CMNodesWorker
{
public:
    explicit PageWorker(const QHash<QString, QVariant> &config)
        : CMNodesWorker(config, QStringLiteral("PageWorker"))
    {
        CMListRowsNode *root = CMListRowsNode::create(nodes(), addPrefix(QString()));
        for (const char *name : {"Big", "Uncounted", "Empty", "Hostile"}) {
            OrkaRoles server;
            server.setPath(path(QLatin1Char('/') + QLatin1String(name), "server"));
            server.setTitle(QString::fromLatin1(name));
            server.setType(OrkaRolesType::Container);
            root->rowsAppend(server);
        }
    }

    void getRowsRequest(const CMGetRowsRequest &request) override
    {
        if (nodes()->getRowsRequest(request))
            return;
        OrkaRowsRoles answer;
        const QString base = request.path().base();
        if (base == QLatin1String("context")) {
            answer.setRows(PlayListHelper::playListRows(request));
            answer.setRowsCount(3);
        } else {
            answer = children(base.mid(1), request);
        }
        request.reply().setValue(answer);
    }

    void getDataRequest(const CMGetDataRequest &request) override
    {
        if (!nodes()->getDataRequest(request))
            request.reply().setValue(CMGlobal::itemRolesToList(
                request.roles(), big(request.path().base().section(QLatin1Char('/'), 2).toInt())));
    }

    void setDataRequest(const CMSetDataRequest &request) override
    {
        request.setError(createErrorInternal(QStringLiteral("Not implemented")));
    }

private:
    CMPath path(const QString &base, const QString &type) const
    {
        return addPrefix(base).addParam(QStringLiteral("itemType"), type);
    }

    OrkaRoles row(const QString &base, const QString &title, const QString &picture) const
    {
        const QString art = qEnvironmentVariable("ORKA_TEST_ART");
        OrkaRoles roles;
        roles.setPath(path(base, QStringLiteral("track")));
        roles.setTitle(title);
        roles.setType(OrkaRolesType::Audio);
        roles.setIcon(picture.contains(QLatin1Char(':')) ? picture : art + picture);
        OrkaResource resource;
        resource.setUri(art + picture);
        OrkaList<OrkaResource> resources;
        resources.append(resource);
        OrkaMediaData data;
        data.setResources(resources);
        roles.setMediaData(data);
        return roles;
    }

    OrkaRoles big(int position) const
    {
        const QChar letter = QLatin1Char(char('A' + position * 26 / bigCount));
        return row(QStringLiteral("/Big/%1").arg(position),
            QStringLiteral("%1 %2").arg(letter).arg(position, 6, 10, QLatin1Char('0')),
            QStringLiteral("/art/%1").arg(position % 200));
    }

    OrkaRoles hostile(int position) const
    {
        static const QStringList titles{
            QStringLiteral("<img src=x onerror=\"document.title='harmed'\">"),
            QStringLiteral("javascript:alert(1)"), QStringLiteral("\u202egnp.exe\u0007\u001b[31m"),
            QString(1'000'000, QLatin1Char('M'))};
        static const QStringList pictures{QStringLiteral("/redirect-port"),
            QStringLiteral("/redirect-host"), QStringLiteral("/redirects"), QStringLiteral("/bomb"),
            QStringLiteral("/endless"), QStringLiteral("/svg"), QStringLiteral("/html"),
            QStringLiteral("file:///etc/passwd"), QStringLiteral("/fine")};
        return row(QStringLiteral("/Hostile/%1").arg(position),
            titles.value(position, QString::number(position)), pictures.at(position));
    }

    OrkaRowsRoles children(const QString &server, const CMGetRowsRequest &request) const
    {
        const QStringList sample = request.path().param(QStringLiteral("sample")).split(',');
        const int step = sample.size() == 3 ? sample.at(2).toInt() : 1;
        const bool isHostile = server == QLatin1String("Hostile");
        const bool isCounted = server != QLatin1String("Uncounted");
        const QHash<QString, int> counts{{"Big", bigCount}, {"Uncounted", 150}, {"Hostile", 9}};
        const int count = counts.value(server);
        QVariantList rows;
        for (qint64 i = request.firstRow(); i <= request.lastRow() && i * step < count; ++i) {
            const int position = int(i) * step;
            rows.append(QVariant(CMGlobal::itemRolesToList(
                request.roles(), isHostile ? hostile(position) : big(position))));
        }
        OrkaRowsRoles answer;
        answer.setRows(rows);
        answer.setRowsCount(isCounted ? count : 0);
        return answer;
    }
};

} // namespace

extern "C" Q_DECL_EXPORT void *worker_create(const char *, void *config)
{
    return new CMSyncWorker(new PageWorker(*static_cast<QHash<QString, QVariant> *>(config)));
}
