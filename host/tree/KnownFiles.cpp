#include "tree/KnownFiles.h"

#include "chain/ServiceCalls.h"
#include "tree/ServerList.h"

#include <QDBusObjectPath>

#include <algorithm>

namespace {

/// What the same file has in common wherever it is met. Some folders that Gerbera makes up put
/// artist and album before the title, with " - " between them.
QString looksOf(const OrkaPlayListItem &item, const CMPath &path)
{
    return QStringList{ServerList::serverBase(path), item.artist(), item.album(),
        item.title().section(QStringLiteral(" - "), -1), QString::number(item.durationSeconds())}
        .join(QChar(0));
}

QString objectOf(const CMPath &path)
{
    return path.base().section(QLatin1Char('/'), -1);
}

/// Whether the object's id is a part of its address, as it is (Gerbera) or in base64 (Rygel), so
/// that another address may be the same file. Elsewhere (MiniDLNA) a file has one address, and what
/// only looks the same is another file.
bool isNamedInAddress(const CMPath &path, const QString &address)
{
    const QByteArray id = QByteArray::fromHex(objectOf(path).toLatin1());
    const QList<QByteArray> parts = address.toUtf8().split('/');
    return std::any_of(parts.begin(), parts.end(), [&id](const QByteArray &part) {
        const QByteArray text = QByteArray::fromPercentEncoding(part);
        return !id.isEmpty() && (text == id || text == id.toBase64());
    });
}

/// Recordings without tags look the same all too often.
bool hasTags(const OrkaPlayListItem &item)
{
    return !item.artist().isEmpty() && !item.album().isEmpty();
}

} // namespace

KnownFiles::KnownFiles(std::chrono::milliseconds limit)
    : m_limit(limit)
{
}

bool KnownFiles::add(
    const OrkaPlayListItem &item, const CMPath &path, const std::shared_ptr<Page> &page)
{
    if (m_addresses.contains(item.url()))
        return false;
    m_addresses.insert(item.url());
    if (!hasTags(item) || !isNamedInAddress(path, item.url()))
        return true;
    QVector<File> &lookalikes = m_lookalikes[looksOf(item, path)];
    const File file{objectOf(path), page};
    for (const File &known : qAsConst(lookalikes)) {
        if (isSame(known, file))
            return false;
    }
    lookalikes.append(file);
    return true;
}

/// No folder holds a file twice.
bool KnownFiles::isSame(const File &a, const File &b)
{
    if (!a.page || !b.page || a.page->folder.base() == b.page->folder.base())
        return false;
    const qint64 size = sizeOf(a);
    return size > 0 && size == sizeOf(b);
}

qint64 KnownFiles::sizeOf(const File &file)
{
    if (!file.page->asked)
        askSizes(file.page.get());
    return file.page->sizes.value(file.object);
}

void KnownFiles::askSizes(Page *page)
{
    page->asked = true;
    const QString folder = serviceObject(page->folder);
    if (folder.isEmpty())
        return;
    const QString path = QStringLiteral("Path");
    const QString size = QStringLiteral("Size");
    const ServiceAnswer answer =
        ServiceCalls(m_limit).children(folder, uint(page->first), uint(page->rows), {path, size});
    for (const QVariantMap &child : childrenOf(answer)) {
        const QString object = child.value(path).value<QDBusObjectPath>().path();
        page->sizes.insert(object.section(QLatin1Char('/'), -1), child.value(size).toLongLong());
    }
}

QString KnownFiles::serviceObject(const CMPath &folder)
{
    const QString server = ServerList::serverBase(folder);
    if (!m_servers.contains(server)) {
        const ServiceCalls service(m_limit);
        m_servers.insert(server, service.objectOf(server, objectPaths(service.servers())));
    }
    const QString object = m_servers.value(server);
    return object.isEmpty() ? object : object + folder.base().mid(server.size());
}
