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

bool Backlog::isFull() const
{
    return m_bytes > limits::backlogBytes;
}

void Backlog::wait(const std::string &whose, std::function<void()> goOn)
{
    m_waiting.push(whose, std::move(goOn));
}

std::shared_ptr<void> Backlog::hold(size_t bytes, std::shared_ptr<void> with)
{
    m_bytes += bytes;
    return {nullptr, [this, bytes, with = std::move(with)](void *) {
                release(bytes);
            }};
}

void Backlog::release(size_t bytes)
{
    m_bytes -= bytes;
    while (!isFull() && !m_waiting.isEmpty())
        later(m_waiting.pop());
}

} // namespace bridge
