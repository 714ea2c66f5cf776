#include "bus/DeviceProperties.h"
#include "bus/Introspection.h"
#include "bus/MediaService.h"
#include "core/Numbers.h"
#include "core/ObjectPath.h"

namespace bridge {

namespace {

constexpr const char *systemUpdateId = "SystemUpdateID";
constexpr unsigned updateIdTimeoutMs = 2'000;

Failure unknownProperty(const std::string &name)
{
    return {errors::unknownProperty, "There is no value for property \"" + name + "\"."};
}

Failure unknownInterface(const std::string &name)
{
    return {errors::unknownInterface, "Interface \"" + name + "\" is unknown here."};
}

bool isMediaInterface(const std::string &name)
{
    return name.empty() || name == interfaces::object || name == interfaces::container
        || name == interfaces::item;
}

bool isWithoutProperties(const std::string &name)
{
    return name == interfaces::properties || name == interfaces::introspectable
        || name == interfaces::peer;
}

/// The failure's name is empty where an object has this interface.
Failure checkInterface(const std::string &name, const MediaObject &object)
{
    if (object.isContainer && name == interfaces::item)
        return {errors::unknownInterface, "Interface not supported on container."};
    if (!object.isContainer && name == interfaces::container)
        return {errors::unknownInterface, "Interface not supported on item."};
    return {};
}

bool isDeviceProperty(const std::string &name)
{
    auto *info = const_cast<GDBusInterfaceInfo *>(interfaceInfo(interfaces::device));
    return g_dbus_interface_info_lookup_property(info, name.c_str()) != nullptr;
}

/// What GetAll of one interface shows; of every interface where `name` is empty.
PropertySet propertiesOf(const std::string &name)
{
    PropertySet set;
    for (const PropInfo &info : properties()) {
        const bool isOfObject = info.home == PropHome::Object;
        if (name.empty() || isOfObject == (name == interfaces::object))
            set.insert(info.prop);
    }
    return set;
}

void replyValue(BusCall &call, const std::string &name, GVariant *value)
{
    if (value)
        call.reply(g_variant_new("(v)", value));
    else
        call.fail(unknownProperty(name));
}

void addDeviceProperties(GVariantBuilder &map, const MediaServer &server)
{
    for (const std::string &name : devicePropertyNames()) {
        if (GVariant *value = deviceProperty(server, name))
            g_variant_builder_add(&map, "{sv}", name.c_str(), value);
    }
}

/// Calls back with the server's update id, or with nothing where it has none.
void readUpdateId(const std::shared_ptr<MediaServer> &server, const BusCallPtr &call,
    std::function<void(std::optional<uint32_t>)> done)
{
    server->call("GetSystemUpdateID", "GetSystemUpdateID", {}, updateIdTimeoutMs,
        call->cancellable(), [done = std::move(done)](const ActionReply &reply) {
            done(reply.isError() ? std::nullopt : parseAs<uint32_t>(reply.answer.value("Id")));
        });
}

} // namespace

void MediaService::get(const BusCallPtr &call, const Target &target)
{
    const char *interface = nullptr;
    const char *name = nullptr;
    g_variant_get(call->arguments(), "(&s&s)", &interface, &name);
    const bool isRoot = target.objectId == rootObjectId;
    const bool isOfDevice = isRoot
        && (interface == std::string(interfaces::device)
            || (interface[0] == '\0' && isDeviceProperty(name)));
    if (!target.server)
        call->fail(unknownProperty(name));
    else if (isOfDevice)
        getDeviceProperty(call, target, name);
    else if (isMediaInterface(interface))
        getObjectProperty(call, target, interface, name);
    else
        call->fail(unknownInterface(interface));
}

void MediaService::getDeviceProperty(
    const BusCallPtr &call, const Target &target, const std::string &name)
{
    const auto &server = target.server;
    if (name == systemUpdateId) {
        readUpdateId(server, call, [call](std::optional<uint32_t> id) {
            replyValue(*call, systemUpdateId, id ? g_variant_new_uint32(*id) : nullptr);
        });
        return;
    }
    GVariant *value = deviceProperty(*server, name);
    const bool mayBeUnread = name == "SearchCaps" || name == "SortCaps";
    if (value || !mayBeUnread) {
        replyValue(*call, name, value);
        return;
    }
    server->readCapabilities(
        [server, call, name] { replyValue(*call, name, deviceProperty(*server, name)); });
}

void MediaService::getObjectProperty(const BusCallPtr &call, const Target &target,
    const std::string &interface, const std::string &name)
{
    const PropInfo *info = findProperty(name);
    if (!info) {
        call->fail(unknownProperty(name));
        return;
    }
    if (info->prop == Prop::ChildCount) {
        getChildCount(call, target, interface);
        return;
    }
    PropertySet wanted;
    wanted.insert(info->prop);
    target.server->readObject(target.objectId, wanted, call->cancellable(),
        [call, interface, info, server = target.server](
            const Failure &failure, const MediaObject &object) {
            const Failure problem =
                failure.name.empty() ? checkInterface(interface, object) : failure;
            if (problem.name.empty())
                replyValue(*call, info->name, propertyValue(object, info->prop, server->context()));
            else
                call->fail(problem);
        });
}

/// A count of 0, or none, is what servers give that don't know; then the children are asked for.
void MediaService::getChildCount(
    const BusCallPtr &call, const Target &target, const std::string &interface)
{
    PropertySet wanted;
    wanted.insert(Prop::ChildCount);
    target.server->readObject(target.objectId, wanted, call->cancellable(),
        [this, call, target, interface](const Failure &failure, const MediaObject &object) {
            const Failure problem =
                failure.name.empty() ? checkInterface(interface, object) : failure;
            if (!problem.name.empty())
                call->fail(problem);
            else if (!object.isContainer)
                call->fail(unknownProperty("ChildCount"));
            else if (object.childCount.value_or(0) > 0)
                replyValue(*call, "ChildCount", g_variant_new_uint32(*object.childCount));
            else
                countChildren(call, target);
        });
}

void MediaService::countChildren(const BusCallPtr &call, const Target &target)
{
    ListRequest first;
    first.containerId = target.objectId;
    first.max = 1;
    ListRequest all = first;
    all.max = 0;
    const size_t maxBytes = m_bus.maxReplyBytes();
    const auto answer = [call](const ListResult &result) {
        if (result.failure.name.empty())
            replyValue(*call, "ChildCount", g_variant_new_uint32(result.total));
        else
            call->fail(result.failure);
    };
    Listing::start(target.server, first, maxBytes, call->cancellable(),
        [=, server = target.server](const ListResult &result) {
            if (result.isTotalKnown || result.rows.empty())
                answer(result);
            else
                Listing::start(server, all, maxBytes, call->cancellable(), answer);
        });
}

void MediaService::getAll(const BusCallPtr &call, const Target &target)
{
    const char *name = nullptr;
    g_variant_get(call->arguments(), "(&s)", &name);
    const std::string interface = name;
    const bool isRoot = target.objectId == rootObjectId;
    const bool isManager =
        !target.server && (interface.empty() || interface == interfaces::manager);
    if (isManager || isWithoutProperties(interface))
        call->reply(g_variant_new("(@a{sv})", g_variant_new("a{sv}", nullptr)));
    else if (!target.server)
        call->fail(unknownInterface(interface));
    else if (isRoot && interface == interfaces::device)
        getAllOfDevice(call, target);
    else if (isMediaInterface(interface))
        getAllOfObject(call, target, interface);
    else
        call->fail(unknownInterface(interface));
}

void MediaService::getAllOfDevice(const BusCallPtr &call, const Target &target)
{
    readUpdateId(target.server, call, [call, server = target.server](std::optional<uint32_t> id) {
        GVariantBuilder map;
        g_variant_builder_init(&map, G_VARIANT_TYPE_VARDICT);
        addDeviceProperties(map, *server);
        if (id)
            g_variant_builder_add(&map, "{sv}", systemUpdateId, g_variant_new_uint32(*id));
        call->reply(g_variant_new("(a{sv})", &map));
    });
}

void MediaService::getAllOfObject(
    const BusCallPtr &call, const Target &target, const std::string &interface)
{
    target.server->readObject(target.objectId, PropertySet::all(), call->cancellable(),
        [call, interface, target](const Failure &failure, const MediaObject &object) {
            const Failure problem =
                failure.name.empty() ? checkInterface(interface, object) : failure;
            if (!problem.name.empty()) {
                call->fail(problem);
                return;
            }
            const auto &server = *target.server;
            GVariantBuilder map;
            g_variant_builder_init(&map, G_VARIANT_TYPE_VARDICT);
            const Variant values =
                ownVariant(propertyMap(object, propertiesOf(interface), server.context()));
            GVariantIter iter;
            g_variant_iter_init(&iter, values.get());
            while (GVariant *entry = g_variant_iter_next_value(&iter)) {
                g_variant_builder_add_value(&map, entry);
                g_variant_unref(entry);
            }
            if (interface.empty() && target.objectId == rootObjectId)
                addDeviceProperties(map, server);
            call->reply(g_variant_new("(a{sv})", &map));
        });
}

void MediaService::set(const BusCallPtr &call, const Target &)
{
    const char *name = nullptr;
    g_variant_get_child(call->arguments(), 1, "&s", &name);
    call->fail({errors::propertyReadOnly,
        "Property \"" + std::string(name) + "\" can't be set: this service only reads."});
}

} // namespace bridge
