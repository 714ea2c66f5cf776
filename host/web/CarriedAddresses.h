#pragma once

#include "tree/RowsReader.h"

#include <QSet>
#include <QString>

/// Remembers the addresses of pictures and media that this run's rows have carried: nothing else
/// is fetched for anybody. Of very many the oldest are forgotten.
class CarriedAddresses
{
public:
    void noteArt(const QString &url);
    void noteMedia(const QString &url);
    void note(const OrkaRoles &row);
    bool hasArt(const QByteArray &url) const { return m_art.contains(url); }
    bool hasMedia(const QByteArray &url) const { return m_media.contains(url); }

private:
    /// Keeps two sets, so that half of it is always young.
    class Set
    {
    public:
        void insert(const QByteArray &url);
        bool contains(const QByteArray &url) const;

    private:
        QSet<QByteArray> m_young;
        QSet<QByteArray> m_old;
    };

    Set m_art;
    Set m_media;
};
