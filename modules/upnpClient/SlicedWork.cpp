#include "SlicedWork.h"

namespace {

class SlicedLoop : public SlicedWork
{
public:
    SlicedLoop(
        QObject *parent, int count, std::function<void(int)> body, std::function<void()> done)
        : SlicedWork(parent)
        , m_count(count)
        , m_body(std::move(body))
        , m_done(std::move(done))
    {
    }

private:
    Next step() override
    {
        if (m_next == m_count) {
            m_done();
            return Next::End;
        }
        m_body(m_next++);
        return Next::Step;
    }

    int m_next = 0;
    int m_count;
    std::function<void(int)> m_body;
    std::function<void()> m_done;
};

} // namespace

void SlicedWork::runSlice()
{
    for (int done = 0; done < stepsPerTurn; ++done) {
        const Next next = step();
        if (next == Next::End)
            deleteLater();
        if (next != Next::Step)
            return;
    }
    QMetaObject::invokeMethod(
        this, [this] { runSlice(); }, Qt::QueuedConnection);
}

void loopInSlices(
    QObject *parent, int count, std::function<void(int)> body, std::function<void()> done)
{
    (new SlicedLoop(parent, count, std::move(body), std::move(done)))->start();
}
