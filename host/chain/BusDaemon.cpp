#include "chain/BusDaemon.h"

#include "Failure.h"
#include "Text.h"
#include "chain/Installation.h"
#include "chain/Wait.h"
#include "output/SafeText.h"

#include <QStandardPaths>

namespace {

constexpr std::chrono::seconds startLimit(10);

Failure noBus(const QString &why)
{
    return missing(QStringLiteral("noBus"),
        Text::tr("There is no session bus, and no bus could be started instead: %1 Install "
                 "the package dbus-daemon, or name a bus with --bus ADDRESS.")
            .arg(why));
}

} // namespace

QStringList BusDaemon::commandLine()
{
    const QString program = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
    if (program.isEmpty())
        throw noBus(Text::tr("there is no program dbus-daemon."));
    return {program, QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
        QStringLiteral("--config-file=%1").arg(Installation::privateBusConfiguration())};
}

BusDaemon::BusDaemon()
    : m_process(ChildProcess::Service)
{
    QStringList arguments = commandLine() << QStringLiteral("--print-address");
    const QString program = arguments.takeFirst();
    Wait wait(startLimit, Text::tr("Starting a message bus"));
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &wait, &Wait::wake);
    QObject::connect(&m_process, &QProcess::stateChanged, &wait, &Wait::wake);
    m_process.start(program, arguments);
    wait.until(
        [this] { return m_process.canReadLine() || m_process.state() == QProcess::NotRunning; });
    m_address = QString::fromUtf8(m_process.readLine()).trimmed();
    if (m_address.isEmpty()) {
        const QString said = QString::fromUtf8(m_process.readAllStandardError()).trimmed();
        throw noBus(Text::tr("dbus-daemon said %1.").arg(quoted(said)));
    }
}
