#pragma once

#include <api/core/CMPath.h>
#include <api/core/OrkaPlayListItem.h>

#include <QHash>
#include <QSet>
#include <QVector>

#include <chrono>
#include <memory>

/// Tells files that have been met before: by their address, and where a media server makes an
/// address for each object, in every folder that it makes up by artist or by year, by what tracks
/// in different folders have in common. Of those that look the same the media service is asked for
/// the sizes, a page of rows at a time.
class KnownFiles
{
public:
    /// Some rows of a folder.
    struct Page
    {
        CMPath folder;
        int first = 0;
        int rows = 0;
        bool asked = false;
        /// In bytes, by the last part of the objects' paths.
        QHash<QString, qint64> sizes = {};
    };

    /// The media service has `limit` for an answer.
    explicit KnownFiles(std::chrono::milliseconds limit);

    /// Whether the item with this path, from a page or named by itself (null), is a new one; it is
    /// known from now on. Where sizes can't be had it is new.
    bool add(const OrkaPlayListItem &item, const CMPath &path, const std::shared_ptr<Page> &page);

private:
    struct File
    {
        QString object;
        std::shared_ptr<Page> page;
    };

    bool isSame(const File &a, const File &b);
    qint64 sizeOf(const File &file);
    void askSizes(Page *page);
    QString serviceObject(const CMPath &folder);

    const std::chrono::milliseconds m_limit;
    QSet<QString> m_addresses;
    QHash<QString, QVector<File>> m_lookalikes;
    /// By the first part of a node path's base.
    QHash<QString, QString> m_servers;
};
