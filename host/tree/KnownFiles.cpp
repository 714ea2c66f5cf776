#include "tree/KnownFiles.h"

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

const QString pathProperty = QStringLiteral("Path");
const QString sizeProperty = QStringLiteral("Size");

/// The last part of an object's path.
QString objectOf(const QString &path)
{
    return path.section(QLatin1Char('/'), -1);
}

QString objectOf(const CMPath &path)
{
    return objectOf(path.base());
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

bool hasLookalikes(const OrkaPlayListItem &item, const CMPath &path)
{
    return hasTags(item) && isNamedInAddress(path, item.url());
}

} // namespace

bool KnownFiles::add(const OrkaPlayListItem &item, const CMPath &path, const PagePointer &page)
{
    if (m_addresses.contains(item.url()))
        return false;
    m_addresses.insert(item.url());
    if (!hasLookalikes(item, path))
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

KnownFiles::PagePointer KnownFiles::wanted(
    const OrkaPlayListItem &item, const CMPath &path, const PagePointer &page) const
{
    if (m_addresses.contains(item.url()) || !hasLookalikes(item, path))
        return nullptr;
    const File file{objectOf(path), page};
    const QVector<File> lookalikes = m_lookalikes.value(looksOf(item, path));
    for (const File &known : lookalikes) {
        if (!mayBeSame(known, file))
            continue;
        if (!page->asked)
            return page;
        if (sizeOf(file) > 0 && !known.page->asked)
            return known.page;
    }
    return nullptr;
}

/// No folder holds a file twice.
bool KnownFiles::mayBeSame(const File &a, const File &b)
{
    return a.page && b.page && a.page->folder.base() != b.page->folder.base();
}

bool KnownFiles::isSame(const File &a, const File &b)
{
    return mayBeSame(a, b) && sizeOf(a) > 0 && sizeOf(a) == sizeOf(b);
}

qint64 KnownFiles::sizeOf(const File &file)
{
    return file.page->sizes.value(file.object);
}

void KnownFiles::takeSizes(const ServiceAnswer &answer, Page *page)
{
    for (const QVariantMap &child : childrenOf(answer)) {
        const QString object = child.value(pathProperty).value<QDBusObjectPath>().path();
        page->sizes.insert(objectOf(object), child.value(sizeProperty).toLongLong());
    }
}

QDBusMessage KnownFiles::sizesCall(const QString &server, const Page &page)
{
    const QString base = page.folder.base();
    return ServiceCalls::childrenCall(server + base.mid(ServerList::serverBase(page.folder).size()),
        uint(page.first), uint(page.rows), {pathProperty, sizeProperty});
}
