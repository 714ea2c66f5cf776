#include "upnp/LookQueue.h"

#include "core/Limits.h"

#include <algorithm>

namespace bridge {

void LookQueue::wait(std::vector<std::string> hosts, std::weak_ptr<void> owner, Start start)
{
    m_waiting.remove_if([](const Waiting &waiting) { return waiting.owner.expired(); });
    if (m_hosts.size() > limits::hostsLookedAt)
        forgetIdleHosts();
    m_waiting.push_front({std::move(hosts), std::move(owner), std::move(start)});
    startWaiting();
}

void LookQueue::forgetIdleHosts()
{
    for (auto it = m_hosts.begin(); it != m_hosts.end();)
        it = it->second.underWay == 0 ? m_hosts.erase(it) : std::next(it);
}

const std::string &LookQueue::bestHost(const Waiting &waiting)
{
    return *std::min_element(waiting.hosts.begin(), waiting.hosts.end(),
        [this](const std::string &a, const std::string &b) {
            return m_hosts[a].started < m_hosts[b].started;
        });
}

std::list<LookQueue::Waiting>::iterator LookQueue::next()
{
    auto best = m_waiting.end();
    unsigned fewest = 0;
    for (auto it = m_waiting.begin(); it != m_waiting.end(); ++it) {
        const Host &host = m_hosts[bestHost(*it)];
        if (host.underWay >= limits::looksAtOneHost)
            continue;
        if (best == m_waiting.end() || host.started < fewest
            || (m_takesOldest && host.started == fewest)) {
            best = it;
            fewest = host.started;
        }
    }
    return best;
}

void LookQueue::startWaiting()
{
    if (m_isStarting)
        return;
    m_isStarting = true;
    while (m_underWay < m_most && m_begun < limits::looksAtOnce) {
        const auto it = next();
        if (it == m_waiting.end())
            break;
        m_takesOldest = !m_takesOldest;
        const Waiting waiting = std::move(*it);
        m_waiting.erase(it);
        const auto owner = waiting.owner.lock();
        if (!owner)
            continue;
        const std::string host = bestHost(waiting);
        ++m_begun;
        restLater();
        ++m_underWay;
        ++m_hosts[host].underWay;
        ++m_hosts[host].started;
        waiting.start(Place(nullptr, [this, host](void *) { giveBack(host); }));
    }
    m_isStarting = false;
}

/// So that looks take a small part of the time, however often there is a reason for them.
void LookQueue::restLater()
{
    constexpr unsigned restMs = 20;
    if (m_rest.isRunning())
        return;
    m_rest.start(restMs, [this] {
        if (--m_begun > 0)
            restLater();
        startWaiting();
    });
}

void LookQueue::giveBack(const std::string &host)
{
    --m_underWay;
    --m_hosts[host].underWay;
    startWaiting();
}

} // namespace bridge
