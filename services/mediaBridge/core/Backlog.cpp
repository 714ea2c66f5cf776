#include "core/Backlog.h"

#include "core/Later.h"
#include "core/Limits.h"

namespace bridge {

Backlog &Backlog::instance()
{
    // Answers that are let go at the program's end come here.
    static auto &only = *new Backlog;
    return only;
}

void Backlog::receive(const std::string &whose, std::function<void(Seat)> goOn)
{
    m_waiting.push(whose, std::move(goOn));
    serve();
}

void Backlog::serve()
{
    while (m_bytes <= limits::backlogBytes && m_receiving < limits::longAnswersAtOnce
        && !m_waiting.isEmpty()) {
        ++m_receiving;
        const Seat seat(this, [this](void *) {
            --m_receiving;
            serve();
        });
        later([goOn = m_waiting.pop(), seat] { goOn(seat); });
    }
}

std::shared_ptr<void> Backlog::hold(size_t bytes, std::shared_ptr<void> with)
{
    m_bytes += bytes;
    return {nullptr, [this, bytes, with = std::move(with)](void *) {
                m_bytes -= bytes;
                serve();
            }};
}

} // namespace bridge
