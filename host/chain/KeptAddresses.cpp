#include "chain/KeptAddresses.h"

#include "Failure.h"
#include "output/SafeText.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>

namespace {

constexpr int longestAddress = 1000;
constexpr int longestFile = 1'000'000;

QString filePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/orka/servers");
}

QStringList readLines()
{
    QFile file(filePath());
    if (!file.exists())
        return {};
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) {
        throw wrongUsage(QStringLiteral("The addresses in %1 can't be read. Give yourself the "
                                        "right to read it, or remove it.")
                             .arg(quoted(file.fileName())));
    }
    QStringList lines = QString::fromUtf8(file.read(longestFile)).split(QLatin1Char('\n'));
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

void writeLines(const QStringList &lines)
{
    QDir().mkpath(QFileInfo(filePath()).path());
    QSaveFile file(filePath());
    const QByteArray text = lines.isEmpty()
        ? QByteArray()
        : (lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
    // Asked to flush, it says that the disk is full; commit() alone doesn't.
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush()
        || !file.commit()) {
        throw Failure(AnsweredWithError, QStringLiteral("notKept"),
            QStringLiteral("The addresses in %1 can't be written: %2.")
                .arg(quoted(file.fileName()), safeText(file.errorString())));
    }
}

bool isAddress(const QString &line)
{
    return !line.trimmed().isEmpty() && !line.trimmed().startsWith(QLatin1Char('#'));
}

} // namespace

void KeptAddresses::check(const QString &address)
{
    static const QRegularExpression hostAndPort(
        QStringLiteral("^(\\w[\\w.-]*|\\[[0-9a-f:.]+(%(25)?[\\w.-]+)?\\])(:\\d{1,5})?$"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
    static const QRegularExpression ipv6(
        QStringLiteral("^[0-9a-f.]*:[0-9a-f.]*:[0-9a-f:.]*(%[\\w.-]+)?$"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression url(QStringLiteral("^http://([^/?\\s]+)([/?][^\\s]*)?$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch parts = url.match(address);
    const QString host = parts.hasMatch() ? parts.captured(1) : address;
    const bool isPlain = std::none_of(address.begin(), address.end(),
        [](QChar c) { return c.category() == QChar::Other_Control; });
    if (!isPlain || address.size() > longestAddress
        || !(hostAndPort.match(host).hasMatch() || ipv6.match(address).hasMatch())) {
        throw wrongUsage(QStringLiteral("%1 is no address of a media server. Write a host name or "
                                        "IP, host:port, or the URL of a description.")
                             .arg(quoted(address)));
    }
}

QStringList KeptAddresses::read()
{
    QStringList addresses;
    for (const QString &line : readLines()) {
        if (isAddress(line) && !addresses.contains(line.trimmed()))
            addresses.append(line.trimmed());
    }
    return addresses;
}

bool KeptAddresses::add(const QString &address)
{
    if (read().contains(address))
        return false;
    writeLines(readLines() << address);
    return true;
}

bool KeptAddresses::forget(const QString &address)
{
    QStringList lines = readLines();
    const auto others = std::remove_if(lines.begin(), lines.end(),
        [&](const QString &line) { return isAddress(line) && line.trimmed() == address; });
    if (others == lines.end())
        return false;
    lines.erase(others, lines.end());
    writeLines(lines);
    return true;
}
