#include <QCoreApplication>
#include <QDBusConnection>
#include <QTimer>

/// Stands in for the bridge: takes its name on the bus that it is told and does nothing, until the
/// idle time is over, if it has one. Ends at once where ORKA_TEST_FAIL is set.
int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    if (qEnvironmentVariableIsSet("ORKA_TEST_FAIL")) {
        qCritical("no network card");
        return 3;
    }
    QDBusConnection bus = QDBusConnection::connectToBus(
        QCoreApplication::arguments().value(2), QStringLiteral("bridge"));
    if (!bus.registerService(QStringLiteral("com.intel.dleyna-server")))
        return 3;
    const int idle = QCoreApplication::arguments().value(4, QStringLiteral("300")).toInt();
    QTimer::singleShot(idle * 1000, [] { QCoreApplication::exit(1); }); // never left behind
    bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
        QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
        QCoreApplication::instance(), SLOT(quit()));
    return QCoreApplication::exec();
}
