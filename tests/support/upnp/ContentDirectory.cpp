#include "ContentDirectory.h"

#include <algorithm>

namespace {

constexpr int invalidAction = 401, invalidArgs = 402, noSuchObject = 701, noSuchContainer = 710;

SoapAnswer fault(int code, const char *text)
{
    return {soapFault(code, QLatin1String(text)), true};
}

/// The rows that a call asked for, before they are made into text.
struct Page
{
    const MediaTree &tree;
    const ServerBehaviour &behaviour;
    QString base;
    quint32 first = 0, wanted = 0, total = 0;

    quint32 begin() const
    {
        const bool isAnew = behaviour.beginsAnew && first >= total;
        return isAnew ? 0 : first - std::min(first, behaviour.overlap);
    }

    quint32 size() const
    {
        const quint32 there = begin() < total ? total - begin() : 0;
        const quint32 asked = wanted == 0 ? there : std::min(wanted, there);
        return behaviour.pageCap ? std::min(behaviour.pageCap, asked) : asked;
    }

    quint32 said() const
    {
        return behaviour.total == ServerBehaviour::Zero   ? 0
            : behaviour.total == ServerBehaviour::Five    ? 5
            : behaviour.total == ServerBehaviour::Sent    ? first + size()
            : behaviour.total == ServerBehaviour::OneMore ? std::min(first + size() + 1, total)
                                                          : total;
    }

    template<typename ObjectAt>
    SoapAnswer answer(const QString &action, ObjectAt objectAt) const
    {
        QString objects;
        for (quint32 row = begin(), end = row + size(); row < end; ++row) {
            const MediaObject object = objectAt(int(row));
            objects += didlElement(object, tree.childCount(object.id), base);
        }
        const bool isUncounted =
            objects.isEmpty() && behaviour.emptyResult == ServerBehaviour::Uncounted;
        const auto number = [=](quint32 count) {
            return isUncounted ? QString() : QString::number(count);
        };
        return {soapAnswer(action,
            {{"Result", result(objects)}, {"NumberReturned", number(size())},
                {"TotalMatches", number(said())}, {"UpdateID", "1"}})};
    }

    QString result(const QString &objects) const
    {
        if (objects.isEmpty() && behaviour.emptyResult == ServerBehaviour::NoResult)
            return {};
        QString text =
            behaviour.xmlDeclaration ? "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" : QString();
        text += "<DIDL-Lite xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\" "
                "xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
                "xmlns:dlna=\"urn:schemas-dlna-org:metadata-1-0/\" "
                "xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\">";
        if (objects.isEmpty() && behaviour.emptyResult == ServerBehaviour::EmptyWrapped)
            text += "\n  <!-- nothing -->\n";
        text += objects + "</DIDL-Lite>";
        if (behaviour.bareAmpersands)
            text.replace("&amp;", "&");
        return behaviour.cutResult ? text.left(text.size() / 2) : text;
    }
};

SoapAnswer answerRows(const SoapCall &call, const QVector<MediaObject> &rows, Page page)
{
    page.total = quint32(rows.size());
    return page.answer(call.action, [&rows](int row) { return rows[row]; });
}

SoapAnswer browse(const SoapCall &call, Page page)
{
    const QString id = call.arguments.value("ObjectID");
    const auto object = page.tree.object(id);
    if (!object)
        return fault(noSuchObject, "No such object");
    if (call.arguments.value("BrowseFlag") == "BrowseMetadata")
        return answerRows(call, {*object}, page);
    page.total = quint32(page.tree.childCount(id));
    return page.answer(call.action, [&](int row) { return page.tree.child(id, row); });
}

SoapAnswer search(const SoapCall &call, const Page &page)
{
    const QString id = call.arguments.value("ContainerID");
    if (!page.tree.object(id))
        return fault(noSuchContainer, "No such container");
    return answerRows(call, page.tree.matches(id, call.arguments.value("SearchCriteria")), page);
}

SoapAnswer listing(const SoapCall &call, Page page)
{
    page.first = call.arguments.value("StartingIndex").toUInt();
    page.wanted = call.arguments.value("RequestedCount").toUInt();
    if (page.behaviour.refuseCountFrom && page.wanted >= page.behaviour.refuseCountFrom)
        return fault(invalidArgs, "Invalid Args");
    return call.action == "Browse" ? browse(call, page) : search(call, page);
}

} // namespace

SoapAnswer answerCall(const SoapCall &call, const MediaTree &tree, const ServerBehaviour &behaviour,
    const QString &base)
{
    if (behaviour.fail.contains(call.action))
        return fault(behaviour.fail.value(call.action), "Action Failed");
    if (call.action == "Browse" || call.action == "Search")
        return listing(call, {tree, behaviour, base});
    const QMap<QString, QMap<QString, QString>> fixed{
        {"GetSearchCapabilities", {{"SearchCaps", behaviour.searchCaps}}},
        {"GetSortCapabilities", {{"SortCaps", behaviour.sortCaps}}},
        {"GetSystemUpdateID", {{"Id", "1"}}}};
    if (!fixed.contains(call.action))
        return fault(invalidAction, "Invalid Action");
    return {soapAnswer(call.action, fixed.value(call.action))};
}
