#include "upnp/Discovery.h"

#include "Log.h"
#include "core/Limits.h"
#include "upnp/HttpUrl.h"

#include <algorithm>

namespace bridge {

namespace {

// Reports of one change come in a row.
constexpr unsigned changeSettlesMs = 50;
// An IPv6 address can't be used in its first second or two.
constexpr unsigned retryMs = 500;
// Where the kernel reported nothing, or couldn't.
constexpr unsigned compareMs = 10'000;
constexpr unsigned roundsBeforeWarning = 10;

// Packets get lost, and a switch may take half a minute before it lets any through. After that,
// asking now and then keeps servers whose announcements were lost from expiring.
constexpr unsigned searchGapsMs[] = {0, 400, 600, 500, 500, 1'000, 4'000, 10'000, 20'000, 300'000};
// The first searches of a new address have been answered, and descriptions read.
constexpr int64_t searchTakesUs = 2'000'000;
// However often clients ask for a search.
constexpr int64_t searchPauseMs = 250;

std::string describe(const LocalAddress &address)
{
    return address.text + " on " + address.interface;
}

} // namespace

Discovery::Discovery(std::vector<std::string> interfaces)
    : m_interfaces(std::move(interfaces))
{
}

void Discovery::start()
{
    // Not started anew by each report: a network that never rests would put it off for ever.
    m_watch.onChange = [this] {
        if (!m_change.isRunning())
            m_change.start(changeSettlesMs, [this] { reconcile(); });
    };
    if (!m_watch.start())
        logWarning("the kernel doesn't report changes of the network; they are seen late");
    reconcile();
}

void Discovery::rescan()
{
    const int64_t restMs = searchPauseMs - (g_get_monotonic_time() - m_searched) / 1000;
    if (m_searched == 0 || restMs <= 0)
        searchOn(0);
    else
        m_search.start(static_cast<unsigned>(restMs), [this] { searchOn(0); });
}

/// Searches now, and after the gaps from `round` on.
void Discovery::searchOn(size_t round)
{
    m_searched = g_get_monotonic_time();
    for (const auto &[id, listener] : m_listeners)
        listener->search();
    const size_t next = std::min(round + 1, std::size(searchGapsMs) - 1);
    m_search.start(searchGapsMs[next], [this, next] { searchOn(next); });
}

void Discovery::reconcile()
{
    m_compare.start(compareMs, [this] { reconcile(); });
    auto addresses = localAddresses(m_interfaces);
    if (!addresses)
        return;
    addresses->resize(std::min(addresses->size(), limits::ownAddresses));
    dropGone(*addresses);
    const size_t before = m_listeners.size();
    bool isComplete = true;
    m_deaf.clear();
    for (const LocalAddress &address : *addresses)
        isComplete = add(address) && isComplete;
    if (m_listeners.size() > before) {
        m_addedAt = g_get_monotonic_time();
        rescan();
    }
    m_failedRounds = isComplete ? 0 : m_failedRounds + 1;
    if (!isComplete)
        m_compare.start(retryMs, [this] { reconcile(); });
}

/// Leaves in `wanted` what isn't listened at.
void Discovery::dropGone(std::vector<LocalAddress> &wanted)
{
    for (auto it = m_listeners.begin(); it != m_listeners.end();) {
        const auto found = std::find(wanted.begin(), wanted.end(), it->second->address());
        const unsigned id = it->first;
        if (found != wanted.end() && m_broken.erase(id) == 0) {
            wanted.erase(found);
            ++it;
            continue;
        }
        logInfo("no longer listening at " + describe(it->second->address()));
        it = m_listeners.erase(it);
        onListenerGone(id);
    }
    m_broken.clear();
}

bool Discovery::add(const LocalAddress &address)
{
    auto listener = std::make_unique<SsdpListener>(address);
    const std::string problem = listener->start();
    if (!problem.empty()) {
        if (m_failedRounds == roundsBeforeWarning)
            logWarning("media servers can't be heard at " + describe(address) + " (" + problem
                + "); trying on");
        m_deaf[describe(address)] = problem;
        return false;
    }
    logInfo("listening at " + describe(address));
    const unsigned id = m_nextListener++;
    listener->onMessage = [this, id](const SsdpMessage &message, const std::string &sender) {
        received(id, message, sender);
    };
    listener->onBroken = [this, id] {
        m_broken.insert(id);
        m_compare.start(retryMs, [this] { reconcile(); });
    };
    m_listeners.emplace(id, std::move(listener));
    return true;
}

/// An announcement leads to nobody but its own sender: else one packet would make this machine call
/// whomever the packet names.
void Discovery::received(unsigned id, const SsdpMessage &message, const std::string &sender)
{
    if (message.isGoodbye) {
        onGoodbye(message.udn, id);
        return;
    }
    const LocalAddress &address = m_listeners.at(id)->address();
    const auto url = parseHttpUrl(message.location);
    const bool isOwn = url && url->host == sender && (!url->isLoopback || address.isLoopback);
    if (isOwn) {
        onHeard(message.udn, {id, withScope(message.location, address.index), address.rank()},
            message.maxAge);
    } else if (m_odd.size() < limits::strangersNamed && m_odd.count(sender) == 0) {
        const std::string &sentence = m_odd[sender] = "The media server " + message.udn
            + ", heard from " + sender + ", keeps its description at " + message.location
            + ", which is no http:// address of its own and isn't asked.";
        logWarning(sentence);
    }
}

bool Discovery::isSearching() const
{
    const bool isNew = m_addedAt != 0 && g_get_monotonic_time() - m_addedAt < searchTakesUs;
    return isNew || m_change.isRunning();
}

bool Discovery::isAtLoopback() const
{
    return std::any_of(m_listeners.begin(), m_listeners.end(),
        [](const auto &entry) { return entry.second->address().isLoopback; });
}

std::vector<std::string> Discovery::listening() const
{
    std::vector<std::string> places;
    for (const auto &[id, listener] : m_listeners)
        places.push_back(describe(listener->address()));
    return places;
}

std::vector<std::string> Discovery::troubles() const
{
    std::vector<std::string> sentences;
    for (const auto &[address, problem] : m_deaf)
        sentences.push_back("Media servers can't be heard at " + address + " (" + problem + ").");
    for (const auto &[sender, sentence] : m_odd)
        sentences.push_back(sentence);
    return sentences;
}

} // namespace bridge
