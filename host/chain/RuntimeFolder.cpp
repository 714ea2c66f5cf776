#include "chain/RuntimeFolder.h"

#include "Failure.h"
#include "Text.h"
#include "output/SafeText.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QString path()
{
    const QString given = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return given.startsWith(QLatin1Char('/')) && QFileInfo(given).isDir()
        ? given + QStringLiteral("/orka")
        : QStringLiteral("/tmp/orka-%1").arg(getuid());
}

/// Why the folder can't be trusted; empty where it can.
QString problemOf(const QByteArray &folder)
{
    struct stat found = {};
    if (lstat(folder.constData(), &found) != 0)
        return QString::fromLocal8Bit(std::strerror(errno));
    if (!S_ISDIR(found.st_mode))
        return Text::tr("it is no folder");
    if (found.st_uid != getuid())
        return Text::tr("it belongs to another user");
    return (found.st_mode & 077) != 0 ? Text::tr("other users may use it") : QString();
}

} // namespace

QString RuntimeFolder::make()
{
    const QString folder = path();
    const QByteArray name = QFile::encodeName(folder);
    const bool isMade = mkdir(name.constData(), 0700) == 0 || errno == EEXIST;
    const QString problem = isMade ? problemOf(name) : QString::fromLocal8Bit(std::strerror(errno));
    if (!problem.isEmpty()) {
        throw missing(QStringLiteral("noBus"),
            (isMade ? Text::tr("The media service can't be kept in %1: %2. Remove that, or set "
                               "XDG_RUNTIME_DIR to "
                               "a folder of your own, or do without with --linger 0.")
                    : Text::tr("The media service can't be kept in %1: %2. Set XDG_RUNTIME_DIR to "
                               "a folder of "
                               "your own, or do without with --linger 0."))
                .arg(quoted(folder), problem));
    }
    return folder;
}
