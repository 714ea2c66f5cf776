#pragma once

#include "core/Timer.h"
#include "upnp/DeviceDescription.h"
#include "upnp/HttpSession.h"
#include "upnp/RouteList.h"

#include <memory>

namespace bridge {

/// What a look at a server's descriptions brought.
struct LookResult
{
    /// The description, and the route where it was; nothing where no route had one.
    std::optional<DeviceDescription> description;
    Route route;
    /// Routes that had no such description.
    std::vector<Route> failed;
    /// These and the routes that were silent so far.
    std::vector<Route> asked;
    /// Why the last that failed did, in a sentence.
    std::string problem;
    /// Of the failed, some refused or gave something else; the others were silent.
    bool sawRefusal = false;
    /// At all of them there is another device now.
    bool isReplaced = false;
};

/// Why a description's place gave none, to go on after its URL; `withDocument` where it gave some
/// document.
std::string whatIsWrong(const HttpReply &reply, const std::string &withDocument);

/// Reads a description as `readDescription` does, a long one in the background. `done` is called
/// from the main loop, with the reply without its body.
void readDescription(HttpReply reply, const std::string &udn, const std::string &location,
    std::function<void(const HttpReply &, DescriptionReading)> done);

/// Looks for the description of one server, at its routes in their order. The next route is asked
/// where one fails, and also where one is silent for some time; the first description counts.
class DescriptionLook : public std::enable_shared_from_this<DescriptionLook>
{
public:
    using Done = std::function<void(LookResult)>;

    /// Each route has `timeoutMs`.
    DescriptionLook(std::string udn, std::vector<Route> routes, unsigned timeoutMs, Done done);
    /// Ends what is under way, without calling back.
    ~DescriptionLook();
    DescriptionLook(const DescriptionLook &) = delete;
    DescriptionLook &operator=(const DescriptionLook &) = delete;

    /// `done` is called once, from the main loop.
    void start() { askNext(); }
    /// One that was heard of only now.
    void add(const Route &route);

private:
    void askNext();
    void answered(const Route &route, HttpReply answer);
    void described(const Route &route, const HttpReply &reply, DescriptionReading reading);
    void finish();

    /// Its own: it has to go on where calls hold all connections of the server's.
    std::shared_ptr<HttpSession> m_session = HttpSession::create();
    std::string m_udn;
    std::vector<Route> m_routes;
    unsigned m_timeoutMs;
    Done m_done;
    size_t m_next = 0;
    size_t m_underWay = 0;
    LookResult m_result;
    Timer m_patience;
};

} // namespace bridge
