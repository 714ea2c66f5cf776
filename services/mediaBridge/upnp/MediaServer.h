#pragma once

#include "core/Caller.h"
#include "core/Didl.h"
#include "core/Failure.h"
#include "core/MediaObject.h"
#include "core/Properties.h"
#include "core/SoapMessage.h"
#include "upnp/DeviceDescription.h"
#include "upnp/HttpSession.h"

#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>

namespace bridge {

/// How an action of a server's content directory ended.
struct ActionReply
{
    /// Empty name: the action succeeded and `answer` holds its result.
    Failure failure;
    SoapAnswer answer;
    HttpOutcome outcome = HttpOutcome::Answered;
    /// See HttpReply.
    std::shared_ptr<void> place;

    bool isError() const { return !failure.name.empty(); }
};

/// An action of a server's content directory as it is to be called.
struct ActionCall
{
    std::string action;
    SoapArguments arguments;
    Caller caller;
    unsigned timeoutMs = 0;
    /// The longest answer that is taken.
    size_t maxBytes = 0;
    /// See HttpRequest.
    bool goesOn = false;
    int64_t latest = std::numeric_limits<int64_t>::max();
};

using ActionCallback = std::function<void(ActionReply)>;
/// The failure's name is empty where there is an object.
using ObjectCallback = std::function<void(const Failure &, const MediaObject &)>;

/// A media server whose description has been read: its content directory, and what is known of it.
/// Main thread only. Calls that are under way keep it alive.
class MediaServer : public std::enable_shared_from_this<MediaServer>
{
public:
    MediaServer(DeviceDescription description, std::shared_ptr<HttpSession> session);

    const DeviceDescription &description() const { return m_description; }
    /// The machine; those of one share the time that is spent on their answers.
    const std::string &host() const { return m_host; }
    int port() const { return m_port; }
    /// D-Bus path and URL base, for mapping its objects.
    const ServerContext &context() const { return m_context; }

    /// What it can search and sort by, in UPnP names; absent where it could not be read.
    const std::optional<std::vector<std::string>> &searchCaps() const { return m_searchCaps; }
    const std::optional<std::vector<std::string>> &sortCaps() const { return m_sortCaps; }

    /// Reads both lists of capabilities, waiting `timeoutMs` for a server that doesn't answer.
    /// `done` is called once, whether or not they could be read.
    void readCapabilities(unsigned timeoutMs, std::function<void()> done);

    /// Takes what could not be read from an earlier look at the same server.
    void inheritCapabilities(const MediaServer &earlier);

    /// Whether its answers to "Browse" or "Search" count a whole list, rather than what they have
    /// sent of it so far; nothing where none has shown it yet.
    std::optional<bool> countsWhole(const std::string &action) const;
    void setCountsWhole(const std::string &action, bool countsWhole);

    /// Calls an action; `done` is called once, from the main loop.
    void call(ActionCall call, ActionCallback done);

    /// Reads one object with what `wanted` needs.
    void readObject(const std::string &objectId, const PropertySet &wanted, const Caller &caller,
        ObjectCallback done);

    /// What parseDidl makes of `didl`; a long one is read in the background. `done` may be called
    /// from inside this call.
    void readDidl(std::string didl, size_t maxObjects,
        std::function<void(std::optional<DidlList>)> done) const;

    /// `newer` is what the same server has become: it gets whatever is still asked of this one, and
    /// where it is elsewhere, what is under way here, too.
    void giveWayTo(std::shared_ptr<MediaServer> newer);

    /// Called with each call that found nobody listening.
    std::function<void()> onUnreachable;

    /// Longest wait for one answer, in milliseconds: below the 25 s after which a D-Bus caller
    /// gives up by itself, with room for what comes after.
    static constexpr unsigned answerTimeoutMs = 10'000;

private:
    void received(const ActionCall &call, HttpReply http, const ActionCallback &done);
    Failure failureOf(
        const ActionCall &call, const HttpReply &reply, const SoapAnswer &answer) const;
    void readCapability(const char *action, const char *output, unsigned timeoutMs,
        const std::shared_ptr<void> &both,
        std::optional<std::vector<std::string>> MediaServer::*member);

    DeviceDescription m_description;
    std::string m_host;
    int m_port;
    ServerContext m_context;
    std::shared_ptr<HttpSession> m_session;
    std::shared_ptr<MediaServer> m_newer;
    std::optional<std::vector<std::string>> m_searchCaps;
    std::optional<std::vector<std::string>> m_sortCaps;
    std::map<std::string, bool> m_countsWhole;
};

using MediaServerPtr = std::shared_ptr<MediaServer>;

} // namespace bridge
