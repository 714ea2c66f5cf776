#include "upnp/MediaServer.h"

#include "core/Didl.h"
#include "core/ObjectPath.h"
#include "core/SearchCriteria.h"

namespace bridge {

namespace {

constexpr unsigned capabilityTimeoutMs = 2'000;

std::string faultSentence(const SoapAnswer &answer)
{
    std::string text = answer.faultText.empty() ? "the server refused" : answer.faultText;
    if (answer.faultCode != 0)
        text += " (UPnP error " + std::to_string(answer.faultCode) + ")";
    return text;
}

} // namespace

MediaServer::MediaServer(DeviceDescription description, Ref<SoupSession> session)
    : m_description(std::move(description))
    , m_context{serverPathFromUdn(m_description.udn), m_description.baseUrl}
    , m_session(std::move(session))
{
}

void MediaServer::readCapabilities(std::function<void()> done)
{
    // The two answers share the last reference to `done`'s guard; the later one calls it.
    const std::shared_ptr<void> bothRead(nullptr, [done = std::move(done)](void *) { done(); });
    const auto read = [&](const char *action, const char *output, auto member) {
        call(action, action, {}, capabilityTimeoutMs, nullptr,
            [self = shared_from_this(), bothRead, output, member](const ActionReply &reply) {
                if (!reply.isError())
                    (*self).*member = splitList(reply.answer.value(output));
            });
    };
    read("GetSearchCapabilities", "SearchCaps", &MediaServer::m_searchCaps);
    read("GetSortCapabilities", "SortCaps", &MediaServer::m_sortCaps);
}

void MediaServer::inheritCapabilities(const MediaServer &earlier)
{
    if (!m_searchCaps)
        m_searchCaps = earlier.m_searchCaps;
    if (!m_sortCaps)
        m_sortCaps = earlier.m_sortCaps;
}

void MediaServer::call(const std::string &action, const std::string &operation,
    const SoapArguments &arguments, unsigned timeoutMs, GCancellable *cancellable,
    ActionCallback done)
{
    const std::string &type = m_description.serviceType;
    httpPostSoap(m_session.get(), m_description.controlUrl, '"' + type + '#' + action + '"',
        soapEnvelope(type, action, arguments), timeoutMs, cancellable,
        [self = shared_from_this(), action, operation, timeoutMs, done = std::move(done)](
            HttpReply http) {
            ActionReply reply;
            reply.outcome = http.outcome;
            if (http.outcome == HttpOutcome::Answered)
                reply.answer = parseSoapAnswer(std::move(http.body), action);
            if (reply.answer.kind != SoapAnswer::Kind::Result)
                reply.failure = self->failureOf(operation, http, reply.answer, timeoutMs);
            if (http.outcome == HttpOutcome::Unreachable && self->onUnreachable)
                self->onUnreachable();
            done(std::move(reply));
        });
}

Failure MediaServer::failureOf(const std::string &operation, const HttpReply &reply,
    const SoapAnswer &answer, unsigned timeoutMs) const
{
    const std::string start = operation + " operation failed: ";
    const std::string server = "the media server \"" + m_description.friendlyName + "\"";
    switch (reply.outcome) {
    case HttpOutcome::Cancelled:
        return {errors::cancelled, "Operation cancelled."};
    case HttpOutcome::TimedOut:
        return {errors::operationFailed,
            start + server + " did not answer within " + std::to_string(timeoutMs / 1000)
                + " seconds. It may be busy or hanging; try again, or restart it."};
    case HttpOutcome::Unreachable:
        return {errors::operationFailed,
            start + "Could not connect to " + server + ": " + reply.problem};
    case HttpOutcome::Broken:
        return {errors::operationFailed,
            start + "The connection to " + server + " broke: " + reply.problem};
    case HttpOutcome::Answered:
        break;
    }
    if (answer.kind == SoapAnswer::Kind::Fault)
        return {errors::operationFailed, start + faultSentence(answer)};
    return {errors::operationFailed,
        start + "The answer of " + server + " can't be read (HTTP status "
            + std::to_string(reply.status) + ")."};
}

void MediaServer::readObject(const std::string &objectId, const PropertySet &wanted,
    GCancellable *cancellable, ObjectCallback done)
{
    const SoapArguments arguments{{"ObjectID", objectId}, {"BrowseFlag", "BrowseMetadata"},
        {"Filter", didlFilter(wanted)}, {"StartingIndex", "0"}, {"RequestedCount", "0"},
        {"SortCriteria", ""}};
    call("Browse", "Browse", arguments, answerTimeoutMs, cancellable,
        [done = std::move(done)](ActionReply reply) {
            if (reply.isError()) {
                done(reply.failure, {});
                return;
            }
            const auto list = parseDidl(std::move(reply.answer.values["Result"]));
            if (!list || list->objects.empty()) {
                done({errors::operationFailed,
                         "Browse operation failed: The server described no object."},
                    {});
                return;
            }
            done({}, list->objects.front());
        });
}

} // namespace bridge
