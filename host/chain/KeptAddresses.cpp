#include "chain/KeptAddresses.h"

#include "Failure.h"
#include "chain/Wait.h"
#include "output/SafeText.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTimer>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <sys/file.h>

namespace {

constexpr int longestAddress = 1000;
constexpr int longestFile = 1'000'000;
/// Others hold the lock for milliseconds.
constexpr std::chrono::seconds lockLimit(3);
constexpr int lookEvery = 10; // milliseconds

using Lines = QList<QByteArray>;

QString filePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/orka/servers");
}

Failure notKept(const QString &why)
{
    return Failure(AnsweredWithError, QStringLiteral("notKept"),
        QStringLiteral("The addresses in %1 can't be written: %2.")
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
        Wait wait(lockLimit, QStringLiteral("Waiting for another command"));
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, &wait, &Wait::wake);
        look.start(lookEvery);
        if (!wait.until([this] { return take(); })) {
            throw notKept(QStringLiteral("another command has been at it for %1 s. Try again when "
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
        throw wrongUsage(QStringLiteral("The addresses in %1 can't be read. Give yourself the "
                                        "right to read it, or remove it.")
                             .arg(quoted(file.fileName())));
    }
    const QByteArray text = file.read(longestFile + 1);
    if (text.size() > longestFile) {
        throw wrongUsage(QStringLiteral("The addresses in %1 take more than 1 MB, which is more "
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

/// Why nothing can be looked for there; empty where it can.
QString whatIsWrong(const QString &address)
{
    static const QRegularExpression hostAndPort(
        QStringLiteral("^(?:\\w[\\w.-]*|\\[[0-9a-f:.]+(?:%(?:25)?[\\w.-]+)?\\])(?::(\\d{1,5}))?$"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
    static const QRegularExpression ipv6(
        QStringLiteral("^[0-9a-f.]*:[0-9a-f.]*:[0-9a-f:.]*(%[\\w.-]+)?$"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression url(QStringLiteral("^([a-z]+)://([^/?\\s]+)([/?][^\\s]*)?$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch parts = url.match(address);
    const QString host = parts.hasMatch() ? parts.captured(2) : address;
    const QRegularExpressionMatch place = hostAndPort.match(host);
    const bool isPlain = std::none_of(address.begin(), address.end(),
        [](QChar c) { return c.category() == QChar::Other_Control; });
    if (isPlain && parts.hasMatch() && parts.captured(1).toLower() != QLatin1String("http"))
        return QStringLiteral("media servers are asked over http:// alone");
    if (isPlain && parts.hasMatch() && host.contains(QLatin1Char('@')))
        return QStringLiteral("media servers are asked without a user name. Leave it out");
    if (!isPlain || address.size() > longestAddress
        || !(place.hasMatch() || ipv6.match(address).hasMatch())) {
        return QStringLiteral("write a host name or IP, host:port, or the URL of a description");
    }
    const QString port = place.captured(1);
    return port.isEmpty() || (port.toInt() > 0 && port.toInt() <= 65535)
        ? QString()
        : QStringLiteral("ports go from 1 to 65535");
}

} // namespace

void KeptAddresses::check(const QString &address)
{
    const QString why = whatIsWrong(address);
    if (!why.isEmpty())
        throw wrongUsage(
            QStringLiteral("%1 is no address of a media server: %2.").arg(quoted(address), why));
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
    if (read().contains(address))
        return false;
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
