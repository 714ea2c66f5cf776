#include "LogProbe.h"

#include <api/core/CMRequest.h>

#include <QSignalSpy>
#include <QTest>

#include <atomic>
#include <thread>

class tst_CMReply : public QObject
{
    Q_OBJECT

private slots:
    void tellsFromTheEventLoopOnce();
    void tellsAWatcherThatComesLate();
    void keepsAValueBesideAnError();
    void aSecondAnswerOfAKindIsDroppedWithAWarning();
    void anErrorWithoutANameIsStillAnError();
    void aSlotMayDeleteTheWatcher();
    void watchersGoWhileAnotherThreadAnswers();
    void countsHandles();
};

namespace {
OrkaRowsRoles rowsAnswer(int count)
{
    OrkaRowsRoles answer;
    answer.setRowsCount(count);
    return answer;
}
} // namespace

void tst_CMReply::tellsFromTheEventLoopOnce()
{
    CMReply<OrkaRowsRoles> reply;
    const CMReplyWatcherObject first(reply), second(reply);
    QSignalSpy firstSpy(&first, &CMReplyWatcherObject::finishedSignal);
    QSignalSpy secondSpy(&second, &CMReplyWatcherObject::finishedSignal);
    QVERIFY(!reply.isFinished());
    QVERIFY(!reply.error().isError());
    QVERIFY(reply.error().name().isEmpty());

    reply.setValue(rowsAnswer(5));
    QVERIFY(reply.isFinished());
    QCOMPARE(firstSpy.count(), 0);
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    QCOMPARE(firstSpy.count(), 1);
    QCOMPARE(secondSpy.count(), 1);
    const auto told = firstSpy.first().first().value<CMVoidReply>();
    QVERIFY(told == reply);
    QCOMPARE(CMReplyData<OrkaRowsRoles>(told).value().rowsCount(), 5);
}

void tst_CMReply::tellsAWatcherThatComesLate()
{
    CMReply<QVariant> reply;
    reply.setError(CMError(TrString("gone")));
    const CMReplyWatcherObject watcher(reply);
    QSignalSpy spy(&watcher, &CMReplyWatcherObject::finishedSignal);
    QCOMPARE(spy.count(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(reply.error().message().toString(), QStringLiteral("gone"));
    QCOMPARE(reply.error().name(), CMError::DefaultName());
}

void tst_CMReply::keepsAValueBesideAnError()
{
    const LogProbe log(log4cplus::WARN_LOG_LEVEL);
    CMReply<QVariantList> reply;
    const CMReplyWatcherObject watcher(reply);
    QSignalSpy spy(&watcher, &CMReplyWatcherObject::finishedSignal);
    reply.setError(createErrorInternal("first"));
    reply.setValue({1, 2});
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(reply.error().message().toString(), QStringLiteral("first"));
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
    QCOMPARE(log.lines().size(), 1);
    QVERIFY2(log.lines().first().startsWith("WARN CM: "), qPrintable(log.lines().first()));

    reply.setError(createErrorInternal("a"));
    reply.setError(createErrorInternal("b"));
    QCOMPARE(reply.error().message().toString(), QStringLiteral("a"));
    QCOMPARE(log.lines().size(), 2);
}

void tst_CMReply::anErrorWithoutANameIsStillAnError()
{
    CMReply<QVariant> reply;
    reply.setError(CMError());
    QVERIFY(reply.isFinished());
    QVERIFY(reply.error().isError());
}

void tst_CMReply::aSlotMayDeleteTheWatcher()
{
    CMReply<QVariant> reply;
    auto *const watcher = new CMReplyWatcherObject(reply);
    bool told = false;
    connect(watcher, &CMReplyWatcherObject::finishedSignal, this, [&](const CMVoidReply &finished) {
        delete watcher;
        told = finished.isFinished();
    });
    reply.setValue(1);
    QCoreApplication::processEvents();
    QVERIFY(told);
}

void tst_CMReply::watchersGoWhileAnotherThreadAnswers()
{
    for (int round = 0; round < 2000; ++round) {
        CMReply<QVariant> reply;
        std::atomic<bool> go{false};
        auto kept = std::make_unique<CMReplyWatcherObject>(reply);
        auto dropped = std::make_unique<CMReplyWatcherObject>(reply);
        QSignalSpy spy(kept.get(), &CMReplyWatcherObject::finishedSignal);
        std::thread answerer([reply, &go]() mutable {
            while (!go)
                std::this_thread::yield();
            reply.setValue(1);
        });
        go = true;
        dropped.reset();
        answerer.join();
        QCoreApplication::processEvents();
        QCOMPARE(spy.count(), 1);
    }
}

void tst_CMReply::countsHandles()
{
    CMReply<QVariant> reply;
    QCOMPARE(reply.handles(), 1L);
    {
        const CMSetDataRequest request(CMPath(), QVariant(), reply);
        QVERIFY(request.isValid());
        QCOMPARE(reply.handles(), 2L);
    }
    QCOMPARE(reply.handles(), 1L);
    QVERIFY(!CMSetDataRequest().isValid());
}

QTEST_GUILESS_MAIN(tst_CMReply)
#include "tst_CMReply.moc"
