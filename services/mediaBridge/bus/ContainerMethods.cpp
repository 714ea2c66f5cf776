#include "bus/MediaService.h"
#include "core/ObjectPath.h"
#include "core/SearchCriteria.h"

namespace bridge {

namespace {

/// Property map of an object that could not be read.
PropertyMap errorRow(const std::string &path, const Failure &failure)
{
    return {{"Path", ObjectPath{path}},
        {"Error", PropertyMap{{"ID", int32_t{0}}, {"Message", failure.text}}}};
}

/// The rows of several objects that are read at once; answers when the last reader lets go of it.
struct ObjectRows
{
    BusCallPtr call;
    std::vector<PropertyMap> rows;

    ~ObjectRows() { call->reply(rows); }
};

/// What is left of the order that the last argument asks for, where there is one.
Criteria sortOrder(Arguments &arguments, const MediaServer &server)
{
    return sortCriteria(arguments.hasMore() ? arguments.text() : std::string(),
        server.sortCaps().value_or(std::vector<std::string>()));
}

/// The answer to a listing, written row by row.
class RowsAnswer
{
public:
    RowsAnswer(const BusCall &call, const PropertySet &wanted, const ServerContext &server)
        : m_message(call.newAnswer())
        , m_wanted(wanted)
        , m_server(server)
    {
    }

    /// Gives the bytes of all rows.
    size_t add(const MediaObject &object)
    {
        MessageWriter row(*m_rows, DBUS_TYPE_ARRAY, "{sv}");
        for (const PropInfo &info : properties()) {
            if (m_wanted.contains(info.prop))
                row.addEntry(info.name, propertyValue(object, info.prop, m_server));
        }
        return m_rows->bytes() + row.bytes();
    }
    Message finish()
    {
        m_rows.reset();
        return std::move(m_message);
    }
    Message finish(uint32_t total)
    {
        m_rows.reset();
        m_body.add(total);
        return std::move(m_message);
    }

private:
    Message m_message;
    PropertySet m_wanted;
    ServerContext m_server;
    MessageWriter m_body{m_message.get()};
    std::optional<MessageWriter> m_rows{std::in_place, m_body, DBUS_TYPE_ARRAY, "a{sv}"};
};

} // namespace

void MediaService::listChildren(const BusCallPtr &call, const Target &target)
{
    list(call, target, ListKind::All);
}

void MediaService::listContainers(const BusCallPtr &call, const Target &target)
{
    list(call, target, ListKind::Containers);
}

void MediaService::listItems(const BusCallPtr &call, const Target &target)
{
    list(call, target, ListKind::Items);
}

void MediaService::list(const BusCallPtr &call, const Target &target, ListKind kind)
{
    ListRequest request;
    request.containerId = target.objectId;
    request.kind = kind;
    Arguments arguments = call->arguments();
    request.offset = arguments.number();
    request.max = arguments.number();
    request.wanted = propertySetFromFilter(arguments.texts());
    const Criteria order = sortOrder(arguments, *target.server);
    if (!order.isValid()) {
        call->fail({errors::badQuery, order.problem});
        return;
    }
    request.sort = order.text;
    runListing(call, target, std::move(request), false);
}

void MediaService::search(const BusCallPtr &call, const Target &target)
{
    ListRequest request;
    request.action = "Search";
    request.containerId = target.objectId;
    Arguments arguments = call->arguments();
    const Criteria criteria = searchCriteria(arguments.text(), target.server->context().path);
    request.offset = arguments.number();
    request.max = arguments.number();
    request.wanted = propertySetFromFilter(arguments.texts());
    const bool isExtended = arguments.hasMore();
    const Criteria order = sortOrder(arguments, *target.server);
    for (const Criteria &checked : {criteria, order}) {
        if (!checked.isValid()) {
            call->fail({errors::badQuery, "Query string is not valid. " + checked.problem});
            return;
        }
    }
    request.criteria = criteria.text;
    request.sort = order.text;
    runListing(call, target, std::move(request), isExtended);
}

/// Reads each object by itself; one that fails has its error in its row.
void MediaService::browseObjects(const BusCallPtr &call, const Target &target)
{
    Arguments arguments = call->arguments();
    const std::vector<std::string> objects = arguments.texts();
    const PropertySet wanted = propertySetFromFilter(arguments.texts());
    const auto result = std::make_shared<ObjectRows>();
    result->call = call;
    result->rows.resize(objects.size());
    for (size_t i = 0; i < objects.size(); ++i) {
        const auto address = parseObjectPath(objects[i]);
        const std::string serverPath = target.server->context().path;
        if (!address || objectPath(serverPath, address->objectId) != objects[i]) {
            const Failure failure{errors::badPath, "The path is not one of this server's objects."};
            result->rows[i] = errorRow(objects[i], failure);
            continue;
        }
        target.server->readObject(address->objectId, wanted, call->cancellable(),
            [result, wanted, i, path = objects[i], server = target.server](
                const Failure &failure, const MediaObject &object) {
                result->rows[i] = failure.name.empty()
                    ? propertyMap(object, wanted, server->context())
                    : errorRow(path, failure);
            });
    }
}

void MediaService::runListing(
    const BusCallPtr &call, const Target &target, ListRequest request, bool withTotal)
{
    const auto answer =
        std::make_shared<RowsAnswer>(*call, request.wanted, target.server->context());
    const bool tellsChildCount = request.action == "Browse" && request.kind == ListKind::All;
    const auto listing = Listing::start(
        target.server, std::move(request), m_bus.maxReplyBytes(), call->cancellable(),
        [answer](const MediaObject &object) { return answer->add(object); },
        [call, answer, withTotal](const ListEnd &end) {
            if (!end.failure.name.empty()) {
                call->fail(end.failure);
            } else {
                call->send(withTotal ? answer->finish(end.total) : answer->finish());
            }
        });
    for (auto known = m_listings.begin(); known != m_listings.end();)
        known = known->second.expired() ? m_listings.erase(known) : std::next(known);
    if (tellsChildCount)
        m_listings[call->path()] = listing;
}

} // namespace bridge
