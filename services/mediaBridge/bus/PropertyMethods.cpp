#include "bus/BridgeProperties.h"
#include "bus/DeviceProperties.h"
#include "bus/Introspection.h"
#include "bus/MediaService.h"
#include "core/Limits.h"
#include "core/Numbers.h"
#include "core/ObjectAddress.h"

namespace bridge {

namespace {

constexpr const char *childCount = "ChildCount";
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

/// What GetAll of one interface shows; of every interface where `name` is empty.
PropertySet propertiesOf(const std::string &name)
{
    PropertySet set;
    for (const Property &property : properties()) {
        const bool isOfObject = property.home == PropertyHome::Object;
        if (name.empty() || isOfObject == (name == interfaces::object))
            set.insert(property);
    }
    return set;
}

void replyValue(BusCall &call, const std::string &name, const Value &value)
{
    if (value.isNone())
        call.fail(unknownProperty(name));
    else
        call.replyVariant(value);
}

/// Calls back with the server's update id, or with nothing where it has none or, as the failure
/// says, doesn't answer.
void readUpdateId(const std::shared_ptr<MediaServer> &server, const BusCallPtr &call,
    std::function<void(std::optional<uint32_t>, const Failure &silence)> done)
{
    server->call(
        {"GetSystemUpdateID", {}, call->caller(), updateIdTimeoutMs, limits::capabilityBytes},
        [done = std::move(done)](const ActionReply &reply) {
            const bool isAnswer = reply.outcome == HttpOutcome::Answered;
            done(reply.isError() ? std::nullopt : parseCount(reply.answer.value("Id")),
                isAnswer ? Failure() : reply.failure);
        });
}

void countChildren(const BusCallPtr &call, const MediaServerPtr &server, const std::string &id)
{
    ListRequest first;
    first.containerId = id;
    first.max = 1;
    first.tellsTotal = true;
    ListRequest all = first;
    all.max = 0;
    const auto answer = [call](const ListEnd &end) {
        if (end.failure.name.empty())
            replyValue(*call, childCount, end.total);
        else
            call->fail(end.failure);
    };
    const auto dropRow = [](const MediaObject &) {
        return Failure();
    };
    Listing::start(server, first, call->caller(), dropRow, [=](const ListEnd &end) {
        if (end.isTotalKnown || end.rowCount == 0)
            answer(end);
        else
            Listing::start(server, all, call->caller(), dropRow, answer);
    });
}

/// A count of 0, or none, is what servers give that don't know; then the children are asked for.
void readChildCount(const BusCallPtr &call, const MediaServerPtr &server, const std::string &id,
    const std::string &interface)
{
    PropertySet wanted;
    wanted.insert(*findProperty(childCount));
    server->readObject(
        id, wanted, call->caller(), [=](const Failure &failure, const MediaObject &object) {
            const Failure problem =
                failure.name.empty() ? checkInterface(interface, object) : failure;
            if (!problem.name.empty())
                call->fail(problem);
            else if (!object.isContainer)
                call->fail(unknownProperty(childCount));
            else if (object.childCount.value_or(0) > 0)
                replyValue(*call, childCount, *object.childCount);
            else
                countChildren(call, server, id);
        });
}

} // namespace

void MediaService::get(const BusCallPtr &call, const Target &target)
{
    Arguments arguments = call->arguments();
    const std::string interface = arguments.text();
    const std::string name = arguments.text();
    const bool isRoot = target.objectId == rootObjectId;
    const bool isOfDevice = isRoot
        && (interface == interfaces::device || (interface.empty() && findDeviceProperty(name)));
    if (!target.server)
        getOfManager(call, interface, name);
    else if (isOfDevice)
        getDeviceProperty(call, target, name);
    else if (isMediaInterface(interface))
        getObjectProperty(call, target, interface, name);
    else
        call->fail(unknownInterface(interface));
}

/// The manager has properties of the bridge's own interface only.
void MediaService::getOfManager(
    const BusCallPtr &call, const std::string &interface, const std::string &name)
{
    const bool isOfBridge = interface.empty() || interface == interfaces::bridge;
    const BridgeProperty *property = isOfBridge ? findBridgeProperty(name) : nullptr;
    replyValue(*call, name, property ? property->read(m_registry) : Value());
}

void MediaService::getAllOfManager(const BusCallPtr &call, const std::string &interface)
{
    if (interface.empty() || interface == interfaces::bridge)
        call->reply(bridgePropertyMap(m_registry));
    else if (interface == interfaces::manager)
        call->reply(PropertyMap());
    else
        call->fail(unknownInterface(interface));
}

void MediaService::getDeviceProperty(
    const BusCallPtr &call, const Target &target, const std::string &name)
{
    const auto &server = target.server;
    const DeviceProperty *property = findDeviceProperty(name);
    if (!property) {
        call->fail(unknownProperty(name));
        return;
    }
    if (!property->read) {
        readUpdateId(server, call, [call](std::optional<uint32_t> id, const Failure &silence) {
            if (silence.name.empty())
                replyValue(*call, systemUpdateId, id ? Value(*id) : Value());
            else
                call->fail(silence);
        });
        return;
    }
    replyValue(*call, name, property->read(*server));
}

void MediaService::getObjectProperty(const BusCallPtr &call, const Target &target,
    const std::string &interface, const std::string &name)
{
    const Property *property = findProperty(name);
    if (!property) {
        call->fail(unknownProperty(name));
        return;
    }
    if (name == childCount) {
        getChildCount(call, target, interface);
        return;
    }
    PropertySet wanted;
    wanted.insert(*property);
    target.server->readObject(target.objectId, wanted, call->caller(),
        [call, interface, property, server = target.server](
            const Failure &failure, const MediaObject &object) {
            const Failure problem =
                failure.name.empty() ? checkInterface(interface, object) : failure;
            if (problem.name.empty())
                replyValue(
                    *call, property->name, propertyValue(object, *property, server->context()));
            else
                call->fail(problem);
        });
}

/// A listing of the container that is under way tells it, too.
void MediaService::getChildCount(
    const BusCallPtr &call, const Target &target, const std::string &interface)
{
    const auto listing = m_listings.find(call->path());
    const auto read = [=, server = target.server, id = target.objectId] {
        readChildCount(call, server, id, interface);
    };
    if (!listing || interface == interfaces::item) {
        read();
        return;
    }
    listing->whenTotalIsKnown([call, read, weak = std::weak_ptr(listing)](auto total) {
        const auto ended = weak.lock();
        if (total)
            replyValue(*call, childCount, *total);
        else if (ended && ended->silence())
            call->fail(*ended->silence());
        else
            read();
    });
}

void MediaService::getAll(const BusCallPtr &call, const Target &target)
{
    const std::string interface = call->arguments().text();
    const bool isRoot = target.objectId == rootObjectId;
    if (isWithoutProperties(interface))
        call->reply(PropertyMap());
    else if (!target.server)
        getAllOfManager(call, interface);
    else if (isRoot && interface == interfaces::device)
        getAllOfDevice(call, target);
    else if (isMediaInterface(interface))
        getAllOfObject(call, target, interface);
    else
        call->fail(unknownInterface(interface));
}

void MediaService::getAllOfDevice(const BusCallPtr &call, const Target &target)
{
    readUpdateId(target.server, call,
        [call, server = target.server](std::optional<uint32_t> id, const Failure &) {
            PropertyMap map = devicePropertyMap(*server);
            if (id)
                map.emplace_back(systemUpdateId, *id);
            call->reply(map);
        });
}

void MediaService::getAllOfObject(
    const BusCallPtr &call, const Target &target, const std::string &interface)
{
    target.server->readObject(target.objectId, PropertySet::all(), call->caller(),
        [call, interface, target](const Failure &failure, const MediaObject &object) {
            const Failure problem =
                failure.name.empty() ? checkInterface(interface, object) : failure;
            if (!problem.name.empty()) {
                call->fail(problem);
                return;
            }
            const auto &server = *target.server;
            PropertyMap map = propertyMap(object, propertiesOf(interface), server.context());
            if (interface.empty() && target.objectId == rootObjectId) {
                PropertyMap ofDevice = devicePropertyMap(server);
                std::move(ofDevice.begin(), ofDevice.end(), std::back_inserter(map));
            }
            call->reply(map);
        });
}

void MediaService::set(const BusCallPtr &call, const Target &)
{
    Arguments arguments = call->arguments();
    arguments.text();
    call->fail({errors::propertyReadOnly,
        "Property \"" + arguments.text() + "\" can't be set: this service only reads."});
}

} // namespace bridge
