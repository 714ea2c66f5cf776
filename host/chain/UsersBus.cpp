#include "chain/UsersBus.h"

#include "Failure.h"
#include "chain/RuntimeFolder.h"
#include "output/SafeText.h"

#include <QFile>
#include <QUrl>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
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
            QStringLiteral("The file %1 can't be used: %2. Remove it, or do without with --linger "
                           "0.")
                .arg(quoted(path), QString::fromLocal8Bit(std::strerror(error))));
    }
    return lock;
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
    m_lock = openLock(folder + QStringLiteral("/lock"));
}

UsersBus::~UsersBus()
{
    close(m_lock);
}

bool UsersBus::take()
{
    return flock(m_lock, LOCK_EX | LOCK_NB) == 0;
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
