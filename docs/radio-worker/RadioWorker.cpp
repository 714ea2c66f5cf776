#include <api/core/CMNodesWorker.h>
#include <api/core/CMSyncWorker.h>

class RadioWorker : public CMNodesWorker
{
    Q_OBJECT

public:
    explicit RadioWorker(const QHash<QString, QVariant> &config)
        : CMNodesWorker(config, QStringLiteral("RadioWorker"))
    {
        auto *const stations = CMListRowsNode::create(nodes(), addPrefix(QString()));
        stations->setTitle(ORKA_TR("Radio"));

        OrkaRoles row;
        row.setPath(addPrefix(QStringLiteral("/one"))
                        .addParam(QStringLiteral("itemType"), QStringLiteral("track")));
        row.setTitle(TrString(QStringLiteral("Station One")));
        row.setType(OrkaRolesType::Audio);
        stations->rowsAppend(row);
    }
};

#include "RadioWorker.moc"

extern "C" Q_DECL_EXPORT void *worker_create(const char *, void *config)
{
    return new CMSyncWorker(
        new RadioWorker(*static_cast<const QHash<QString, QVariant> *>(config)));
}
