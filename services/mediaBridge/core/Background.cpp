#include "core/Background.h"

#include "core/Later.h"
#include "core/Limits.h"
#include "core/TurnQueue.h"

#include <condition_variable>
#include <deque>
#include <glib.h>
#include <memory>
#include <mutex>
#include <thread>

namespace bridge::background {

namespace {

struct Piece
{
    std::string whose;
    std::function<void()> work;
    std::function<void()> then;
};

class Worker
{
public:
    ~Worker() { stop(); }

    void add(std::unique_ptr<Piece> piece)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_thread.joinable())
            m_thread = std::thread([this] { run(); });
        const std::string whose = piece->whose;
        m_pieces.push(whose, std::move(piece));
        m_changed.notify_one();
    }
    void stop()
    {
        TurnQueue<std::unique_ptr<Piece>> dropped;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_isEnding = true;
            std::swap(dropped, m_pieces);
            m_changed.notify_one();
        }
        if (m_thread.joinable())
            m_thread.join();
    }

private:
    void run()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        for (;;) {
            m_changed.wait(lock, [this] { return m_isEnding || !m_pieces.isEmpty(); });
            if (m_isEnding)
                return;
            std::unique_ptr<Piece> piece = m_pieces.pop();
            lock.unlock();
            piece->work();
            lock.lock();
            m_done.push_back(std::move(piece));
            g_idle_add_full(G_PRIORITY_DEFAULT, &Worker::giveBack, this, nullptr);
        }
    }

    /// Lets `then` run in the main loop, where the piece also ends.
    static gboolean giveBack(gpointer self)
    {
        const std::shared_ptr<Piece> piece = static_cast<Worker *>(self)->takeDone();
        later([piece] { piece->then(); }, piece->whose);
        return G_SOURCE_REMOVE;
    }
    std::unique_ptr<Piece> takeDone()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::unique_ptr<Piece> piece = std::move(m_done.front());
        m_done.pop_front();
        return piece;
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    TurnQueue<std::unique_ptr<Piece>> m_pieces;
    /// One for each call of `giveBack` to come.
    std::deque<std::unique_ptr<Piece>> m_done;
    bool m_isEnding = false;
    std::thread m_thread;
};

Worker &worker()
{
    static Worker only;
    return only;
}

} // namespace

void run(const std::string &whose, std::function<void()> work, std::function<void()> then)
{
    worker().add(std::make_unique<Piece>(Piece{whose, std::move(work), std::move(then)}));
}

void read(
    const std::string &whose, size_t bytes, std::function<void()> work, std::function<void()> then)
{
    if (bytes > limits::documentAtOnce) {
        run(whose, std::move(work), std::move(then));
        return;
    }
    soon(
        [work = std::move(work), then = std::move(then)] {
            work();
            then();
        },
        whose);
}

void stop()
{
    worker().stop();
}

} // namespace bridge::background
