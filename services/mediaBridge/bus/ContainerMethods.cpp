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
    g_variant_iter_init(&iter, list);
    while (g_variant_iter_loop(&iter, "&s", &text))
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
