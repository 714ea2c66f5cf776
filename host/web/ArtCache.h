#pragma once

#include <QByteArray>
#include <QString>

/// Pictures on disk, up to a limit; those that nobody has asked for longest go first. A cache that
/// can't be written is an empty one.
class ArtCache
{
public:
    explicit ArtCache(const QString &folder);

    /// Empty where it isn't there.
    QByteArray find(const QByteArray &key) const;
    void keep(const QByteArray &key, const QByteArray &picture);

private:
    QString fileOf(const QByteArray &key) const;
    void makeRoom();

    QString m_folder;
    qint64 m_size = 0;
};
