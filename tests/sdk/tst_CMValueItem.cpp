#include <api/core/CMValueItem.h>
#include <api/core/orka.h>

#include <QSignalSpy>
#include <QTest>

class tst_CMValueItem : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { CMValueStore::setValue(OrkaNetworkInfoPath(), OrkaValue()); }
    void announcesWhatIsThere();
    void announcesChangesInOrder();
    void staysSilentWhereNothingChanges();
    void anItemThatWentHearsNothing();
};

namespace {
OrkaValue text(const QString &string)
{
    OrkaValue value;
    value.setString_(string);
    return value;
}

QString change(const QList<QVariant> &arguments)
{
    return arguments.at(1).value<OrkaValue>().string_() + ">"
        + arguments.at(0).value<OrkaValue>().string_();
}
} // namespace

void tst_CMValueItem::announcesWhatIsThere()
{
    CMValueStore::setValue(OrkaNetworkInfoPath(), text("a"));
    const CMValueItem item(nullptr, OrkaNetworkInfoPath());
    QSignalSpy spy(&item, &CMValueItem::changed);
    QCOMPARE(spy.count(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(change(spy.first()), QStringLiteral(">a"));
}

void tst_CMValueItem::announcesChangesInOrder()
{
    const CMValueItem item(nullptr, OrkaNetworkInfoPath());
    QSignalSpy spy(&item, &CMValueItem::changed);
    for (const char *value : {"a", "b", "a"})
        CMValueStore::setValue(OrkaNetworkInfoPath(), text(value));
    CMValueStore::setValue(OrkaNetworkInfoPath(), OrkaValue());
    QCOMPARE(spy.count(), 0);
    QCoreApplication::processEvents();
    QStringList changes;
    for (const QList<QVariant> &arguments : qAsConst(spy))
        changes.append(change(arguments));
    QCOMPARE(changes, (QStringList{">a", "a>b", "b>a", "a>"}));
    QVERIFY(CMValueStore::value(OrkaNetworkInfoPath()).isEmpty());
}

void tst_CMValueItem::staysSilentWhereNothingChanges()
{
    CMValueStore::setValue(OrkaNetworkInfoPath(), text("a"));
    const CMValueItem item(nullptr, OrkaNetworkInfoPath());
    const CMValueItem elsewhere(nullptr, CMPath("system", "other"));
    QCoreApplication::processEvents();
    QSignalSpy spy(&item, &CMValueItem::changed);
    QSignalSpy elsewhereSpy(&elsewhere, &CMValueItem::changed);
    CMValueStore::setValue(OrkaNetworkInfoPath(), text("a"));
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 0);
    CMValueStore::setValue(OrkaNetworkInfoPath(), text("b"));
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(elsewhereSpy.count(), 0);
}

void tst_CMValueItem::anItemThatWentHearsNothing()
{
    auto gone = std::make_unique<CMValueItem>(nullptr, OrkaNetworkInfoPath());
    bool heard = false;
    connect(gone.get(), &CMValueItem::changed, this, [&heard] { heard = true; });
    const CMValueItem stays(nullptr, OrkaNetworkInfoPath());
    QSignalSpy spy(&stays, &CMValueItem::changed);
    CMValueStore::setValue(OrkaNetworkInfoPath(), text("a"));
    gone.reset();
    CMValueStore::setValue(OrkaNetworkInfoPath(), text("b"));
    QCoreApplication::processEvents();
    QVERIFY(!heard);
    QCOMPARE(spy.count(), 2);
}

QTEST_GUILESS_MAIN(tst_CMValueItem)
#include "tst_CMValueItem.moc"
