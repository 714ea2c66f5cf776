#include "CMWorker.h"

#include <private/CMWorkerGate.h>
#include <private/RecordKey.h>

namespace {
void deliver(CMAbstractWorker *worker, const CMGetRowsRequest &request)
{
    worker->getRowsRequest(request);
}

void deliver(CMAbstractWorker *worker, const CMGetDataRequest &request)
{
    worker->getDataRequest(request);
}

void deliver(CMAbstractWorker *worker, const CMSetDataRequest &request)
{
    worker->setDataRequest(request);
}

CMError errorWithoutRow(const QVariant &answer, const CMPath &path, int row)
{
    if (!OrkaRowsRoles(OrkaHash::fromVariant(answer)).rows().isEmpty())
        return CMError();
    return createErrorInternal(
        QStringLiteral("There is no row %1 at %2.").arg(QString::number(row), path.toEncoded()));
}
} // namespace

CMAbstractWorker::CMAbstractWorker(QObject *parent)
    : QObject(parent)
    , m_gate(std::make_shared<CMWorkerGate>(this))
{
}

CMAbstractWorker::~CMAbstractWorker()
{
    m_gate->close();
}

bool CMAbstractWorker::event(QEvent *event)
{
    if (event->type() != CMRequestEvent::eventType())
        return QObject::event(event);
    std::visit([this](const auto &request) { deliver(this, request); },
        static_cast<CMRequestEvent *>(event)->take());
    return true;
}

void CMAbstractWorker::getRows(const CMPath &path, int first, int last, int rowsVersion,
    const QStringList &roles, const CMReply<OrkaRowsRoles> &reply)
{
#ifdef ORKA_FOREIGN_SDK
    const bool isRowDemanded = false;
#else
    const bool isRowDemanded = first == last;
#endif
    if (isRowDemanded) {
        CMVoidReply(reply).setCheck(
            [path, first](const QVariant &answer) { return errorWithoutRow(answer, path, first); });
    }
    getRowsRequest(CMGetRowsRequest(path, first, last, rowsVersion, roles, reply));
}

void CMAbstractWorker::getData(
    const CMPath &path, const QStringList &roles, const CMReply<QVariantList> &reply)
{
    getDataRequest(CMGetDataRequest(path, roles, reply));
}

void CMAbstractWorker::setData(
    const CMPath &path, const QVariant &value, const CMReply<QVariant> &reply)
{
    setDataRequest(CMSetDataRequest(path, value, reply));
}

CMWorker::CMWorker(const QHash<QString, QVariant> &config, const QString &name, QObject *parent)
    : CMAbstractWorker(parent)
    , m_name(name)
    , m_prefix(config.value(Prefix_(), name).toString())
{
}

ORKA_RECORD_KEY(CMWorker, Prefix_, "prefix")
