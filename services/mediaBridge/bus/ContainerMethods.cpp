#include "bus/MediaService.h"
#include "core/ObjectPath.h"
#include "core/SearchCriteria.h"

namespace bridge {

namespace {

std::vector<std::string> stringsOf(GVariant *list)
{
    std::vector<std::string> strings;
    GVariantIter iter;
    const char *text = nullptr;
    const bool isPaths = g_variant_is_of_type(list, G_VARIANT_TYPE_OBJECT_PATH_ARRAY) != FALSE;
    g_variant_iter_init(&iter, list);
    while (g_variant_iter_next(&iter, isPaths ? "&o" : "&s", &text))
        strings.emplace_back(text);
    return strings;
}

/// aa{sv}, floating. The rows go over into it.
GVariant *rowsVariant(std::vector<Variant> &rows)
{
    std::vector<GVariant *> children;
    children.reserve(rows.size());
    for (const Variant &row : rows)
        children.push_back(row.get());
    return g_variant_new_array(G_VARIANT_TYPE_VARDICT, children.data(), children.size());
}

/// Property map of an object that could not be read, floating.
GVariant *errorRow(const std::string &path, const Failure &failure)
{
    GVariantBuilder row;
    g_variant_builder_init(&row, G_VARIANT_TYPE_VARDICT);
    GVariantDict error;
    g_variant_dict_init(&error, nullptr);
    g_variant_dict_insert(&error, "ID", "i", 0);
    g_variant_dict_insert_value(&error, "Message", textVariant(failure.text));
    g_variant_builder_add(&row, "{sv}", "Path", g_variant_new_object_path(path.c_str()));
    g_variant_builder_add(&row, "{sv}", "Error", g_variant_dict_end(&error));
    return g_variant_builder_end(&row);
}

/// The rows of several objects that are read at once; answers when the last reader lets go of it.
struct ObjectRows
{
    BusCallPtr call;
    std::vector<Variant> rows;

    ~ObjectRows() { call->reply(g_variant_new("(@aa{sv})", rowsVariant(rows))); }
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
    GVariant *filter = nullptr;
    const char *sort = "";
    const bool isSorted = g_variant_n_children(call->arguments()) == 4;
    if (isSorted)
        g_variant_get(
            call->arguments(), "(uu@as&s)", &request.offset, &request.max, &filter, &sort);
    else
        g_variant_get(call->arguments(), "(uu@as)", &request.offset, &request.max, &filter);
    request.wanted = propertySetFromFilter(stringsOf(ownVariant(filter).get()));

    const Criteria order =
        sortCriteria(sort, target.server->sortCaps().value_or(std::vector<std::string>()));
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
    GVariant *filter = nullptr;
    const char *query = "";
    const char *sort = "";
    const bool isExtended = g_variant_n_children(call->arguments()) == 5;
    if (isExtended)
        g_variant_get(call->arguments(), "(&suu@as&s)", &query, &request.offset, &request.max,
            &filter, &sort);
    else
        g_variant_get(
            call->arguments(), "(&suu@as)", &query, &request.offset, &request.max, &filter);
    request.wanted = propertySetFromFilter(stringsOf(ownVariant(filter).get()));

    const Criteria criteria = searchCriteria(query, target.server->context().path);
    const Criteria order =
        sortCriteria(sort, target.server->sortCaps().value_or(std::vector<std::string>()));
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
    GVariant *paths = nullptr;
    GVariant *filter = nullptr;
    g_variant_get(call->arguments(), "(@ao@as)", &paths, &filter);
    const PropertySet wanted = propertySetFromFilter(stringsOf(ownVariant(filter).get()));
    const auto result = std::make_shared<ObjectRows>();
    result->call = call;
    const std::vector<std::string> objects = stringsOf(ownVariant(paths).get());
    result->rows.resize(objects.size());
    for (size_t i = 0; i < objects.size(); ++i) {
        const auto address = parseObjectPath(objects[i]);
        const std::string serverPath = target.server->context().path;
        if (!address || objectPath(serverPath, address->objectId) != objects[i]) {
            const Failure failure{errors::badPath, "The path is not one of this server's objects."};
            result->rows[i] = ownVariant(errorRow(objects[i], failure));
            continue;
        }
        target.server->readObject(address->objectId, wanted, call->cancellable(),
            [result, wanted, i, path = objects[i], server = target.server](
                const Failure &failure, const MediaObject &object) {
                result->rows[i] =
                    ownVariant(failure.name.empty() ? propertyMap(object, wanted, server->context())
                                                    : errorRow(path, failure));
            });
    }
}

void MediaService::runListing(
    const BusCallPtr &call, const Target &target, ListRequest request, bool withTotal)
{
    Listing::start(target.server, std::move(request), m_bus.maxReplyBytes(), call->cancellable(),
        [call, withTotal](ListResult result) {
            if (!result.failure.name.empty())
                call->fail(result.failure);
            else if (withTotal)
                call->reply(g_variant_new("(@aa{sv}u)", rowsVariant(result.rows), result.total));
            else
                call->reply(g_variant_new("(@aa{sv})", rowsVariant(result.rows)));
        });
}

} // namespace bridge
