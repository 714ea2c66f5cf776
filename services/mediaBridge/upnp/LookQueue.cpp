#include "upnp/LookQueue.h"

#include "core/Limits.h"

namespace bridge {

void LookQueue::wait(const std::string &host, std::weak_ptr<void> owner, Start start)
{
    m_waiting.remove_if([](const Waiting &waiting) { return waiting.owner.expired(); });
    if (m_hosts.size() > limits::hostsLookedAt)
        forgetIdleHosts();
    m_waiting.push_front({host, std::move(owner), std::move(start)});
    startWaiting();
}

void LookQueue::forgetIdleHosts()
{
    for (auto it = m_hosts.begin(); it != m_hosts.end();)
        it = it->second.underWay == 0 ? m_hosts.erase(it) : std::next(it);
}

std::list<LookQueue::Waiting>::iterator LookQueue::next()
{
    auto best = m_waiting.end();
    for (auto it = m_waiting.begin(); it != m_waiting.end(); ++it) {
        const Host &host = m_hosts[it->host];
        if (host.underWay >= limits::looksAtOneHost)
            continue;
        if (best == m_waiting.end() || host.started < m_hosts[best->host].started)
            best = it;
    }
    return best;
}

void LookQueue::startWaiting()
{
    if (m_isStarting)
        return;
    m_isStarting = true;
    while (m_underWay < limits::looks) {
        const auto it = next();
        if (it == m_waiting.end())
            break;
        const Waiting waiting = std::move(*it);
        m_waiting.erase(it);
        const auto owner = waiting.owner.lock();
        if (!owner)
            continue;
        ++m_underWay;
        ++m_hosts[waiting.host].underWay;
        ++m_hosts[waiting.host].started;
        waiting.start(Place(nullptr, [this, host = waiting.host](void *) { giveBack(host); }));
    }
    m_isStarting = false;
}

void LookQueue::giveBack(const std::string &host)
{
    --m_underWay;
    --m_hosts[host].underWay;
    startWaiting();
}

} // namespace bridge
