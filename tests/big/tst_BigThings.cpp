#include "PluginFixture.h"
#include "Table.h"

/// Things of a size that no household has, and that a device must live through.
class tst_BigThings : public QObject
{
    Q_OBJECT

private slots:
    void walksAHundredThousandObjects_data();
    void walksAHundredThousandObjects();
};

void tst_BigThings::walksAHundredThousandObjects_data()
{
    columns<bool>("nested");
    // Side by side, so that twelve listings of ten thousand rows are on their way at once.
    row("flat", false);
    row("nested", true);
}

void tst_BigThings::walksAHundredThousandObjects()
{
    QFETCH(bool, nested);
    constexpr int containers = 12;
    constexpr int tracks = 9990;
    FolderFixture w;
    w.log.setLevel(log4cplus::WARN_LOG_LEVEL);
    QString parent = w.folder;
    for (int i = 0; i < containers; ++i) {
        const QByteArray id = QByteArray::number(i) + '-';
        const QString container = w.tree.addContainer(parent, id, "Folder");
        for (int track = 0; track < tracks; ++track)
            w.tree.addTrack(container, id + QByteArray::number(track), "Track");
        if (nested)
            parent = container;
    }
    w.start();
    const auto items = w.askPrepare({"/uuid:1/31?itemType=container"});
    // Listings of megabytes are longer on their way than settle() waits.
    while (items.announcements() == 0)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCOMPARE(items.value().toList().size(), containers * tracks);
    QCOMPARE(w.settled(w.askData("/uuid:1")).outcome(), "value");
}

QTEST_GUILESS_MAIN(tst_BigThings)
#include "tst_BigThings.moc"
