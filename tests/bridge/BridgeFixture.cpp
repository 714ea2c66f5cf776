#include "BridgeFixture.h"

#include "ScriptedUpnpServer.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QEventLoop>
#include <QFile>
#include <QTest>
#include <QTimer>

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

} // namespace

QVector<QVariantMap> Answer::rows() const
{
    QVector<QVariantMap> list;
    for (QVariantMap row : qdbus_cast<QList<QVariantMap>>(value())) {
        for (QVariant &value : row)
            value = plain(value);
        list.append(row);
    }
    return list;
}

Call::Call(const QDBusPendingCall &pending)
    : m_pending(pending)
{
    m_since.start();
}

QDBusMessage Call::reply()
{
    QEventLoop loop;
    QDBusPendingCallWatcher watcher(m_pending);
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(callTimeout, &loop, &QEventLoop::quit);
    if (!m_pending.isFinished())
        loop.exec();
    return m_pending.isFinished() ? m_pending.reply() : QDBusMessage();
}

Answer Call::wait()
{
    const QDBusMessage answer = reply();
    if (answer.type() != QDBusMessage::ReplyMessage) {
        const bool came = answer.type() == QDBusMessage::ErrorMessage;
        return {
            {}, came ? answer.errorName() : "no answer", answer.errorMessage(), m_since.elapsed()};
    }
    QVariantList values;
    for (const QVariant &value : answer.arguments())
        values.append(plain(value));
    return {values, {}, {}, m_since.elapsed()};
}

BridgeFixture::BridgeFixture(Start start, const QStringList &options)
    : m_daemon(busConfiguration(start, options))
    , m_bus(m_daemon.open(address()))
{
    m_bus.connect(names::service, names::managerPath, names::manager, "FoundServer", this,
        SLOT(onFound(QDBusObjectPath)));
    m_bus.connect(names::service, names::managerPath, names::manager, "LostServer", this,
        SLOT(onLost(QDBusObjectPath)));
    if (start == Activated)
        return;
    m_program.start(BRIDGE_PROGRAM, QStringList{"--bus", address()} + options);
    // Else a program that owns its name at once would still count as starting when it is to end.
    m_program.waitForStarted();
    const auto owned = [this] {
        return bool(m_bus.interface()->isServiceRegistered(names::service));
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
    PrivateBus::close(address());
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
QString BridgeFixture::busConfiguration(Start start, const QStringList &options) const
{
    if (start == Running)
        return PrivateBus::sessionLimits;
    const auto write = [this](const QString &name, const QString &text) {
        QFile file(m_folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
            qFatal("%s can't be written.", qPrintable(file.fileName()));
        return file.fileName();
    };
    write("bridge.service",
        "[D-BUS Service]\nName=%1\nExec=%2\n"_s.arg(
            names::service, (QStringList{BRIDGE_PROGRAM} + options).join(' ')));
    return write("bus.conf",
        "<busconfig><include>%1</include><servicedir>%2</servicedir></busconfig>"_s.arg(
            PrivateBus::sessionLimits, m_folder.path()));
}

qint64 BridgeFixture::pid()
{
    return m_bus.interface()->servicePid(names::service).value();
}

Call BridgeFixture::start(const QString &path, const QString &interface, const QString &method,
    const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(names::service, path, interface, method);
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
    return call(path, names::properties, "Get", {interface, property});
}

Call BridgeFixture::startListing(
    const QString &path, uint offset, uint max, const QStringList &filter)
{
    return start(path, names::container, "ListChildren", {offset, max, filter});
}

Answer BridgeFixture::list(const QString &path, uint offset, uint max, const QStringList &filter)
{
    return startListing(path, offset, max, filter).wait();
}

Answer BridgeFixture::search(
    const QString &path, const QString &query, uint offset, uint max, const QStringList &filter)
{
    return call(path, names::container, "SearchObjectsEx", {query, offset, max, filter, ""});
}

QStringList BridgeFixture::servers()
{
    const Answer answer = call(names::managerPath, names::manager, "GetServers");
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
