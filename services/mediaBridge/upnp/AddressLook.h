#pragma once

#include "ServerAddress.h"
#include "core/Timer.h"
#include "upnp/DescriptionLook.h"

#include <map>
#include <memory>

namespace bridge {

/// Looks once for media servers at an address that somebody named: resolves its name, sends
/// searches to the machine itself and asks for descriptions where they may be, at all numbers that
/// the name stands for at once. Main thread only.
class AddressLook : public std::enable_shared_from_this<AddressLook>
{
public:
    /// A server said that it is there; whether it can be used is still to be seen.
    using Heard = std::function<void(const std::string &udn, const Route &, unsigned maxAge)>;
    /// The look has ended: why nothing was heard, in a sentence.
    using Done = std::function<void(const std::string &problem)>;

    /// `source` is what the routes get as their listener.
    AddressLook(ServerAddress address, unsigned source, Heard heard, Done done);
    /// Ends what is under way, without calling back.
    ~AddressLook();
    AddressLook(const AddressLook &) = delete;
    AddressLook &operator=(const AddressLook &) = delete;

    /// Both are called from the main loop, never from inside this call; `done` once, after nine
    /// seconds at most, or more where many other names are looked up. Where it isn't the first look
    /// at this address, others come before it.
    void start(bool isFirst);

private:
    /// One address of the machine.
    struct Host
    {
        int family = AF_INET;
        std::string numeric;
        unsigned scope = 0;
        int rank = 0;
    };
    /// How far an attempt came; the one that came furthest is told.
    enum class Reached { Nothing, Machine, Service, Description };

    static void resolveWaiting();
    static void gotAddresses(GObject *resolver, GAsyncResult *result, gpointer self);
    void resolved(GList *addresses, const std::string &problem);
    void take(GList *addresses);
    void take(GInetAddress *address);
    void startSearch();
    void search(size_t round);
    void answeredSearch(std::string_view packet, const std::string &sender);
    void askForDescriptions();
    void answered(const Host &host, const std::string &url, HttpReply answer);
    void described(const Host &host, const std::string &url, const HttpReply &reply,
        const DescriptionReading &reading);
    std::string named(std::string url, const Host &host) const;
    void heard(const std::string &udn, const Route &route, unsigned maxAge);
    void failed(Reached reached, std::string problem);
    void oneEnded();
    std::string sentence() const;

    ServerAddress m_address;
    unsigned m_source;
    Heard m_heard;
    Done m_done;
    std::vector<Host> m_hosts;
    /// By family.
    std::map<int, std::unique_ptr<UdpSocket>> m_sockets;
    /// One for each host, so that one which is silent holds up no other.
    std::vector<std::shared_ptr<HttpSession>> m_sessions;
    Timer m_search;
    Timer m_resolving;
    unsigned m_underWay = 0;
    bool m_hasHeard = false;
    Reached m_reached = Reached::Nothing;
    std::string m_problem;
};

} // namespace bridge
