#include "OrkaRun.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace {

/// Of the event loop, from which a service of the test's own answers.
void turn()
{
    QEventLoop loop;
    QTimer::singleShot(5, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

OrkaRun::OrkaRun(const QString &busAddress, const QStringList &arguments)
{
    m_process.start(
        ORKA, QStringList{"--bus", busAddress, "--media-service", "session"} + arguments);
    m_process.waitForStarted();
}

int OrkaRun::status()
{
    const QDeadlineTimer deadline(20000);
    while (m_process.state() != QProcess::NotRunning && !deadline.hasExpired())
        turn();
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished();
        return -1;
    }
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode()
                                                          : 128 + m_process.exitCode();
}

QByteArray OrkaRun::waitForLines(int lines)
{
    const QDeadlineTimer deadline(10000);
    while (m_output.count('\n') < lines && !deadline.hasExpired()) {
        turn();
        m_output += m_process.readAllStandardOutput();
    }
    return m_output;
}

QByteArray OrkaRun::output()
{
    status();
    return m_output += m_process.readAllStandardOutput();
}

QByteArray OrkaRun::errors()
{
    status();
    return m_errors += m_process.readAllStandardError();
}

QJsonObject OrkaRun::json()
{
    return QJsonDocument::fromJson(output()).object();
}
