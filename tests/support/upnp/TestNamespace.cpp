#include "TestNamespace.h"

#include <QFile>
#include <QProcess>

#include <cerrno>
#include <cstring>
#include <sched.h>
#include <unistd.h>

namespace {

bool writeFile(const char *name, const QByteArray &text)
{
    QFile file(QString::fromLatin1(name));
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
        && file.write(text) == text.size();
}

/// Root in a user namespace is this user outside.
bool becomeNamespaceRoot(uid_t user, gid_t group)
{
    return writeFile("/proc/self/setgroups", "deny")
        && writeFile("/proc/self/uid_map", "0 " + QByteArray::number(user) + " 1")
        && writeFile("/proc/self/gid_map", "0 " + QByteArray::number(group) + " 1");
}

/// Runs one command of ip(8) a line.
QString ip(const QString &lines)
{
    QProcess process;
    process.start("ip", {"-batch", "-"});
    if (!process.waitForStarted())
        return "The program ip (package iproute2) can't be started: " + process.errorString();
    process.write(lines.toUtf8());
    process.closeWriteChannel();
    process.waitForFinished();
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0
        ? QString()
        : QString::fromUtf8(process.readAllStandardError());
}

QString addressLine(const QString &interface, const QString &address)
{
    const bool v6 = address.contains(':');
    return "address add %1 dev %2%3\n"_s.arg(address, interface, v6 ? " nodad" : QString());
}

} // namespace

QString enterTestNamespace()
{
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if (user != 0 || unshare(CLONE_NEWNET) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0 || !becomeNamespaceRoot(user, group))
            return "No network namespace may be made here (%1): run this test as root, or "
                   "allow user namespaces."_s.arg(QString::fromLocal8Bit(strerror(errno)));
    }
    return ip("link set lo up\n");
}

QString addTestInterface(const QString &name, const QStringList &addresses)
{
    QString lines = "link add %1 type veth peer name %1-peer\n"_s.arg(name);
    for (const QString &address : addresses)
        lines += addressLine(name, address);
    lines += "link set %1 up\nlink set %1-peer up\n"_s.arg(name);
    return ip(lines);
}

QString addTestAddress(const QString &interface, const QString &address)
{
    return ip(addressLine(interface, address));
}

void removeTestInterface(const QString &name)
{
    ip("link delete %1\n"_s.arg(name));
}

QString enterTestLan()
{
    const QString why = enterTestNamespace();
    return why.isEmpty() ? addTestInterface("lan0", {"10.77.0.1/24"}) : why;
}
