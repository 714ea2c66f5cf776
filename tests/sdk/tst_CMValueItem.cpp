#include <api/core/CMValueItem.h>
#include <api/core/orka.h>

#include <QSignalSpy>
#include <QTest>

class tst_CMValueItem : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { CMValueStore::setValue(OrkaNetworkInfoPath(), OrkaValue()); }
    void announcesWhatIsThereAndChangesInOrder();
    void anItemThatWentHearsNothing();
};

namespace {
void publish(const QString &text)
{
    OrkaValue value;
    value.setString_(text);
    CMValueStore::setValue(OrkaNetworkInfoPath(), value);
}

/// What an item heard in one turn of the event loop, as "before>now".
struct Listener
{
    explicit Listener(const CMPath &path = OrkaNetworkInfoPath())
        : item(nullptr, path)
    {
    }
    QString heard()
    {
        QStringList changes{QString::number(spy.count())}; // told from the event loop only
        QCoreApplication::processEvents();
        for (const QList<QVariant> &change : qAsConst(spy))
            changes.append(change.at(1).value<OrkaValue>().string_() + ">"
                + change.at(0).value<OrkaValue>().string_());
        spy.clear();
        return changes.join(' ');
    }

    CMValueItem item;
    QSignalSpy spy{&item, &CMValueItem::changed};
};
} // namespace

void tst_CMValueItem::announcesWhatIsThereAndChangesInOrder()
{
    publish("a");
    Listener listener, elsewhere(CMPath("system", "other"));
    QCOMPARE(listener.heard(), "0 >a");
    for (const char *value : {"a", "b", "b", "a"})
        publish(value);
    CMValueStore::setValue(OrkaNetworkInfoPath(), OrkaValue());
    QVERIFY(CMValueStore::value(OrkaNetworkInfoPath()).isEmpty());
    QCOMPARE(listener.heard(), "0 a>b b>a a>");
    QCOMPARE(Listener().heard() + elsewhere.heard(), "00");
}

void tst_CMValueItem::anItemThatWentHearsNothing()
{
    auto gone = std::make_unique<CMValueItem>(nullptr, OrkaNetworkInfoPath());
    bool heard = false;
    connect(gone.get(), &CMValueItem::changed, this, [&heard] { heard = true; });
    Listener stays;
    publish("a");
    gone.reset();
    publish("b");
    QCOMPARE(stays.heard(), "0 >a a>b");
    QVERIFY(!heard);
}

QTEST_GUILESS_MAIN(tst_CMValueItem)
#include "tst_CMValueItem.moc"
