#include <QCoreApplication>
#include <QDBusConnection>
#include <QTimer>

/// Stands in for the bridge: takes its name on the bus that it is told and does nothing. Ends at
/// once where ORKA_TEST_FAIL is set.
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
    QTimer::singleShot(300000, [] { QCoreApplication::exit(1); }); // never left behind
    return QCoreApplication::exec();
}
