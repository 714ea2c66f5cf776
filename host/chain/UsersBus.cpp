#include "chain/UsersBus.h"

#include "Failure.h"
#include "Text.h"
#include "chain/RuntimeFolder.h"
#include "output/SafeText.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

/// Free of the numbers that the bridge and the bus begin with.
constexpr int leastDescriptor = 10;

int openLock(const QString &path)
{
    const int file =
        open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    const int lock = file < 0 ? -1 : fcntl(file, F_DUPFD_CLOEXEC, leastDescriptor);
    const int error = errno;
    if (file >= 0)
        close(file);
    if (lock < 0) {
        throw missing(QStringLiteral("noBus"),
            Text::tr("The file %1 can't be used: %2. Remove it, or do without with --linger "
                     "0.")
                .arg(quoted(path), QString::fromLocal8Bit(std::strerror(error))));
    }
    return lock;
}

/// A program of ours, or the bus that one starts.
bool isOurs(const QString &processFolder)
{
    const QString program =
        QFileInfo(QFile::symLinkTarget(processFolder + QStringLiteral("exe"))).fileName();
    return program.startsWith(QLatin1String("orka"))
        || program.startsWith(QLatin1String("dbus-daemon"));
}

/// As it stands in a bus's address.
QString escaped(const QString &path)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(path, "/", "~"));
}

} // namespace

UsersBus::UsersBus()
{
    const QString folder = RuntimeFolder::make();
    m_socket = folder + QStringLiteral("/bus");
    m_address = QStringLiteral("unix:path=") + escaped(m_socket);
    m_lockFile = folder + QStringLiteral("/lock");
    if (QFile::encodeName(m_socket).size() >= int(sizeof(sockaddr_un::sun_path))) {
        throw missing(QStringLiteral("noBus"),
            Text::tr("The name %1 is too long for a socket. Name a shorter folder in "
                     "XDG_RUNTIME_DIR, or do without with --linger 0.")
                .arg(quoted(m_socket)));
    }
    struct stat found = {};
    if (lstat(QFile::encodeName(m_socket).constData(), &found) == 0 && !S_ISSOCK(found.st_mode)) {
        throw missing(QStringLiteral("noBus"),
            Text::tr("The media service can't be kept, since its bus belongs at %1 and "
                     "something else is there. Remove that, or do without with --linger 0.")
                .arg(quoted(m_socket)));
    }
    m_lock = openLock(m_lockFile);
}

UsersBus::~UsersBus()
{
    close(m_lock);
}

bool UsersBus::take()
{
    return flock(m_lock, LOCK_EX | LOCK_NB) == 0;
}

/// The kernel's list of locks names whoever took one, and not those that inherited it.
QVector<pid_t> UsersBus::holders() const
{
    QVector<pid_t> found;
    const QString self = QString::number(getpid());
    QDir processes(QStringLiteral("/proc"));
    for (const QString &process : processes.entryList({QStringLiteral("[1-9]*")}, QDir::Dirs)) {
        const QString folder = QStringLiteral("/proc/%1/").arg(process);
        QDirIterator files(folder + QStringLiteral("fd"), QDir::Files | QDir::System);
        while (process != self && isOurs(folder) && files.hasNext()) {
            if (QFile::symLinkTarget(files.next()) != m_lockFile)
                continue;
            QFile info(folder + QStringLiteral("fdinfo/") + files.fileName());
            if (info.open(QIODevice::ReadOnly) && info.readAll().contains("lock:")) {
                found.append(process.toInt());
                break;
            }
        }
    }
    return found;
}

Failure UsersBus::blocked() const
{
    QStringList numbers;
    for (const pid_t process : holders())
        numbers.append(QString::number(process));
    return missing(QStringLiteral("noMediaService"),
        numbers.isEmpty() ? Text::tr(
            "The media service could not be started: a program that isn't ours holds the file %1. "
            "End that, or do without with --linger 0.")
                                .arg(quoted(m_lockFile))
                          : Text::tr("The media service could not be started: an earlier one "
                                     "neither answers nor ends "
                                     "(process %1). \"orka stop\" ends it.")
                                .arg(numbers.join(QStringLiteral(", "))));
}

bool UsersBus::isListening() const
{
    const QByteArray path = QFile::encodeName(m_socket);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (size_t(path.size()) >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, path.constData(), size_t(path.size()));
    const int probe = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const bool taken =
        connect(probe, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    close(probe);
    return taken;
}
