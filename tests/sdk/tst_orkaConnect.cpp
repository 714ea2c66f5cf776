#include "Table.h"

#include <api/core/CMWorker.h>
#include <api/core/orka.h>

#include <QProcess>
#include <QThread>

struct Unregistered
{};

class Sender : public QObject
{
    Q_OBJECT

signals:
    void plain(int number);
    void pointer(Unregistered *value);
    void foreign(const Unregistered &value);
    void path(const CMPath &path, int version);
};

class Receiver : public QObject
{
    Q_OBJECT

public:
    QStringList heard;

public slots:
    void onPlain(int) { heard.append("plain"); }
    void onPointer(Unregistered *) {}
    void onForeign(const Unregistered &) { heard.append("foreign"); }
    void onPath(const CMPath &, int) { heard.append("path"); }
};

class tst_orkaConnect : public QObject
{
    Q_OBJECT

private slots:
    void connectsWhatCanTravel();
    void stopsTheProgram_data();
    void stopsTheProgram();
};

/// One connection, chosen by name; run in a child process where it is meant to abort.
static void makeConnection(const QByteArray &kind)
{
    Sender sender;
    Receiver receiver;
    QThread thread;
    const auto connectForeign = [&](int type) {
        orkaConnect(&sender,
            SIGNAL(foreign(Unregistered)), &receiver,
                SLOT(onForeign(Unregistered)), Qt::ConnectionType(type));
    };
    if (kind == "otherThread") {
        receiver.moveToThread(&thread);
        connectForeign(Qt::AutoConnection);
    } else if (kind == "queued") {
        connectForeign(Qt::QueuedConnection);
    } else if (kind == "uniqueQueued") {
        connectForeign(Qt::QueuedConnection | Qt::UniqueConnection);
    } else if (kind == "noSuchSignal") {
        orkaConnect(&sender, SIGNAL(nothing()), &receiver, SLOT(onPlain(int)));
    } else if (kind == "noSuchSlot") {
        orkaConnect(&sender, SIGNAL(plain(int)), &receiver, SLOT(nothing()));
    } else if (kind == "nobody") {
        orkaConnect(nullptr, SIGNAL(plain(int)), &receiver, SLOT(onPlain(int)));
    } else if (kind == "invalidReply") {
        CMReplyData<QVariant>().setValue(1);
    }
}

void tst_orkaConnect::connectsWhatCanTravel()
{
    Sender sender;
    Receiver receiver, elsewhere;
    orkaConnect(&sender, SIGNAL(foreign(Unregistered)), &receiver, SLOT(onForeign(Unregistered)));
    orkaConnect(&sender, SIGNAL(plain(int)), &receiver, SLOT(onPlain(int)), Qt::QueuedConnection);
    orkaConnect(&sender,
        SIGNAL(path(CMPath, int)), &receiver, SLOT(onPath(CMPath, int)), Qt::QueuedConnection);
    emit sender.foreign(Unregistered());
    emit sender.plain(1);
    emit sender.path(CMPath("a", "b"), 2);
    QCOMPARE(receiver.heard, QStringList{"foreign"});
    QCoreApplication::processEvents();
    QCOMPARE(receiver.heard, (QStringList{"foreign", "plain", "path"}));

    QThread thread;
    elsewhere.moveToThread(&thread);
    QVERIFY(bool(orkaConnect(
        &sender, SIGNAL(pointer(Unregistered*)), &elsewhere, SLOT(onPointer(Unregistered*)))));
}

void tst_orkaConnect::stopsTheProgram_data()
{
    columns<QString>("assertion");
    for (const char *kind : {"otherThread", "queued", "uniqueQueued"})
        row(kind, "verifyConnectionSignalParameters(sender, signal, receiver, type)");
    for (const char *kind : {"noSuchSignal", "noSuchSlot", "nobody"})
        row(kind, "connection");
    row("invalidReply", "isValid()");
}

void tst_orkaConnect::stopsTheProgram()
{
    QFETCH(QString, assertion);
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {"--connect", QTest::currentDataTag()});
    QVERIFY(child.waitForFinished());
    QCOMPARE(child.exitStatus(), QProcess::CrashExit);
    const QString errors = QString::fromUtf8(child.readAllStandardError());
    QVERIFY2(
        errors.contains("ASSERT: \"" + assertion + "\" in file api/core/"), qPrintable(errors));
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "--connect") == 0) {
        makeConnection(argv[2]);
        return 0;
    }
    tst_orkaConnect test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_orkaConnect.moc"
