#pragma once

#include <QProcess>

#include <csignal>
#include <sys/prctl.h>

/// A process that ends with the test process, however that ends.
class ChildProcess : public QProcess
{
public:
    ~ChildProcess() override
    {
        kill();
        waitForFinished();
    }
    /// Starts it and waits for a line on standard output, 10 seconds at most; empty where none
    /// came.
    QString startAndReadLine(const QString &program, const QStringList &arguments)
    {
        start(program, arguments);
        while (!canReadLine() && waitForReadyRead(10000)) {
        }
        return QString::fromLocal8Bit(readLine()).trimmed();
    }

protected:
    void setupChildProcess() override { prctl(PR_SET_PDEATHSIG, SIGKILL); }
};
