#include "LogProbe.h"
#include "ReplyProbe.h"

#include <api/core/CMNodesWorker.h>
#include <api/core/CMRoot.h>
#include <api/core/CMSyncWorker.h>
#include <api/core/orka.h>

#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <sys/wait.h>

struct Unregistered;

class Sender : public QObject
{
    Q_OBJECT

signals:
    void foreign(const Unregistered &value);
};

/// A request's way through the root to a worker or its nodes, and the answer's way back.
class tst_requests : public QObject
{
    Q_OBJECT

private slots:
    void aReplyTellsItsFirstAnswerOnce();
    void nodesAnswerTheirOwnPathAndTellOfChanges();
    void rowsAreRemovedByPath();
    void theRootRoutesByPrefixAndForgetsWhatWent();
    void stopsTheProgramOverWhatCannotTravel();
};

namespace {
/// A worker with one list node, at its root, that has these rows.
struct Shelf : CMNodesWorker
{
    explicit Shelf(const QString &prefix, const QStringList &paths = {})
        : CMNodesWorker({{Prefix_(), prefix}}, QString())
    {
        node->setTitle(TrString(prefix));
        for (const QString &path : paths) {
            OrkaRoles row;
            row.setPath(CMPath::fromEncoded(path));
            node->rowsAppend(row);
        }
    }
    QString rows(const QString &base = QString(), int first = 0, int last = 9)
    {
        CMReply<OrkaRowsRoles> reply;
        getRows(addPrefix(base), first, last, -1, {"path"}, reply);
        return reply.error().isError() ? "error" : orkaToJson(reply.value().rows());
    }

    CMListRowsNode *node = CMListRowsNode::create(nodes(), addPrefix(QString()));
};

/// The title of a worker's root, or the error.
QString askRoot(const QString &prefix)
{
    const CMReply<QVariantList> reply;
    CMRoot()->getData(CMPath(prefix, ""), {"title"}, reply);
    QCoreApplication::processEvents();
    const CMError error = reply.error();
    return error.isError() ? error.message().toString() : reply.value().first().toString();
}
} // namespace

void tst_requests::aReplyTellsItsFirstAnswerOnce()
{
    const LogProbe log(log4cplus::WARN_LOG_LEVEL);
    const ReplyProbe<QVariant> probe;
    CMReply<QVariant> reply = probe.reply();
    std::make_unique<CMReplyWatcherObject>(reply).reset();
    reply.setError(CMError()); // without a name, and an error all the same
    reply.setValue(2);
    QCOMPARE(probe.announcements(), 0);
    CMReplyWatcherObject late(reply);
    QSignalSpy told(&late, &CMReplyWatcherObject::finishedSignal);
    QCoreApplication::processEvents();
    QCOMPARE(probe.announcements() + told.count(), 2);
    QVERIFY(reply.error().isError());
    QCOMPARE(log.lines(), QStringList());
    reply.setError(createErrorInternal("b"));
    reply.setValue(3);
    QCOMPARE(reply.value(), QVariant(2));
    QVERIFY(reply.error().message().toString() != "b");
    QCOMPARE(log.lines("WARN CM: ").size(), 2);
}

void tst_requests::nodesAnswerTheirOwnPathAndTellOfChanges()
{
    Shelf shelf("u", {"u:/1", "u:/2"});
    QSignalSpy spy(&shelf, &CMAbstractWorker::rowsChanged);
    shelf.node->rowsRemoveStartingWithPath(CMPath("u", "/b"));
    shelf.node->rowsRemoveStartingWithPath(CMPath("u", "/1"));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.last().at(1).toInt(), 3);
    constexpr int min = std::numeric_limits<int>::min(), max = std::numeric_limits<int>::max();
    QCOMPARE(shelf.rows("", min, max), R"([["u:/2"]])");
    QCOMPARE(shelf.rows("", 0, 0), R"([["u:/2"]])");
    QCOMPARE(shelf.rows("", 1, 1), "error"); // asked for one row, and there is none
    QCOMPARE(shelf.rows("", 1, 0) + shelf.rows("", 9, 10), "[][]");
    QCOMPARE(shelf.rows("/2"), "error");
}

void tst_requests::rowsAreRemovedByPath()
{
    const auto left = [](const char *removed) {
        Shelf shelf("u", {"u:/uuid:1?a=b", "u:/uuid:1/64", "u:/uuid:10", "v:/uuid:1"});
        shelf.node->rowsRemoveStartingWithPath(CMPath::fromEncoded(removed));
        return shelf.rows();
    };
    QCOMPARE(left("u:/uuid:1"), R"([["u:/uuid:10"],["v:/uuid:1"]])");
    QCOMPARE(left("u:/uuid:1?a=b"), R"([["u:/uuid:1/64"],["u:/uuid:10"],["v:/uuid:1"]])");
    QCOMPARE(left("u:/uuid:1?a="), left("u:/uuid:"));
    QCOMPARE(left("u:"), R"([["v:/uuid:1"]])");
}

void tst_requests::theRootRoutesByPrefixAndForgetsWhatWent()
{
    Shelf b("b"), second("b");
    auto *const inner = new Shelf("a");
    auto a = std::make_unique<CMSyncWorker>(inner);
    QVERIFY(CMRoot()->mount(a.get()) && CMRoot()->mount(&b));
    QVERIFY(!CMRoot()->mount(&second));
    CMRoot()->unmount(&second);
    QCOMPARE(askRoot("a") + askRoot("b"), "ab");
    QVERIFY(askRoot("c").contains("\"c\""));

    QSignalSpy changes(CMRoot(), &CMAbstractWorker::rowsChanged);
    inner->node->rowsAppend(OrkaRoles());
    QCOMPARE(changes.count(), 1);

    const QPointer<QObject> worker = inner;
    const CMReply<QVariantList> onItsWay;
    CMRoot()->getData(CMPath("a", ""), {"title"}, onItsWay);
    QVERIFY(!onItsWay.isFinished());
    a.reset();
    QVERIFY(!worker);
    QVERIFY(onItsWay.error().message().toString().contains("gone"));
    QVERIFY(askRoot("a").contains("\"a\""));
}

void tst_requests::stopsTheProgramOverWhatCannotTravel()
{
    const auto aborts = [](const auto &fault) {
        const pid_t child = fork();
        if (child == 0) {
            std::signal(SIGABRT, SIG_DFL);
            fault();
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT;
    };
    Sender a, b;
    const char *const foreign = SIGNAL(foreign(Unregistered));
    const auto connect = [&](Qt::ConnectionType type) {
        orkaConnect(&a, foreign, &b, SLOT(deleteLater()), type);
    };
    QVERIFY(!aborts([&] { connect(Qt::AutoConnection); }));
    QVERIFY(aborts([&] { connect(Qt::QueuedConnection); }));
    QVERIFY(aborts([&] { orkaConnect(&a, foreign, &b, SLOT(nothing())); }));
    QVERIFY(aborts([] { CMReplyData<QVariant>().setValue(1); }));
}

QTEST_GUILESS_MAIN(tst_requests)
#include "tst_requests.moc"
