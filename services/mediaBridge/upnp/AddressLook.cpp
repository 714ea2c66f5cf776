#include "upnp/AddressLook.h"

#include "Log.h"
#include "core/Limits.h"
#include "core/Numbers.h"
#include "upnp/HttpUrl.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <net/if.h>

namespace bridge {

namespace {

constexpr uint16_t ssdpPort = 1900;
constexpr unsigned resolveMs = 5'000;
constexpr unsigned descriptionMs = 4'000;
/// A packet may be lost; a device answers one that was sent to it alone within a second.
constexpr unsigned searchGapsMs[] = {300, 700, 1'200};
constexpr unsigned descriptionAge = 1'800;
constexpr size_t maxHosts = 4;

/// Looks whose name is to be resolved.
std::vector<std::weak_ptr<AddressLook>> &waitingNames()
{
    static std::vector<std::weak_ptr<AddressLook>> looks;
    return looks;
}
unsigned namesUnderWay = 0;

/// The interface's number; 0 where there is none now.
unsigned scopeOf(const std::string &name)
{
    const unsigned index = if_nametoindex(name.c_str());
    char known[IF_NAMESIZE];
    const unsigned number = parseAs<uint32_t>(name).value_or(0);
    return index == 0 && if_indextoname(number, known) ? number : index;
}

/// In their order, but IPv4 and IPv6 in turn: the family that doesn't work here leaves room for the
/// other.
std::vector<GInetAddress *> inTurns(GList *addresses)
{
    std::vector<std::pair<size_t, GInetAddress *>> numbered;
    std::map<GSocketFamily, size_t> count;
    for (; addresses; addresses = addresses->next) {
        auto *address = static_cast<GInetAddress *>(addresses->data);
        numbered.emplace_back(count[g_inet_address_get_family(address)]++, address);
    }
    std::stable_sort(numbered.begin(), numbered.end(),
        [](const auto &a, const auto &b) { return a.first < b.first; });
    std::vector<GInetAddress *> ordered;
    for (const auto &[number, address] : numbered)
        ordered.push_back(address);
    return ordered;
}

/// Why a name stands for no address, without the name, which the resolver says first.
std::string reasonOf(const std::string &resolversMessage)
{
    const size_t nameEnd = resolversMessage.rfind("”: ");
    return nameEnd == std::string::npos ? resolversMessage
                                        : resolversMessage.substr(nameEnd + std::strlen("”: "));
}

} // namespace

AddressLook::AddressLook(ServerAddress address, unsigned source, Heard heard, Done done)
    : m_address(std::move(address))
    , m_source(source)
    , m_heard(std::move(heard))
    , m_done(std::move(done))
{
}

AddressLook::~AddressLook()
{
    for (const auto &session : m_sessions)
        session->abort();
}

void AddressLook::start(bool isFirst)
{
    auto &waiting = waitingNames();
    waiting.erase(std::remove_if(waiting.begin(), waiting.end(),
                      [](const auto &look) { return look.expired(); }),
        waiting.end());
    waiting.insert(isFirst ? waiting.end() : waiting.begin(), weak_from_this());
    resolveWaiting();
}

/// The newest first, and those that are looked up again last: DNS may never answer for them.
void AddressLook::resolveWaiting()
{
    while (namesUnderWay < limits::namesAtOnce && !waitingNames().empty()) {
        const auto next = waitingNames().back().lock();
        waitingNames().pop_back();
        if (!next)
            continue;
        ++namesUnderWay;
        next->m_resolving.start(
            resolveMs, [look = next.get()] { look->resolved(nullptr, "no answer within 5 s"); });
        const Ref<GResolver> resolver(g_resolver_get_default());
        g_resolver_lookup_by_name_async(resolver.get(), next->m_address.host.c_str(), nullptr,
            &AddressLook::gotAddresses, new std::weak_ptr<AddressLook>(next));
    }
}

/// Not before its thread is free again, however long nobody has waited for it.
void AddressLook::gotAddresses(GObject *resolver, GAsyncResult *result, gpointer data)
{
    const std::unique_ptr<std::weak_ptr<AddressLook>> weak(
        static_cast<std::weak_ptr<AddressLook> *>(data));
    GError *error = nullptr;
    GList *addresses = g_resolver_lookup_by_name_finish(G_RESOLVER(resolver), result, &error);
    const std::string problem = takeMessage(error);
    if (const auto self = weak->lock(); self && self->m_resolving.isRunning())
        self->resolved(addresses, problem.empty() ? problem : reasonOf(problem));
    g_resolver_free_addresses(addresses);
    --namesUnderWay;
    resolveWaiting();
}

void AddressLook::resolved(GList *addresses, const std::string &problem)
{
    m_resolving.stop();
    ++m_underWay;
    if (!problem.empty())
        failed(Reached::Nothing,
            "The name \"" + m_address.host + "\" can't be resolved (" + problem + ")");
    take(addresses);
    oneEnded();
}

void AddressLook::take(GList *addresses)
{
    for (GInetAddress *address : inTurns(addresses)) {
        if (m_hosts.size() < maxHosts)
            take(address);
    }
    if (m_hosts.empty())
        return;
    if (m_address.path.empty())
        startSearch();
    askForDescriptions();
}

void AddressLook::take(GInetAddress *address)
{
    const bool isIPv4 = g_inet_address_get_family(address) == G_SOCKET_FAMILY_IPV4;
    const bool isLinkLocal = g_inet_address_get_is_link_local(address) != FALSE;
    Host host;
    host.family = isIPv4 ? AF_INET : AF_INET6;
    host.numeric = takeString(g_inet_address_to_string(address));
    host.scope = isLinkLocal && !isIPv4 ? scopeOf(m_address.scope) : 0;
    host.rank = (isIPv4 ? 0 : 1) + (isLinkLocal ? 2 : 0);
    if (!isLinkLocal || isIPv4 || host.scope != 0)
        m_hosts.push_back(std::move(host));
    else if (m_address.scope.empty())
        failed(Reached::Nothing,
            "The name \"" + m_address.host + "\" stands for " + host.numeric
                + ", which is good on one link only; name its network interface, as in \""
                + host.numeric + "%eth0\"");
    else
        failed(Reached::Nothing,
            "There is no network interface \"" + m_address.scope + "\" now, on which "
                + host.numeric + " could be reached");
}

void AddressLook::startSearch()
{
    for (const Host &host : m_hosts) {
        auto &socket = m_sockets[host.family];
        if (socket)
            continue;
        socket = std::make_unique<UdpSocket>();
        socket->onPacket = [this](std::string_view packet, const std::string &sender) {
            answeredSearch(packet, sender);
        };
        socket->onBroken = [] {
        };
        if (socket->open(host.family))
            socket->listen();
    }
    ++m_underWay;
    search(0);
}

void AddressLook::search(size_t round)
{
    if (round == std::size(searchGapsMs)) {
        oneEnded();
        return;
    }
    const uint16_t port = m_address.port != 0 ? m_address.port : ssdpPort;
    for (const Host &host : m_hosts) {
        const std::string name = urlHost(host.numeric, 0) + ":" + std::to_string(port);
        if (!m_sockets.at(host.family)->send(ssdpSearch(name), host.numeric, port, host.scope))
            failed(Reached::Nothing,
                "No search can be sent to " + name + " (" + strerror(errno) + ")");
    }
    m_search.start(searchGapsMs[round], [this, round] { search(round + 1); });
}

/// It leads to nobody but the machine that was asked.
void AddressLook::answeredSearch(std::string_view packet, const std::string &sender)
{
    const auto host = std::find_if(
        m_hosts.begin(), m_hosts.end(), [&](const Host &asked) { return asked.numeric == sender; });
    const auto message = parseSsdp(packet);
    if (host == m_hosts.end() || !message || message->isGoodbye)
        return;
    if (hostOf(message->location) == sender)
        heard(message->udn, {m_source, withScope(message->location, host->scope), host->rank},
            message->maxAge);
    else
        failed(Reached::Description,
            "The media server at " + sender + " keeps its description at " + message->location
                + ", which is no http:// address of its own and isn't asked; name that URL itself "
                  "if it begins with http://");
}

void AddressLook::askForDescriptions()
{
    for (const Host &host : m_hosts) {
        const auto session = m_sessions.emplace_back(HttpSession::create());
        for (const std::string &url :
            descriptionUrls(m_address, urlHost(host.numeric, host.scope))) {
            ++m_underWay;
            session->get(url, limits::descriptionBytes, descriptionMs,
                [weak = weak_from_this(), host, url](HttpReply reply) {
                    if (const auto self = weak.lock())
                        self->answered(host, url, std::move(reply));
                });
        }
    }
}

void AddressLook::answered(const Host &host, const std::string &url, HttpReply answer)
{
    const auto done = [weak = weak_from_this(), host, url](
                          const HttpReply &reply, const DescriptionReading &reading) {
        if (const auto self = weak.lock()) {
            self->described(host, url, reply, reading);
            self->oneEnded();
        }
    };
    if (answer.status == 200)
        readDescription(std::move(answer), {}, url, done);
    else
        done(answer, {});
}

void AddressLook::described(const Host &host, const std::string &url, const HttpReply &reply,
    const DescriptionReading &reading)
{
    if (reading.description) {
        heard(reading.description->udn, {m_source, url, host.rank}, descriptionAge);
        return;
    }
    Reached reached = reading.isDevice ? Reached::Description : Reached::Service;
    if (reply.outcome != HttpOutcome::Answered)
        reached = reply.outcome == HttpOutcome::TimedOut ? Reached::Nothing : Reached::Machine;
    failed(reached, named(url, host) + ' ' + whatIsWrong(reply, reading.problem));
}

/// With its network interface as it was named, not by number.
std::string AddressLook::named(std::string url, const Host &host) const
{
    const size_t scope = url.find("%25");
    return host.scope == 0 || scope == std::string::npos
        ? url
        : url.replace(scope + 3, url.find(']') - scope - 3, m_address.scope);
}

void AddressLook::heard(const std::string &udn, const Route &route, unsigned maxAge)
{
    m_hasHeard = true;
    m_heard(udn, route, maxAge);
}

void AddressLook::failed(Reached reached, std::string problem)
{
    logDebug(m_address.text() + ": " + problem);
    if (!m_problem.empty() && reached <= m_reached)
        return;
    m_reached = reached;
    m_problem = std::move(problem);
}

void AddressLook::oneEnded()
{
    if (--m_underWay != 0 || !m_done)
        return;
    m_search.stop();
    const Done done = std::exchange(m_done, nullptr);
    done(m_hasHeard ? std::string() : sentence());
}

std::string AddressLook::sentence() const
{
    const bool isSearched = !m_hosts.empty() && m_address.path.empty();
    if (!isSearched || m_reached == Reached::Description || m_address.port != 0)
        return m_problem + ".";
    const std::string where = m_hosts.front().numeric == m_address.host
        ? m_address.host
        : m_address.host + " (" + m_hosts.front().numeric + ")";
    const ServerAddress withPort{m_address.host, m_address.scope, 8200, {}};
    return "Nothing answered the search at " + where + ", port 1900, and of the usual descriptions "
        + m_problem + "; if a media server runs there, name its port, as in \"" + withPort.text()
        + "\", or the URL of its description.";
}

} // namespace bridge
