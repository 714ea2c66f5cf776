#pragma once

#include <QByteArray>
#include <QString>

/// Pictures on disk, for a day and up to a limit; the eldest go first. A cache that can't be
/// written is an empty one.
class ArtCache
{
public:
    explicit ArtCache(const QString &folder);

    /// Empty where it isn't there.
    QByteArray find(const QByteArray &key) const;
    void keep(const QByteArray &key, const QByteArray &picture);
    void forget(const QByteArray &key);

private:
    QString fileOf(const QByteArray &key) const;
    void makeRoom();

    QString m_folder;
    qint64 m_size = 0;
};
