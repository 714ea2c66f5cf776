#include "Failure.h"
#include "PluginLoader.h"

#include <QTemporaryDir>
#include <QtTest>

/// Every way in which a plug-in can fail to load has a sentence that names the file.
class tst_PluginLoader : public QObject
{
    Q_OBJECT

private slots:
    void brokenPluginsAreNamed_data();
    void brokenPluginsAreNamed();
    void workersGetTheirPrefix();

private:
    QTemporaryDir m_folder;
};

void tst_PluginLoader::brokenPluginsAreNamed_data()
{
    QFile text(m_folder.filePath(QStringLiteral("text.so")));
    QVERIFY(text.open(QIODevice::WriteOnly));
    text.write("not a library");
    QFile::copy(QStringLiteral(TEST_WORKER), m_folder.filePath(QStringLiteral("cut.so")));
    QVERIFY(QFile::resize(m_folder.filePath(QStringLiteral("cut.so")), 4000));

    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("said");
    QTest::newRow("missing") << m_folder.filePath(QStringLiteral("none.so"))
                             << "There is no plug-in";
    QTest::newRow("folder") << m_folder.path() << "is no file";
    QTest::newRow("text") << text.fileName() << "can't be loaded";
    QTest::newRow("cut off") << m_folder.filePath(QStringLiteral("cut.so")) << "cut off";
    QTest::newRow("no entry") << QStringLiteral(NO_ENTRY) << "doesn't export worker_create";
    QTest::newRow("null") << QStringLiteral(NULL_ENTRY) << "gave no worker";
}

void tst_PluginLoader::brokenPluginsAreNamed()
{
    QFETCH(QString, file);
    QFETCH(QString, said);
    Options options;
    options.plugin = file;
    try {
        loadWorker(options);
        QFAIL("a worker was made");
    } catch (const Failure &failure) {
        QCOMPARE(failure.status(), int(Missing));
        QVERIFY2(failure.sentence().contains(said), qPrintable(failure.sentence()));
        QVERIFY2(failure.sentence().contains(file), qPrintable(failure.sentence()));
    }
}

void tst_PluginLoader::workersGetTheirPrefix()
{
    Options options;
    options.plugin = QStringLiteral(TEST_WORKER);
    options.prefix = QStringLiteral("shelf");
    QCOMPARE(loadWorker(options)->prefix(), QStringLiteral("shelf"));
    QCOMPARE(loadWorker(options)->prefix(), QStringLiteral("shelf")); // a second time, too
}

QTEST_GUILESS_MAIN(tst_PluginLoader)
#include "tst_PluginLoader.moc"
