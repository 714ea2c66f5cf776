#include "chain/BridgeProcess.h"

#include "KnownSentences.h"
#include "Text.h"
#include "chain/Bus.h"
#include "chain/BusDaemon.h"
#include "chain/Installation.h"
#include "chain/ServiceStarter.h"
#include "chain/UsersBus.h"
#include "chain/Wait.h"
#include "output/SafeText.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <csignal>
#include <sys/stat.h>

namespace {

/// A bridge of an older program takes no longer to end.
constexpr std::chrono::milliseconds endLimit(3'000);
/// Of two installed programs that are used at once, neither ends what the other has just started.
constexpr std::chrono::milliseconds leastAge(3'000);

/// In a lasting bridge's environment, before what identifies its program file.
const QByteArray markName = QByteArrayLiteral("ORKA_BRIDGE_FILE=");

QString programOf(const GlobalOptions &options)
{
    return options.bridge.isEmpty() ? Installation::bridge() : options.bridge;
}

/// Changes when the file is replaced.
QByteArray markOf(const QString &program)
{
    struct stat file = {};
    if (stat(QFile::encodeName(program).constData(), &file) != 0)
        return QByteArray();
    QByteArray mark = markName;
    for (const long long number : {static_cast<long long>(file.st_dev),
             static_cast<long long>(file.st_ino), static_cast<long long>(file.st_mtim.tv_sec)})
        mark += QByteArray::number(number) + ' ';
    return mark;
}

/// Empty where the process has none, or isn't this user's.
QByteArray markOf(uint process)
{
    QFile environment(QStringLiteral("/proc/%1/environ").arg(process));
    if (!environment.open(QIODevice::ReadOnly))
        return QByteArray();
    for (const QByteArray &entry : environment.readAll().split('\0')) {
        if (entry.startsWith(markName))
            return entry;
    }
    return QByteArray();
}

bool canBeRun(const QString &program)
{
    return QFileInfo(program).isFile() && QFileInfo(program).isExecutable();
}

bool isOutdated(uint process, const GlobalOptions &options)
{
    const QByteArray running = markOf(process);
    const QString program = programOf(options);
    return !running.isEmpty() && canBeRun(program) && running != markOf(program);
}

/// Without what the bus says at each start where it may not open more files; it does without.
QString reasonIn(const QByteArray &said)
{
    QStringList lines = QString::fromUtf8(said).split(QLatin1Char('\n'));
    lines = lines.filter(QRegularExpression(QStringLiteral("^(?!.*Failed to set fd limit)")));
    for (QString &line : lines)
        line = translatedSentence(line.remove(QStringLiteral("orka-media-bridge: ")));
    return lines.join(QLatin1Char('\n')).trimmed();
}

} // namespace

BridgeProcess::BridgeProcess(const GlobalOptions &options)
    : m_options(options)
    , m_program(programOf(options))
{
}

BridgeProcess::~BridgeProcess()
{
    if (m_child) {
        m_child->disconnect(this);
        m_child->stop();
    }
}

void BridgeProcess::requireProgram() const
{
    if (m_program.isEmpty()) {
        throw missing(QStringLiteral("noMediaService"),
            Text::tr("There is no media service, and orka-media-bridge is neither installed "
                     "nor on PATH. Install it, or name it with --bridge."));
    }
    if (!canBeRun(m_program)) {
        throw missing(QStringLiteral("noMediaService"),
            Text::tr("The media service %1 could not be started: no program that you may run is "
                     "there. Name another with --bridge.")
                .arg(quoted(m_program)));
    }
}

QStringList BridgeProcess::arguments(const QString &bus) const
{
    QStringList arguments{QStringLiteral("--bus"), bus};
    if (m_options.verbosity > 0)
        arguments << (m_options.verbosity == 1 ? QStringLiteral("-v") : QStringLiteral("-vv"));
    return arguments;
}

void BridgeProcess::start(const QString &bus, bool lasts)
{
    requireProgram();
    if (lasts) {
        LastingProcess::Plan plan;
        plan.arguments = arguments(bus);
        startLasting(plan);
        return;
    }
    m_child = std::make_unique<ChildProcess>(ChildProcess::Service);
    m_child->setStandardOutputFile(QProcess::nullDevice());
    if (m_options.verbosity > 0)
        m_child->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(m_child.get(), &QProcess::stateChanged, this, [this] {
        if (hasEnded())
            emit ended();
    });
    m_child->start(m_program, arguments(bus));
}

void BridgeProcess::startWith(const UsersBus &bus)
{
    requireProgram();
    LastingProcess::Plan plan;
    plan.arguments = arguments(bus.address());
    plan.bus = BusDaemon::commandLine() << QStringLiteral("--address=%1").arg(bus.address());
    plan.inherited = bus.lock();
    startLasting(plan);
}

void BridgeProcess::startLasting(LastingProcess::Plan plan)
{
    QStringList cache;
    if (plan.inherited >= 0) { // else it knows where by itself
        cache << QStringLiteral("--cache")
              << QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)
                + QStringLiteral("/orka-media-bridge/servers");
    }
    const auto seconds = (m_options.linger + std::chrono::milliseconds(999)).count() / 1000;
    plan.program = m_program;
    plan.arguments << QStringLiteral("--idle-exit") << QString::number(seconds) << cache;
    plan.variable = markOf(m_program);
    m_lasting = std::make_unique<LastingProcess>(plan);
    connect(m_lasting.get(), &LastingProcess::ended, this, &BridgeProcess::ended);
}

bool BridgeProcess::hasEnded() const
{
    return m_child ? m_child->state() == QProcess::NotRunning : !m_lasting || m_lasting->hasEnded();
}

void BridgeProcess::isStarted()
{
    if (m_lasting)
        m_lasting->letGo();
}

void BridgeProcess::fail(const QString &why) const
{
    QString reason = hasEnded() ? Text::tr("it ended") : why;
    if (m_child && hasEnded()) {
        reason = m_child->error() == QProcess::FailedToStart
            ? m_child->errorString()
            : Text::tr("it ended with status %1").arg(m_child->exitCode());
    }
    const QByteArray bytes = m_child ? m_child->readAllStandardError() : m_lasting->said();
    const QString said = reasonIn(bytes);
    const QString sentence = (said.isEmpty()
            ? Text::tr("The media service %1 could not be started: %2. Try it by hand with "
                       "--help, or name another with --bridge.")
            : Text::tr("The media service %1 could not be started: %2 and said %3. Try it by "
                       "hand with --help, or name another with --bridge."))
                                 .arg(quoted(m_program), reason, quoted(said));
    if (hasEnded() && said.isEmpty())
        throw serviceLeft(sentence);
    throw missing(QStringLiteral("noMediaService"), sentence);
}

bool BridgeProcess::isLasting(uint process)
{
    return !markOf(process).isEmpty();
}

bool BridgeProcess::endedOutdated(const Bus &bus, const GlobalOptions &options)
{
    const QString service = ServiceStarter::busName();
    const QString owner = bus.owner(service);
    const uint process = bus.processOf(owner);
    if (!options.mayStartService || !isOutdated(process, options) || bus.ageOf(owner) < leastAge
        || kill(pid_t(process), SIGTERM) != 0)
        return false;
    const auto hasLeft = [&] {
        return bus.owner(service) != owner;
    };
    if (!Wait(endLimit).poll(hasLeft) && kill(pid_t(process), SIGKILL) == 0)
        Wait(endLimit).poll(hasLeft);
    return true;
}
