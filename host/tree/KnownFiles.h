#pragma once

#include "chain/ServiceCalls.h"

#include <api/core/CMPath.h>
#include <api/core/OrkaPlayListItem.h>

#include <QHash>
#include <QSet>
#include <QVector>

#include <memory>

/// Tells files that have been met before: by their address, and where a media server makes an
/// address for each object, in every folder that it makes up by artist or by year, by what tracks
/// in different folders have in common. Of those that look the same the sizes are compared, which
/// the media service is asked for, a page of rows at a time: by whoever uses this, in his own way.
class KnownFiles
{
public:
    /// Some rows of a folder.
    struct Page
    {
        CMPath folder;
        int first = 0;
        int rows = 0;
        /// Set by who asks, whatever comes of it.
        bool asked = false;
        /// In bytes, by the last part of the objects' paths.
        QHash<QString, qint64> sizes = {};
    };
    using PagePointer = std::shared_ptr<Page>;

    /// Before add(), until it is null: the page whose sizes are to be asked for.
    PagePointer wanted(
        const OrkaPlayListItem &item, const CMPath &path, const PagePointer &page) const;
    /// Whether the item with this path, from a page or named by itself (null), is a new one; it is
    /// known from now on. Where sizes can't be had it is new.
    bool add(const OrkaPlayListItem &item, const CMPath &path, const PagePointer &page);

    /// Asks for a page's sizes; `server` is the media service's object of its server.
    static QDBusMessage sizesCall(const QString &server, const Page &page);
    static void takeSizes(const ServiceAnswer &answer, Page *page);

private:
    struct File
    {
        QString object;
        PagePointer page;
    };

    static bool mayBeSame(const File &a, const File &b);
    static bool isSame(const File &a, const File &b);
    static qint64 sizeOf(const File &file);

    QSet<QString> m_addresses;
    QHash<QString, QVector<File>> m_lookalikes;
};
