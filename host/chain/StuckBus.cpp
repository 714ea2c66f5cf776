#include "chain/StuckBus.h"

#include "Interrupt.h"
#include "Text.h"
#include "chain/Wait.h"

#include <future>
#include <thread>

StuckBus::StuckBus(const QString &bus)
    : Failure(NoAnswer, QStringLiteral("noAnswer"),
        Text::tr("Nothing can be asked: %1 takes the connection but doesn't answer. End it "
                 "(\"orka stop\" ends a private bus of ours), or name another with --bus.")
            .arg(bus))
{
}

void inTimeOnBus(
    const QString &bus, std::chrono::milliseconds limit, const std::function<void()> &task)
{
    std::packaged_task<void()> packaged(task);
    const std::future<void> done = packaged.get_future();
    std::thread(std::move(packaged)).detach();
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (done.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready) {
        if (Interrupt::received() != 0)
            throw InterruptedBySignal{Interrupt::received()};
        if (std::chrono::steady_clock::now() > deadline)
            throw StuckBus(bus);
    }
}
