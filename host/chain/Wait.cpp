#include "chain/Wait.h"

#include "Interrupt.h"
#include "output/Progress.h"

#include <QTimer>

namespace {
constexpr int lookEvery = 10; // milliseconds
} // namespace

Wait::Wait(std::chrono::milliseconds limit, const QString &doing)
    : m_limit(limit)
    , m_doing(doing)
{
    if (Interrupt::instance() != nullptr)
        connect(Interrupt::instance(), &Interrupt::requested, this, &Wait::wake);
}

bool Wait::until(const std::function<bool()> &done)
{
    bool expired = m_limit.count() <= 0;
    QTimer limit;
    limit.setSingleShot(true);
    limit.setTimerType(Qt::PreciseTimer);
    connect(&limit, &QTimer::timeout, this, [this, &expired] {
        expired = true;
        wake();
    });
    limit.start(m_limit);
    const Progress progress(m_doing);

    for (;;) {
        m_woken = false; // before done(), which may run the loop itself
        if (done())
            return true;
        if (Interrupt::received() != 0)
            throw InterruptedBySignal{Interrupt::received()};
        if (expired)
            return false;
        if (!m_woken)
            m_loop.exec();
    }
}

bool Wait::poll(const std::function<bool()> &done)
{
    QTimer look;
    connect(&look, &QTimer::timeout, this, &Wait::wake);
    look.start(lookEvery);
    return until(done);
}

void Wait::wake()
{
    m_woken = true;
    m_loop.quit();
}

void Wait::pass()
{
    until([] { return false; });
}
