#include "upnp/Newcomers.h"

#include "core/Limits.h"
#include "upnp/HttpUrl.h"

namespace bridge {

void Newcomers::add(Announcement announcement)
{
    const std::string host = hostOf(announcement.route.location);
    const auto known = m_waiting.find(host);
    if (m_count >= limits::newcomers
        || (known == m_waiting.end() ? m_waiting.size() >= limits::newcomersHosts
                                     : known->second.size() >= limits::newcomersOfOneHost))
        return;
    const std::string udn = announcement.udn;
    const bool isNew = m_waiting[host].insert_or_assign(udn, std::move(announcement)).second;
    m_count += isNew ? 1 : 0;
    if (!m_next.isRunning())
        takeSome();
}

void Newcomers::takeSome()
{
    constexpr unsigned pauseMs = 10;
    for (unsigned i = 0; i < limits::newcomersAtOnce && !m_waiting.empty(); ++i) {
        auto host = m_waiting.upper_bound(m_lastHost);
        if (host == m_waiting.end())
            host = m_waiting.begin();
        m_lastHost = host->first;
        const Announcement next = std::move(host->second.begin()->second);
        host->second.erase(host->second.begin());
        --m_count;
        if (host->second.empty())
            m_waiting.erase(host);
        m_take(next);
    }
    m_next.start(pauseMs, [this] {
        if (!m_waiting.empty())
            takeSome();
    });
}

} // namespace bridge
