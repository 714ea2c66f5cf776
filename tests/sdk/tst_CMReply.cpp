#include "LogProbe.h"

#include <api/core/CMRequest.h>

#include <QSignalSpy>
#include <QTest>

class tst_CMReply : public QObject
{
    Q_OBJECT

private slots:
    void tellsFromTheEventLoopOnce();
    void tellsAWatcherThatComesLate();
    void keepsAValueBesideAnError();
    void aSecondAnswerOfAKindIsDroppedWithAWarning();
    void aWatcherMayGo();
};

namespace {
/// A watcher and what it has told.
struct Watch
{
    explicit Watch(const CMVoidReply &reply)
        : watcher(reply)
    {
    }
    CMReplyWatcherObject watcher;
    QSignalSpy told{&watcher, &CMReplyWatcherObject::finishedSignal};
};
} // namespace

void tst_CMReply::tellsFromTheEventLoopOnce()
{
    CMReply<OrkaRowsRoles> reply;
    const Watch first(reply), second(reply);
    QVERIFY(!reply.isFinished());
    QVERIFY(!reply.error().isError());

    OrkaRowsRoles answer;
    answer.setRowsCount(5);
    reply.setValue(answer);
    QVERIFY(reply.isFinished());
    QCOMPARE(first.told.count(), 0);
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    QCOMPARE(first.told.count(), 1);
    QCOMPARE(second.told.count(), 1);
    const auto told = first.told.first().first().value<CMVoidReply>();
    QVERIFY(told == reply);
    QCOMPARE(CMReplyData<OrkaRowsRoles>(told).value().rowsCount(), 5);
}

void tst_CMReply::tellsAWatcherThatComesLate()
{
    CMReply<QVariant> reply;
    reply.setError(CMError(TrString("gone")));
    const Watch late(reply);
    QCOMPARE(late.told.count(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(late.told.count(), 1);
    QCOMPARE(reply.error().message().toString(), "gone");
    QCOMPARE(reply.error().name(), CMError::DefaultName());
}

void tst_CMReply::keepsAValueBesideAnError()
{
    const LogProbe log(log4cplus::WARN_LOG_LEVEL);
    CMReply<QVariantList> reply;
    const Watch watch(reply);
    reply.setError(CMError()); // without a name, and an error all the same
    reply.setValue({1, 2});
    QCoreApplication::processEvents();
    QCOMPARE(watch.told.count(), 1);
    QVERIFY(reply.error().isError());
    QCOMPARE(reply.value(), (QVariantList{1, 2}));
    QCOMPARE(log.lines(), QStringList());
}

void tst_CMReply::aSecondAnswerOfAKindIsDroppedWithAWarning()
{
    const LogProbe log(log4cplus::WARN_LOG_LEVEL);
    CMReply<QVariant> reply;
    reply.setValue(1);
    reply.setValue(2);
    QCOMPARE(reply.value(), QVariant(1));
    reply.setError(createErrorInternal("a"));
    reply.setError(createErrorInternal("b"));
    QCOMPARE(reply.error().message().toString(), "a");
    QCOMPARE(log.lines().size(), 2);
    QCOMPARE(log.lines("WARN CM: ").size(), 2);
}

void tst_CMReply::aWatcherMayGo()
{
    CMReply<QVariant> reply;
    auto *const watcher = new CMReplyWatcherObject(reply);
    auto brief = std::make_unique<CMReplyWatcherObject>(reply);
    bool told = false;
    connect(watcher, &CMReplyWatcherObject::finishedSignal, this, [&](const CMVoidReply &finished) {
        delete watcher;
        told = finished.isFinished();
    });
    brief.reset();
    reply.setValue(1);
    QCoreApplication::processEvents();
    QVERIFY(told);
}

QTEST_GUILESS_MAIN(tst_CMReply)
#include "tst_CMReply.moc"
