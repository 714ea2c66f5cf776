#include "OrkaRun.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>

OrkaRun::OrkaRun(
    const QString &busAddress, const QStringList &arguments, const QProcessEnvironment &environment)
{
    QStringList all;
    if (!busAddress.isEmpty()) {
        all << "--bus" << busAddress << "--media-service"
            << "session";
    }
    all << "--plugin" << TEST_WORKER << arguments;
    m_process.setProcessEnvironment(environment);
    m_process.start(ORKA, all);
    m_process.waitForStarted();
}

int OrkaRun::status()
{
    // In the event loop, from which a service of the test's own answers.
    const QDeadlineTimer deadline(20000);
    while (m_process.state() != QProcess::NotRunning && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
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
    QElapsedTimer clock;
    clock.start();
    while (m_output.count('\n') < lines && clock.elapsed() < 10000) {
        m_process.waitForReadyRead(100);
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
