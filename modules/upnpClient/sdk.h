// The adaption header: all that the plug-in needs of the SDK beyond the names and signatures that
// every device's SDK has. For an SDK of another form this file is edited, or replaced from outside
// (-DORKA_SDK_HEADER=FILE), and no other. docs/porting-to-a-device.md lists what stands here.
#ifndef UPNPCLIENT_SDK_H
#define UPNPCLIENT_SDK_H

#include <api/core/CMError.h>
#include <api/core/CMGlobal.h>
#include <api/core/CMNodesWorker.h>
#include <api/core/CMPath.h>
#include <api/core/CMReply.h>
#include <api/core/CMRequest.h>
#include <api/core/CMRoot.h>
#include <api/core/CMSyncWorker.h>
#include <api/core/CMValueItem.h>
#include <api/core/OrkaMediaData.h>
#include <api/core/OrkaNetworkInfo.h>
#include <api/core/OrkaPermission.h>
#include <api/core/OrkaPlayListItem.h>
#include <api/core/OrkaRoles.h>
#include <api/core/OrkaValue.h>
#include <api/core/TrString.h>
#include <api/core/dbglog.h>
#include <api/core/orka.h>
#include <playListHelper/PlayListHelper.h>

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <optional>
#include <sstream>
#include <string>

namespace sdk {

// Types

/// Makes what queued connections carry known to Qt. A type may be registered already.
inline void registerTypes()
{
    qRegisterMetaType<CMVoidReply>("CMVoidReply");
    qRegisterMetaType<CMGetRowsRequest>("CMGetRowsRequest");
    qRegisterMetaType<OrkaRowsRoles>("OrkaRowsRoles");
    qRegisterMetaType<OrkaValue>("OrkaValue");
}

/// Type 1 of a row: a container.
inline OrkaRolesType::Enum containerType()
{
    return OrkaRolesType::Enum(1);
}

/// Type 100 of a row: a search entry.
inline OrkaRolesType::Enum searchEntryType()
{
    return OrkaRolesType::Enum(100);
}

/// Container type 101: a search menu.
inline OrkaRolesContainerType::Enum searchMenuType()
{
    return OrkaRolesContainerType::Enum(101);
}

// Requests

/// The node that a request of any kind is about.
template<typename Request>
CMPath pathOf(const Request &request)
{
    return request.path();
}

/// The first row wanted, counted from 0.
inline int firstRowOf(const CMGetRowsRequest &request)
{
    return request.firstRow();
}

/// The last row wanted, inclusive.
inline int lastRowOf(const CMGetRowsRequest &request)
{
    return request.lastRow();
}

/// The names of the roles wanted, of a rows or data request.
template<typename Request>
QStringList rolesOf(const Request &request)
{
    return request.roles();
}

/// The new value.
inline QVariant valueOf(const CMSetDataRequest &request)
{
    return request.value();
}

/// Whether there is a reply to be answered.
inline bool isValid(const CMGetRowsRequest &request)
{
    return request.isValid();
}

/// Answers a request of any kind: with rows, a list of role values, or any value. Once, or after an
/// error.
template<typename Request, typename Value>
void answer(const Request &request, const Value &value)
{
    request.reply().setValue(value);
}

/// Answers a request of any kind with an error. A value may follow.
template<typename Request>
void refuse(const Request &request, const CMError &error)
{
    request.setError(error);
}

// Replies to what the plug-in itself asks the tree for

/// Asks the tree for one row of a node, counted from 0. `connectTo` gets what tells of the reply by
/// `finishedSignal`, a child of `parent`, before it can tell: what is told earlier is lost.
inline void askForRow(const CMPath &path, int row, const QStringList &roles, QObject *parent,
    const std::function<void(CMReplyWatcherObject *)> &connectTo)
{
    const CMReply<OrkaRowsRoles> reply;
    connectTo(new CMReplyWatcherObject(reply, parent));
    CMRoot()->getRows(path, row, row, -1, roles, reply);
}

/// The error of a reply to a request for one row. An answer without a row must be one, see
/// isError().
inline CMError errorOf(const CMVoidReply &reply)
{
    return reply.error();
}

/// Whether an error is one: its name isn't empty.
inline bool isError(const CMError &error)
{
    return !error.value(CMError::Name()).toString().isEmpty();
}

/// An error as log lines show it.
inline std::string errorText(const CMError &error)
{
    return error.toJsonString().toStdString();
}

/// The answer that a reply without an error holds.
inline OrkaRowsRoles rowsOf(const CMVoidReply &reply)
{
    return CMReplyData<OrkaRowsRoles>(reply).value();
}

/// The rows of an answer, a variant each.
inline QVariantList rowList(const OrkaRowsRoles &answer)
{
    return answer.rows();
}

// Records, paths, texts

/// A record (roles, rows, item, …) with nothing set.
template<typename Record>
Record empty()
{
    return Record();
}

/// Whether nothing is set in a record.
inline bool isEmpty(const OrkaHash &record)
{
    return record.isEmpty();
}

/// A record as one value of a list.
inline QVariant variantOf(const OrkaHash &record)
{
    return record.toVariant();
}

/// A record as JSON text.
inline QString jsonOf(const OrkaHash &record)
{
    return record.toJsonString();
}

/// What the role "resources" takes: one resource, or nothing.
inline OrkaList<OrkaResource> resourceList(const std::optional<OrkaResource> &resource)
{
    OrkaList<OrkaResource> list;
    if (resource)
        list.append(*resource);
    return list;
}

/// Whether a node is a container, type 1.
inline bool isContainer(const OrkaRoles &roles)
{
    return roles.type() == containerType();
}

/// A path as text, as `CMPath::fromEncoded()` takes it.
inline QString encoded(const CMPath &path)
{
    return path.toEncoded();
}

/// The part of a path between its prefix and its parameters.
inline QString baseOf(const CMPath &path)
{
    return path.base();
}

/// All parameters of a path, by key.
inline QMap<QString, QString> paramsOf(const CMPath &path)
{
    return path.params();
}

/// A path with one parameter more; one of the same name is replaced.
inline CMPath withParam(CMPath path, const QString &key, const QString &value)
{
    path.addParam(key, value);
    return path;
}

/// A text that is the same in every language.
inline TrString plainText(const QString &text)
{
    return TrString(text);
}

/// A text to be translated; its context is the class in `function`, a compiler's function
/// signature.
inline TrString translatable(const char *function, const char *text)
{
    return TrString(trExtractContext(function), text);
}

/// An error with the SDK's name and title. The message is shown to people.
inline CMError errorFor(const TrString &message)
{
    return CMError(CMError::DefaultName(), CMError::DefaultTitle(), message);
}

/// The value of the permission role that everybody has.
inline QVariant defaultPermission()
{
    return OrkaPermission::Default_();
}

/// All role names by which rows leave out what isn't asked for; none where names may have parts or
/// aren't known.
inline QStringList roleNames()
{
    return OrkaRoles::all();
}

/// The role "path" in a list of role names; likewise the next two.
inline QString pathRole()
{
    return OrkaRoles::Path();
}

/// The role "mediaData".
inline QString mediaDataRole()
{
    return OrkaRoles::MediaData();
}

/// The role "icon".
inline QString iconRole()
{
    return OrkaRoles::Icon();
}

/// The device's addresses: wired, then wireless, then those of every soft access point.
inline QStringList addressesIn(const OrkaValue &networkInfo)
{
    const OrkaNetworkInfo info = networkInfo.networkInfo();
    QList<QVariantHash> addresses = info.wired().addresses() + info.wireless().addresses();
    for (const OrkaNetworkSoftAp &accessPoint : info.softAp().aps())
        addresses += accessPoint.addresses();
    QStringList ips;
    for (const QVariantHash &address : addresses)
        ips.append(OrkaNetworkAddress(OrkaHash(address)).ip());
    return ips;
}

// Program

/// What `worker_create` returns: the worker behind the adaptor that the host casts it to.
inline void *adaptorOf(CMNodesWorker *worker)
{
    return new CMSyncWorker(worker);
}

/// The worker's name, as the constructor of its base class takes it.
inline QString workerName()
{
    return QStringLiteral("CMUPnPWorker");
}

/// Connects by `SIGNAL()` and `SLOT()` texts and ends the program where that can't be done.
inline void connectChecked(
    const QObject *sender, const char *signal, const QObject *receiver, const char *slot)
{
    orkaConnect(sender, signal, receiver, slot, Qt::AutoConnection);
}

/// Tells `slot`, a `SLOT()` text that takes an OrkaValue, of each change of the value at `path`.
inline void watchValue(const CMPath &path, QObject *receiver, const char *slot)
{
    connectChecked(
        new CMValueItem(receiver, path), SIGNAL(changed(OrkaValue, OrkaValue)), receiver, slot);
}

/// Ends the program, in every build, where `condition` doesn't hold; `text` names it.
inline void verify(bool condition, const char *text)
{
    if (!condition)
        orkaAssertFailed(text, __FILE__, __LINE__);
}

/// "Class::function" for log lines, from a compiler's function signature.
inline std::string scopedName(const char *function)
{
    return dbglog_scopedFunction(function, "CB_UPnP");
}

/// A path or a variant as the SDK writes it into log lines.
template<typename Value>
std::string logged(const Value &value)
{
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

} // namespace sdk

/// A text to be translated in the context of the enclosing member function's class. A macro, since
/// only that function knows its class, and lupdate finds it (`-tr-function-alias tr+=SDK_TR`).
#define SDK_TR(text) sdk::translatable(Q_FUNC_INFO, text)

#endif
