#include "chain/KeptAddresses.h"

#include "Failure.h"
#include "KnownSentences.h"
#include "ServerAddress.h"
#include "Text.h"
#include "chain/NamedServers.h"
#include "chain/Wait.h"
#include "output/SafeText.h"

#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <sys/file.h>

namespace {

constexpr int longestFile = 1'000'000;
/// Others hold the lock for milliseconds.
constexpr std::chrono::seconds lockLimit(3);

using Lines = QList<QByteArray>;

QString filePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/orka/servers");
}

Failure notKept(const QString &why)
{
    return Failure(AnsweredWithError, QStringLiteral("notKept"),
        Text::tr("The addresses in %1 can't be written: %2.")
            .arg(quoted(filePath()), safeText(why)));
}

/// Held while the lines are read, changed and written. It stands beside them, as each writing makes
/// a file of its own.
class Lock
{
public:
    Lock()
        : m_file(filePath() + QStringLiteral(".lock"))
    {
        std::error_code error;
        std::filesystem::create_directories(QFileInfo(filePath()).path().toStdString(), error);
        if (error)
            throw notKept(QString::fromStdString(error.message()));
        if (!m_file.open(QIODevice::WriteOnly))
            throw notKept(m_file.errorString());
        Wait wait(lockLimit, Text::tr("Waiting for another command"));
        if (!wait.poll([this] { return take(); })) {
            throw notKept(Text::tr("another command has been at it for %1 s. Try again when "
                                   "it has ended")
                              .arg(lockLimit.count()));
        }
    }

private:
    /// A file system without locks has to do without.
    bool take() const
    {
        return flock(m_file.handle(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
    }

    QFile m_file;
};

Lines readLines()
{
    QFile file(filePath());
    if (!file.exists())
        return {};
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) {
        throw wrongUsage(Text::tr("The addresses in %1 can't be read. Give yourself the "
                                  "right to read it, or remove it.")
                             .arg(quoted(file.fileName())));
    }
    const QByteArray text = file.read(longestFile + 1);
    if (text.size() > longestFile) {
        throw wrongUsage(Text::tr("The addresses in %1 take more than 1 MB, which is more "
                                  "than is read. Shorten the file, or remove it.")
                             .arg(quoted(file.fileName())));
    }
    Lines lines = text.split('\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

void writeLines(const Lines &lines)
{
    QSaveFile file(filePath());
    const QByteArray text = lines.isEmpty() ? QByteArray() : lines.join('\n') + '\n';
    // Asked to flush, it says that the disk is full; commit() alone doesn't.
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush()
        || !file.commit())
        throw notKept(file.errorString());
}

/// The address in a line; empty where it holds none.
QString addressIn(const QByteArray &line)
{
    const QString text = QString::fromUtf8(line).trimmed();
    return text.startsWith(QLatin1Char('#')) ? QString() : text;
}

} // namespace

QString KeptAddresses::shown(const QString &address)
{
    return quoted(QString::fromStdString(bridge::withoutPassword(address.toStdString())));
}

void KeptAddresses::check(const QString &address)
{
    std::string problem;
    if (!bridge::parseServerAddress(address.toStdString(), &problem))
        throw wrongUsage(translatedSentence(QString::fromStdString(problem)));
}

QStringList KeptAddresses::read()
{
    QStringList addresses;
    for (const QByteArray &line : readLines()) {
        const QString address = addressIn(line);
        if (!address.isEmpty())
            addresses.append(address);
    }
    addresses.removeDuplicates();
    return addresses;
}

bool KeptAddresses::add(const QString &address)
{
    const Lock lock;
    const QStringList kept = read();
    if (kept.contains(address))
        return false;
    if (kept.size() >= NamedServers::most) {
        throw notKept(Text::tr("no more than %1 are looked at, and so many are kept already. Take "
                               "one away with \"orka servers --forget ADDRESS\"")
                          .arg(Text::number(NamedServers::most)));
    }
    writeLines(readLines() << address.toUtf8());
    return true;
}

bool KeptAddresses::forget(const QString &address)
{
    if (!read().contains(address))
        return false;
    const Lock lock;
    Lines lines = readLines();
    const auto others = std::remove_if(lines.begin(), lines.end(),
        [&](const QByteArray &line) { return addressIn(line) == address; });
    if (others == lines.end())
        return false;
    lines.erase(others, lines.end());
    writeLines(lines);
    return true;
}
