#include "Processes.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/prctl.h>

void Child::setupChildProcess()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

Child::~Child()
{
    kill();
    waitForFinished();
}

QString Child::startAndReadLine(const QString &program, const QStringList &arguments)
{
    start(program, arguments);
    while (!canReadLine() && waitForReadyRead(10000)) {
    }
    const QString line = QString::fromLatin1(readLine()).trimmed();
    if (line.isEmpty()) {
        std::fprintf(
            stderr, "%s did not start: %s.\n", qPrintable(program), qPrintable(errorString()));
        std::exit(3);
    }
    return line;
}

FastBus::FastBus(int servers)
{
    // It complains that it may not raise its file limit, which doesn't matter here.
    m_daemon.setStandardErrorFile(QProcess::nullDevice());
    m_service.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_address = m_daemon.startAndReadLine(QStringLiteral("dbus-daemon"),
        {QStringLiteral("--nofork"), QStringLiteral("--nosyslog"),
            QStringLiteral("--print-address"), QStringLiteral("--config-file=" BENCH_BUS_CONF)});
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toLatin1());
    m_service.startAndReadLine(QStringLiteral(BENCH_FAST_SERVICE), {QString::number(servers)});
}

void FastBus::setAnswering(bool isAnswering) const
{
    ::kill(pid_t(m_service.processId()), isAnswering ? SIGCONT : SIGSTOP);
}
