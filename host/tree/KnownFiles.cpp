#include "tree/KnownFiles.h"

#include "chain/ServiceCalls.h"
#include "tree/ServerList.h"

#include <QDBusObjectPath>

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
    const QString origin = originOf(a);
    return !origin.isEmpty() && origin == originOf(b);
}

QString KnownFiles::originOf(const File &file)
{
    if (!file.page->asked)
        askOrigins(file.page.get());
    return file.page->origins.value(file.object);
}

void KnownFiles::askOrigins(Page *page)
{
    page->asked = true;
    const QString folder = serviceObject(page->folder);
    if (folder.isEmpty())
        return;
    const QString path = QStringLiteral("Path");
    const QString refPath = QStringLiteral("RefPath");
    const ServiceAnswer answer = ServiceCalls(m_limit).children(
        folder, uint(page->first), uint(page->rows), {path, refPath});
    for (const QVariantMap &child : childrenOf(answer)) {
        const QString object = child.value(path).value<QDBusObjectPath>().path();
        const QString origin = child.value(refPath).value<QDBusObjectPath>().path();
        page->origins.insert(
            object.section(QLatin1Char('/'), -1), origin.isEmpty() ? object : origin);
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
