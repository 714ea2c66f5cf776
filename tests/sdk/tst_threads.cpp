// Replies, the value store and the root from plain C++ threads, for ThreadSanitizer.
#include <api/core/CMNodesWorker.h>
#include <api/core/CMRoot.h>
#include <api/core/CMSyncWorker.h>
#include <api/core/CMValueItem.h>

#include <QCoreApplication>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {
constexpr int rounds = 500;
constexpr int threadCount = 4;

void require(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "FAIL: %s\n", what);
    std::exit(1);
}

template<typename Work>
void inThreads(const Work &work)
{
    std::atomic<int> waiting{threadCount};
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&, t] {
            // All at once, or the first would be done before the last begins.
            for (--waiting; waiting > 0;)
                std::this_thread::yield();
            work(t);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
}

// Each thread answers once, with its number; all read meanwhile.
void oneAnswerWins()
{
    for (int round = 0; round < rounds; ++round) {
        CMReply<QVariant> reply;
        std::atomic<int> seen{-1};
        inThreads([&](int t) {
            CMReplyData<QVariant> handle(reply);
            handle.setValue(t);
            require(handle.isFinished(), "an answered reply is finished");
            const int value = handle.value().toInt();
            int expected = -1;
            require(seen.compare_exchange_strong(expected, value) || expected == value,
                "every thread reads the same value");
        });
        require(reply.value().toInt() == seen, "the value stays");
    }
}

void watchersComeAndGo()
{
    int told = 0;
    for (int round = 0; round < rounds; ++round) {
        CMReply<QVariant> reply;
        CMReplyWatcherObject kept(reply);
        QObject::connect(&kept, &CMReplyWatcherObject::finishedSignal, [&told] { ++told; });
        inThreads([&](int t) {
            if (t == 0)
                CMReplyData<QVariant>(reply).setValue(round);
            else
                CMReplyWatcherObject brief(reply);
        });
        QCoreApplication::processEvents();
    }
    require(told == rounds, "a watcher is told once");
}

void valuesTravel()
{
    const CMPath path("test", "value");
    inThreads([&path](int t) {
        for (int round = 0; round < rounds; ++round) {
            OrkaValue value;
            value.setString_(QString::number(t));
            CMValueStore::setValue(path, value);
            const CMValueItem item(nullptr, path);
            require(!CMValueStore::value(path).string_().isEmpty(), "a value is there");
        }
    });
}

[[maybe_unused]] void workersGoWhileThreadsAsk()
{
    for (int round = 0; round < rounds / 5; ++round) {
        auto sync = std::make_unique<CMSyncWorker>(new CMNodesWorker({}, "held"));
        require(CMRoot()->mount(sync.get()), "a prefix is free again");
        std::thread asker([] {
            QString error;
            while (!error.contains("gone") && !error.contains("mounted")) {
                const CMReply<QVariantList> reply;
                CMRoot()->getData(CMPath("held", "/x"), {"title"}, reply);
                error = reply.error().message().toString();
            }
        });
        QCoreApplication::processEvents();
        sync.reset();
        asker.join();
    }
}
} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    oneAnswerWins();
#ifndef __SANITIZE_THREAD__ // it can't see the locks inside Qt's event queue
    workersGoWhileThreadsAsk();
#endif
    watchersComeAndGo();
    valuesTravel();
    std::puts("PASS");
    return 0;
}
