#include "web/ArtCache.h"

#include "web/Picture.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QTemporaryFile>

#include <cstdio>

namespace {

constexpr qint64 mostBytes = 64 << 20;
constexpr qint64 freshFor = 86'400; // seconds: an address may become that of another picture

} // namespace

ArtCache::ArtCache(const QString &folder)
    : m_folder(folder)
{
    QDir().mkpath(m_folder);
    const QFileInfoList files = QDir(m_folder).entryInfoList(QDir::Files);
    for (const QFileInfo &file : files)
        m_size += file.size();
}

QString ArtCache::fileOf(const QByteArray &key) const
{
    const QByteArray name = QCryptographicHash::hash(key, QCryptographicHash::Sha256).toHex();
    return m_folder + QLatin1Char('/') + QString::fromLatin1(name);
}

QByteArray ArtCache::find(const QByteArray &key) const
{
    QFile file(fileOf(key));
    const QDateTime kept = file.fileTime(QFileDevice::FileModificationTime);
    if (std::abs(kept.secsTo(QDateTime::currentDateTime())) > freshFor
        || !file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    return pictureType(bytes) != nullptr ? bytes : QByteArray();
}

void ArtCache::forget(const QByteArray &key)
{
    QFile::remove(fileOf(key));
}

/// Whole or not at all, but without waiting for the disk, as QSaveFile does: after a power failure
/// a picture is fetched again.
void ArtCache::keep(const QByteArray &key, const QByteArray &picture)
{
    QTemporaryFile file(m_folder + QStringLiteral("/XXXXXX.part"));
    if (!file.open() || file.write(picture) != picture.size() || !file.flush()
        || std::rename(
               QFile::encodeName(file.fileName()), QFile::encodeName(fileOf(key)).constData())
            != 0) {
        return;
    }
    file.setAutoRemove(false);
    m_size += picture.size();
    if (m_size > mostBytes)
        makeRoom();
}

void ArtCache::makeRoom()
{
    m_size = 0;
    const QFileInfoList youngestFirst = QDir(m_folder).entryInfoList(QDir::Files, QDir::Time);
    for (const QFileInfo &file : youngestFirst) {
        if (m_size + file.size() > mostBytes * 3 / 4) {
            QFile::remove(file.filePath());
        } else {
            m_size += file.size();
        }
    }
}
