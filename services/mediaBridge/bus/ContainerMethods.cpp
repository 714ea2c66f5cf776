#include "bus/ListAnswer.h"
#include "bus/MediaService.h"
#include "bus/ObjectsReader.h"
#include "core/Limits.h"
#include "core/ObjectAddress.h"
#include "core/SearchCriteria.h"

namespace bridge {

namespace {

/// The order that the last argument asks for, where there is one.
Criteria sortOrder(Arguments &arguments, const MediaServer &server)
{
    return sortCriteria(arguments.hasMore() ? arguments.text() : std::string(), server.sortCaps());
}

/// `operation` is "Browse" or "Search".
Failure failureOf(const Criteria &criteria, const std::string &operation)
{
    if (criteria.isBeyondServer)
        return {errors::operationFailed, operation + " operation failed: " + criteria.problem};
    return {errors::badQuery, "Query string is not valid. " + criteria.problem};
}

/// The wanted properties that the next argument names; nothing where there are too many names.
std::optional<PropertySet> takeFilter(Arguments &arguments, BusCall &call)
{
    const std::vector<std::string> names = arguments.texts(limits::filterNames);
    if (names.size() <= limits::filterNames)
        return propertySetFromFilter(names);
    call.fail({errors::invalidArgs,
        "A filter takes " + std::to_string(limits::filterNames) + " names at most."});
    return std::nullopt;
}

} // namespace

void MediaService::list(const BusCallPtr &call, const Target &target)
{
    ListRequest request;
    request.containerId = target.objectId;
    request.kind = target.listed.kind;
    Arguments arguments = call->arguments();
    request.offset = arguments.number();
    request.max = arguments.number();
    const auto wanted = takeFilter(arguments, *call);
    if (!wanted)
        return;
    request.wanted = *wanted;
    const Criteria order = sortOrder(arguments, *target.server);
    if (!order.isValid()) {
        call->fail(failureOf(order, "Browse"));
        return;
    }
    request.sort = order.text;
    runListing(call, target, std::move(request));
}

void MediaService::search(const BusCallPtr &call, const Target &target)
{
    ListRequest request;
    request.action = "Search";
    request.containerId = target.objectId;
    Arguments arguments = call->arguments();
    const std::string query = arguments.text();
    if (query.size() > limits::queryBytes) {
        call->fail({errors::invalidArgs,
            "A query of " + std::to_string(query.size())
                + " bytes is too long: " + std::to_string(limits::queryBytes) + " are allowed."});
        return;
    }
    const Criteria criteria = searchCriteria(query, target.server->context().path);
    request.offset = arguments.number();
    request.max = arguments.number();
    const auto wanted = takeFilter(arguments, *call);
    if (!wanted)
        return;
    request.wanted = *wanted;
    const Criteria order = sortOrder(arguments, *target.server);
    for (const Criteria &checked : {criteria, order}) {
        if (!checked.isValid()) {
            call->fail(failureOf(checked, "Search"));
            return;
        }
    }
    request.criteria = criteria.text;
    request.sort = order.text;
    runListing(call, target, std::move(request));
}

void MediaService::browseObjects(const BusCallPtr &call, const Target &target)
{
    Arguments arguments = call->arguments();
    std::vector<std::string> paths = arguments.texts(limits::objectsPerCall);
    if (paths.size() > limits::objectsPerCall) {
        call->fail({errors::invalidArgs,
            "BrowseObjects takes " + std::to_string(limits::objectsPerCall)
                + " objects at most. Ask for fewer at a time."});
        return;
    }
    if (const auto wanted = takeFilter(arguments, *call))
        ObjectsReader::start(m_bus, call, target.server, std::move(paths), *wanted);
}

void MediaService::runListing(const BusCallPtr &call, const Target &target, ListRequest request)
{
    const auto answer =
        std::make_shared<ListAnswer>(m_bus, call, request.wanted, target.server->context());
    request.tellsTotal = target.listed.withTotal;
    const bool tellsChildCount = request.action == "Browse" && request.kind == ListKind::All;
    const auto listing = Listing::start(
        target.server, std::move(request), call->caller(),
        [answer](const MediaObject &object) { return answer->add(object); },
        [call, answer, withTotal = target.listed.withTotal](const ListEnd &end) {
            if (!end.failure.name.empty())
                call->fail(end.failure);
            else if (withTotal)
                answer->send(end.total);
            else
                answer->send();
        });
    if (tellsChildCount)
        m_listings.add(call->path(), listing);
}

} // namespace bridge
