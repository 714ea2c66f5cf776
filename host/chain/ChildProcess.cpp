#include "chain/ChildProcess.h"

#include <QCoreApplication>

#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

ChildProcess::ChildProcess(Kind kind, QObject *parent)
    : QProcess(parent)
    , m_kind(kind)
    , m_parent(QCoreApplication::applicationPid())
{
}

ChildProcess::~ChildProcess()
{
    stop();
}

void ChildProcess::stop(int grace)
{
    if (state() == NotRunning)
        return;
    terminate();
    if (!waitForFinished(grace)) {
        kill();
        waitForFinished(grace);
    }
}

void ChildProcess::setupChildProcess()
{
    // Runs in the new process, before the program: only system calls.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != pid_t(m_parent))
        _exit(1); // we were gone before the line above
    if (m_kind == Service)
        setpgid(0, 0);
    if (m_inherited >= 0)
        fcntl(m_inherited, F_SETFD, 0);
    if (m_outputToStderr)
        dup2(STDERR_FILENO, STDOUT_FILENO);
}
