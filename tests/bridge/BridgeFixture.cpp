#include "BridgeFixture.h"

#include "ScriptedUpnpServer.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QEventLoop>
#include <QFile>
#include <QTest>
#include <QTimer>

#include <csignal>
#include <sys/prctl.h>

const QString serviceName = "com.intel.dleyna-server";
const QString managerPath = "/com/intel/dLeynaServer";
const QString managerInterface = "com.intel.dLeynaServer.Manager";
const QString bridgeInterface = "org.orka.MediaBridge1";
const QString deviceInterface = "com.intel.dLeynaServer.MediaDevice";
const QString objectInterface = "org.gnome.UPnP.MediaObject2";
const QString containerInterface = "org.gnome.UPnP.MediaContainer2";
const QString itemInterface = "org.gnome.UPnP.MediaItem2";
const QString propertiesInterface = "org.freedesktop.DBus.Properties";

namespace {

constexpr int callTimeout = 30000, startTimeout = 10000;

QVariant plain(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<QDBusVariant>())
        return plain(value.value<QDBusVariant>().variant());
    if (value.userType() == qMetaTypeId<QDBusObjectPath>())
        return value.value<QDBusObjectPath>().path();
    return value;
}

QVariantMap plain(QVariantMap map)
{
    for (QVariant &value : map)
        value = plain(value);
    return map;
}

} // namespace

QVector<QVariantMap> Answer::rows() const
{
    QVector<QVariantMap> list;
    for (const QVariantMap &row : qdbus_cast<QList<QVariantMap>>(value()))
        list.append(plain(row));
    return list;
}

QVariantMap Answer::map() const
{
    return plain(qdbus_cast<QVariantMap>(value()));
}

Call::Call(const QDBusPendingCall &pending)
    : m_pending(pending)
{
    m_since.start();
}

Answer Call::wait()
{
    QEventLoop loop;
    QDBusPendingCallWatcher watcher(m_pending);
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(callTimeout, &loop, &QEventLoop::quit);
    if (!m_pending.isFinished())
        loop.exec();
    Answer answer;
    answer.milliseconds = m_since.elapsed();
    if (!m_pending.isFinished()) {
        answer.error = "no answer";
        return answer;
    }
    const QDBusMessage reply = m_pending.reply();
    if (reply.type() == QDBusMessage::ErrorMessage) {
        answer.error = reply.errorName();
        answer.message = reply.errorMessage();
        return answer;
    }
    for (const QVariant &value : reply.arguments())
        answer.values.append(plain(value));
    return answer;
}

ChildProcess::~ChildProcess()
{
    if (state() == NotRunning)
        return;
    kill();
    waitForFinished();
}

void ChildProcess::setupChildProcess()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

QString ChildProcess::startAndReadLine(const QString &program, const QStringList &arguments)
{
    start(program, arguments);
    while (!canReadLine() && waitForReadyRead(startTimeout)) {
    }
    return QString::fromLocal8Bit(readLine()).trimmed();
}

BridgeFixture::BridgeFixture(Start start, const QStringList &options)
    : m_bus(QString())
{
    m_address = m_daemon.startAndReadLine("dbus-daemon",
        {"--nofork", "--nosyslog", "--print-address",
            "--config-file=" + busConfiguration(start, options)});
    m_bus = QDBusConnection::connectToBus(m_address, m_address);
    if (!m_bus.isConnected())
        qFatal("The test's own dbus-daemon did not start; the package dbus brings it.");
    m_bus.connect(serviceName, managerPath, managerInterface, "FoundServer", this,
        SLOT(onFound(QDBusObjectPath)));
    m_bus.connect(serviceName, managerPath, managerInterface, "LostServer", this,
        SLOT(onLost(QDBusObjectPath)));
    if (start == Activated)
        return;
    m_program.start(BRIDGE_PROGRAM, QStringList{"--bus", m_address} + options);
    // Else a program that owns its name at once would still count as starting when it is to end.
    m_program.waitForStarted();
    const auto owned = [this] {
        return bool(m_bus.interface()->isServiceRegistered(serviceName));
    };
    if (!QTest::qWaitFor(owned, startTimeout))
        qFatal("The bridge did not start: %s", log().constData());
}

BridgeFixture::~BridgeFixture()
{
    const int status = m_stopped ? 0 : stop();
    if (status != 0) {
        qWarning("The bridge ended with %d: %s", status, log().constData());
        QTest::qFail("The bridge ended with another status than 0.", __FILE__, __LINE__);
    }
    QDBusConnection::disconnectFromBus(m_address);
}

int BridgeFixture::stop()
{
    m_stopped = true;
    if (m_program.state() == QProcess::Running)
        m_program.terminate();
    const bool ended = m_program.state() == QProcess::NotRunning || m_program.waitForFinished(5000);
    return ended && m_program.exitStatus() == QProcess::NormalExit ? m_program.exitCode() : -1;
}

/// A configuration that can activate nothing, or nothing but the bridge.
QString BridgeFixture::busConfiguration(Start start, const QStringList &options)
{
    if (start == Running)
        return PRIVATE_BUS_CONF;
    const auto write = [this](const QString &name, const QString &text) {
        QFile file(m_folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
            qFatal("%s can't be written: %s", qPrintable(file.fileName()),
                qPrintable(file.errorString()));
        return file.fileName();
    };
    write("bridge.service",
        "[D-BUS Service]\nName=%1\nExec=%2\n"_s.arg(
            serviceName, (QStringList{BRIDGE_PROGRAM} + options).join(' ')));
    return write("bus.conf",
        "<busconfig><include>%1</include><servicedir>%2</servicedir></busconfig>"_s.arg(
            PRIVATE_BUS_CONF, m_folder.path()));
}

qint64 BridgeFixture::pid()
{
    return m_bus.interface()->servicePid(serviceName).value();
}

QByteArray BridgeFixture::log()
{
    return m_program.readAllStandardError() + m_daemon.readAllStandardError();
}

Call BridgeFixture::start(const QString &path, const QString &interface, const QString &method,
    const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(serviceName, path, interface, method);
    message.setArguments(arguments);
    return Call(m_bus.asyncCall(message));
}

Answer BridgeFixture::call(const QString &path, const QString &interface, const QString &method,
    const QVariantList &arguments)
{
    return start(path, interface, method, arguments).wait();
}

Answer BridgeFixture::get(const QString &path, const QString &interface, const QString &property)
{
    return call(path, propertiesInterface, "Get", {interface, property});
}

Answer BridgeFixture::getAll(const QString &path, const QString &interface)
{
    return call(path, propertiesInterface, "GetAll", {interface});
}

Call BridgeFixture::startListing(
    const QString &path, uint offset, uint max, const QStringList &filter)
{
    return start(path, containerInterface, "ListChildren", {offset, max, filter});
}

Answer BridgeFixture::list(const QString &path, uint offset, uint max, const QStringList &filter)
{
    return startListing(path, offset, max, filter).wait();
}

Answer BridgeFixture::search(const QString &path, const QString &query, uint offset, uint max,
    const QStringList &filter, const QString &sort)
{
    return call(path, containerInterface, "SearchObjectsEx", {query, offset, max, filter, sort});
}

QStringList BridgeFixture::servers()
{
    const Answer answer = call(managerPath, managerInterface, "GetServers");
    QStringList paths;
    for (const QDBusObjectPath &path : qdbus_cast<QList<QDBusObjectPath>>(answer.value()))
        paths.append(path.path());
    return paths;
}

QString BridgeFixture::add(ScriptedUpnpServer &server)
{
    const QString why = server.start();
    if (!why.isEmpty())
        qWarning("%s", qPrintable(why));
    return waitForServer(server.udn());
}

QString BridgeFixture::waitForServer(const QString &udn)
{
    const QString path = serverPath(udn);
    return QTest::qWaitFor([this, &path] { return m_found.contains(path); }, startTimeout)
        ? path
        : QString();
}

void BridgeFixture::forgetSignals()
{
    m_found.clear();
    m_lost.clear();
}

QString newUdn()
{
    static int count = 0;
    return "uuid:5c217ed0-0000-0000-0000-%1"_s.arg(++count, 12, 16, QLatin1Char('0'));
}

QString serverPath(const QString &udn)
{
    QString path = managerPath + "/server/";
    for (const char byte : udn.toUtf8()) {
        const bool plainByte = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z')
            || (byte >= 'a' && byte <= 'z');
        path += plainByte ? QString(QLatin1Char(byte))
                          : '_' + QString::fromLatin1(QByteArray(1, byte).toHex());
    }
    return path;
}

QString objectPath(const QString &udn, const QString &objectId)
{
    return serverPath(udn) + '/' + QString::fromLatin1(objectId.toUtf8().toHex());
}
