// Adapts the plug-in to the SDK built with ORKA_FOREIGN_SDK: what a device maker writes, as an
// example.
// clang-format off
#ifndef UPNPCLIENT_SDK_H
#define UPNPCLIENT_SDK_H

#include <api/core/CMGlobal.h>
#include <api/core/CMNodesWorker.h>
#include <api/core/CMRoot.h>
#include <api/core/CMSyncWorker.h>
#include <api/core/CMValueItem.h>
#include <api/core/OrkaPermission.h>
#include <api/core/OrkaPlayListItem.h>
#include <api/core/dbglog.h>
#include <api/core/orka.h>
#include <playListHelper/PlayListHelper.h>
#include <sstream>

namespace sdk {

inline void registerTypes()
{
    qRegisterMetaType<CMVoidReply>("CMVoidReply");
    qRegisterMetaType<OrkaRowsRoles>("OrkaRowsRoles");
    qRegisterMetaType<OrkaValue>("OrkaValue");
}
inline OrkaRolesType::Enum containerType() { return OrkaRolesType::Container; }
inline OrkaRolesType::Enum searchEntryType() { return OrkaRolesType::Search; }
inline OrkaRolesContainerType::Enum searchMenuType() { return OrkaRolesContainerType::SearchMenu; }
template<typename Request>
CMPath pathOf(const Request &request) { return request.path(); }
inline int firstRowOf(const CMGetRowsRequest &request) { return request.firstRow(); }
inline int lastRowOf(const CMGetRowsRequest &request) { return request.lastRow(); }
template<typename Request>
QStringList rolesOf(const Request &request) { return request.roles(); }
inline QVariant valueOf(const CMSetDataRequest &request) { return request.value(); }
inline bool isValid(const CMGetRowsRequest &request) { return request.isValid(); }
inline void answer(const CMGetRowsRequest &request, const OrkaRowsRoles &rows) { request.reply().setValue(rows); }
template<typename Request, typename Value>
void answer(const Request &request, const Value &value) { CMVoidReply(request.reply()).setVariant(value); }
template<typename Request>
void refuse(const Request &request, const CMError &error) { request.setError(error); }
inline auto *watch(const CMReply<OrkaRowsRoles> &reply, QObject *parent) { return new CMReplyWatcherObject(reply, parent); }
inline OrkaRowsRoles rowsOf(const CMVoidReply &reply) { return CMReplyData<OrkaRowsRoles>(reply).value(); }
inline QVariantList rowList(const OrkaRowsRoles &answer) { return answer.rows(); }
inline bool isError(const CMError &error) { return error.isError(); }
inline std::string errorText(const CMError &error) { return error.toJsonString().toStdString(); }
// This SDK answers a request for a row that isn't there with no row.
inline CMError errorOf(const CMVoidReply &reply)
{
    const bool isRowMissing = !isError(reply.error()) && rowsOf(reply).rows().isEmpty();
    return isRowMissing ? createErrorInternal(QStringLiteral("There is no such row.")) : reply.error();
}
template<typename Record>
Record empty() { return Record(OrkaHash()); }
inline bool isEmpty(const OrkaHash &record) { return record.isEmpty(); }
inline QVariant variantOf(const OrkaHash &record) { return record; }
inline bool isContainer(const OrkaRoles &roles) { return roles.type() == OrkaRolesType::Container; }
inline CMPath withParam(CMPath path, const QString &key, const QString &value) { return path.addParam(key, value); }
inline TrString plainText(const QString &text) { return text; }
inline TrString translatable(const char *function, const char *text) { return {trExtractContext(function), text}; }
inline CMError errorFor(const TrString &message) { return message; }
inline QVariant defaultPermission() { return OrkaPermission::Default_(); }
inline QStringList roleNames() { return OrkaRoles::all(); }
inline QString pathRole() { return OrkaRoles::Path(); }
inline QString mediaDataRole() { return OrkaRoles::MediaData(); }
inline QString iconRole() { return OrkaRoles::Icon(); }
inline QStringList addressesIn(const OrkaValue &value)
{
    const OrkaNetworkInfo info = value.networkInfo();
    QStringList ips;
    QList<OrkaNetworkAddresses> holders{info.wired(), info.wireless()};
    for (const OrkaNetworkSoftAp &accessPoint : info.softAp().aps())
        holders.append(accessPoint);
    for (const OrkaNetworkAddresses &holder : qAsConst(holders)) {
        for (const QVariantHash &address : holder.addresses())
            ips.append(OrkaNetworkAddress(address).ip());
    }
    return ips;
}
inline void *adaptorOf(CMNodesWorker *worker) { return new CMSyncWorker(worker); }
inline void connectChecked(const QObject *from, const char *signal, const QObject *to, const char *slot)
{
    orkaConnect(from, signal, to, slot);
}
inline void verify(bool condition, const char *text)
{
    if (!condition)
        orkaAssertFailed(text, __FILE__, __LINE__);
}
inline std::string scopedName(const char *function) { return dbglog_scopedFunction(function, "CB_UPnP"); }
inline std::string logged(const QVariant &value) { return (std::ostringstream() << value).str(); }
inline std::string logged(const CMPath &path) { return path.toEncoded().toStdString(); }

} // namespace sdk

#define SDK_TR(text) sdk::translatable(Q_FUNC_INFO, text)
#endif
