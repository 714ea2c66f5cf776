#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>

/// The built program, started on a bus of the test with the test's worker.
class OrkaRun
{
public:
    /// Starts it with these arguments, after those that name the bus and the worker.
    OrkaRun(const QString &busAddress, const QStringList &arguments);

    /// Waits for its end; -1 when it doesn't come in 20 s, 128 and the signal for a crash.
    int status();
    /// What it has printed, without waiting for more than is needed to get `lines` lines.
    QByteArray waitForLines(int lines);
    QByteArray output();
    QByteArray errors();
    QJsonObject json();
    QProcess &process() { return m_process; }

private:
    QProcess m_process;
    QByteArray m_output;
    QByteArray m_errors;
};
