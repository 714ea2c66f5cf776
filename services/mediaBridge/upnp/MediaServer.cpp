#include "upnp/MediaServer.h"

#include "core/Background.h"
#include "core/Limits.h"
#include "core/ObjectAddress.h"
#include "core/SearchCriteria.h"
#include "upnp/HttpUrl.h"

#include <algorithm>

namespace bridge {

namespace {

std::string faultSentence(const SoapAnswer &answer)
{
    std::string text = answer.faultText.empty() ? "the server refused" : answer.faultText;
    if (answer.faultCode != 0)
        text += " (UPnP error " + std::to_string(answer.faultCode) + ")";
    return text;
}

} // namespace

MediaServer::MediaServer(DeviceDescription description, std::shared_ptr<HttpSession> session)
    : m_description(std::move(description))
    , m_host(hostOf(m_description.location))
    , m_port(parseHttpUrl(m_description.location).value_or(HttpUrl()).port)
    , m_context{serverPathFromUdn(m_description.udn), m_description.baseUrl}
    , m_session(std::move(session))
{
}

void MediaServer::readCapabilities(unsigned timeoutMs, std::function<void()> done)
{
    // The two answers share the last reference to `done`'s guard; the later one calls it.
    const std::shared_ptr<void> both(nullptr, [done = std::move(done)](void *) { done(); });
    readCapability(
        "GetSearchCapabilities", "SearchCaps", timeoutMs, both, &MediaServer::m_searchCaps);
    readCapability("GetSortCapabilities", "SortCaps", timeoutMs, both, &MediaServer::m_sortCaps);
}

void MediaServer::readCapability(const char *action, const char *output, unsigned timeoutMs,
    const std::shared_ptr<void> &both, std::optional<std::vector<std::string>> MediaServer::*member)
{
    call({action, {}, {}, timeoutMs, limits::capabilityBytes},
        [self = shared_from_this(), both, output, member](const ActionReply &reply) {
            if (reply.isError())
                return;
            (*self).*member = knownCapabilities(reply.answer.value(output));
        });
}

void MediaServer::inheritCapabilities(const MediaServer &earlier)
{
    if (!m_searchCaps)
        m_searchCaps = earlier.m_searchCaps;
    if (!m_sortCaps)
        m_sortCaps = earlier.m_sortCaps;
}

std::optional<bool> MediaServer::countsWhole(const std::string &action) const
{
    const auto known = m_countsWhole.find(action);
    return known == m_countsWhole.end() ? std::nullopt : std::optional(known->second);
}

void MediaServer::setCountsWhole(const std::string &action, bool countsWhole)
{
    m_countsWhole[action] = countsWhole;
}

void MediaServer::call(ActionCall call, ActionCallback done)
{
    if (m_newer) {
        m_newer->call(std::move(call), std::move(done));
        return;
    }
    // No new time begins where it moves on with its server.
    call.latest = std::min(call.latest, HttpSession::latestEnd(call.timeoutMs));
    const std::string &type = m_description.serviceType;
    m_session->send({m_description.controlUrl, '"' + type + '#' + call.action + '"',
                        soapEnvelope(type, call.action, call.arguments), call.maxBytes,
                        call.timeoutMs, call.caller, call.goesOn, call.latest},
        [self = shared_from_this(), call, done = std::move(done)](
            HttpReply http) { self->received(call, std::move(http), done); });
}

void MediaServer::giveWayTo(std::shared_ptr<MediaServer> newer)
{
    m_newer = std::move(newer);
    // Earlier ones at this address have calls in the session, too, and have given way to this one.
    if (m_newer->m_session != m_session)
        m_session->abort(HttpOutcome::Moved);
}

void MediaServer::received(const ActionCall &call, HttpReply http, const ActionCallback &done)
{
    // One that was looked at and not taken has nobody to give its calls to.
    if (http.outcome == HttpOutcome::Moved && m_newer) {
        m_newer->call(call, done);
        return;
    }
    struct Work
    {
        HttpReply http;
        ActionReply reply;
    };
    const auto work = std::make_shared<Work>();
    work->http = std::move(http);
    const auto read = [work, action = call.action] {
        work->reply.answer =
            parseSoapAnswer(std::move(work->http.body), action, work->http.charset);
    };
    const auto finish = [self = shared_from_this(), call, work, done] {
        ActionReply &reply = work->reply;
        reply.outcome = work->http.outcome;
        reply.place = std::move(work->http.place);
        if (reply.answer.kind != SoapAnswer::Kind::Result)
            reply.failure = self->failureOf(call, work->http, reply.answer);
        if (reply.outcome == HttpOutcome::Unreachable && self->onUnreachable)
            self->onUnreachable();
        done(std::move(reply));
    };
    if (work->http.outcome == HttpOutcome::Answered)
        background::read(m_host, work->http.body.size(), read, finish);
    else
        finish();
}

Failure MediaServer::failureOf(
    const ActionCall &call, const HttpReply &reply, const SoapAnswer &answer) const
{
    const std::string start = call.action + " operation failed: ";
    const std::string server = "the media server \"" + m_description.friendlyName + "\"";
    switch (reply.outcome) {
    case HttpOutcome::Cancelled:
    case HttpOutcome::Moved:
        return {errors::cancelled, "Operation cancelled."};
    case HttpOutcome::TimedOut:
        return {errors::operationFailed,
            start + server + " did not answer within " + std::to_string(call.timeoutMs / 1000)
                + " seconds. It may be busy or hanging; try again, or restart it."};
    case HttpOutcome::Unreachable:
        return {errors::operationFailed,
            start + "Could not connect to " + server + ": " + reply.problem};
    case HttpOutcome::Broken:
        return {errors::operationFailed,
            start + "The connection to " + server + " broke: " + reply.problem};
    case HttpOutcome::TooLarge:
        return {errors::operationFailed,
            start + "The answer of " + server + " is too large: " + reply.problem + "."};
    case HttpOutcome::Answered:
        break;
    }
    if (answer.kind == SoapAnswer::Kind::Fault)
        return {errors::operationFailed, start + faultSentence(answer)};
    constexpr unsigned unauthorized = 401;
    constexpr unsigned proxyAuthenticationRequired = 407;
    if (reply.status == unauthorized || reply.status == proxyAuthenticationRequired) {
        return {errors::operationFailed,
            start + server + " asks for a password, which can't be given (HTTP status "
                + std::to_string(reply.status) + ")."};
    }
    return {errors::operationFailed,
        start + "The answer of " + server + " can't be read (HTTP status "
            + std::to_string(reply.status) + ")."};
}

void MediaServer::readObject(const std::string &objectId, const PropertySet &wanted,
    const Caller &caller, ObjectCallback done)
{
    const SoapArguments arguments{{"ObjectID", objectId}, {"BrowseFlag", "BrowseMetadata"},
        {"Filter", didlFilter(wanted)}, {"StartingIndex", "0"}, {"RequestedCount", "0"},
        {"SortCriteria", ""}};
    const auto gotList = [done](const std::optional<DidlList> &list) {
        if (list && !list->objects.empty()) {
            done({}, list->objects.front());
        } else {
            done({errors::operationFailed,
                     "Browse operation failed: The server described no object."},
                {});
        }
    };
    call({"Browse", arguments, caller, answerTimeoutMs, limits::answerBytes(1)},
        [self = shared_from_this(), done, gotList](ActionReply reply) {
            if (reply.isError())
                done(reply.failure, {});
            else
                self->readDidl(std::move(reply.answer.values["Result"]), 1,
                    [gotList, place = std::move(reply.place)](
                        const std::optional<DidlList> &list) { gotList(list); });
        });
}

void MediaServer::readDidl(
    std::string didl, size_t maxObjects, std::function<void(std::optional<DidlList>)> done) const
{
    if (didl.size() <= limits::documentAtOnce) {
        done(parseDidl(std::move(didl), maxObjects));
        return;
    }
    struct Work
    {
        std::string didl;
        std::optional<DidlList> list;
    };
    const auto work = std::make_shared<Work>(Work{std::move(didl), {}});
    background::run(
        m_host, [work, maxObjects] { work->list = parseDidl(std::move(work->didl), maxObjects); },
        [work, done = std::move(done)] { done(std::move(work->list)); });
}

} // namespace bridge
