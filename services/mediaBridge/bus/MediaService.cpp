#include "bus/MediaService.h"

#include "bus/Introspection.h"
#include "core/ObjectPath.h"

#include <algorithm>

namespace bridge {

namespace {

// A search asks for answers within a second; the descriptions come after.
constexpr unsigned firstSearchMs = 1'300;

std::string lastElement(const std::string &path)
{
    return path.substr(path.rfind('/') + 1);
}

Failure noSuchObject(const std::string &path)
{
    return {errors::unknownMethod, "Object does not exist at path \"" + path + "\"."};
}

bool contains(const std::vector<const char *> &names, const std::string &name)
{
    return std::any_of(
        names.begin(), names.end(), [&](const char *known) { return name == known; });
}

/// The interface that a call means: callers may leave it out.
std::string interfaceOf(const BusCall &call, const std::vector<const char *> &available)
{
    if (!call.interface().empty())
        return call.interface();
    for (const char *name : available) {
        auto *info = const_cast<GDBusInterfaceInfo *>(interfaceInfo(name));
        if (g_dbus_interface_info_lookup_method(info, call.member().c_str()))
            return name;
    }
    return {};
}

} // namespace

MediaService::MediaService(BusService &bus, ServerRegistry &registry)
    : m_bus(bus)
    , m_registry(registry)
{
    m_bus.onCall = [this](const BusCallPtr &call) {
        handle(call);
    };
    m_registry.onChange = [this](const std::shared_ptr<MediaServer> &server, bool isThere) {
        serverChanged(*server, isThere);
    };
}

void MediaService::start()
{
    m_firstSearch.start(firstSearchMs, [this] {
        for (const BusCallPtr &call : std::exchange(m_waitingForServers, {}))
            answerGetServers(call);
    });
    m_registry.start();
}

void MediaService::serverChanged(const MediaServer &server, bool isThere)
{
    const std::string &path = server.context().path;
    m_bus.emitManagerSignal(isThere ? "FoundServer" : "LostServer", path);
    if (!isThere)
        m_bus.cancelCalls(path, {});
}

const std::vector<MediaService::Method> &MediaService::methods()
{
    using S = MediaService;
    static const std::vector<Method> table{
        {interfaces::introspectable, "Introspect", &S::introspect},
        {interfaces::properties, "Get", &S::get},
        {interfaces::properties, "GetAll", &S::getAll},
        {interfaces::properties, "Set", &S::set},
        {interfaces::manager, "GetServers", &S::getServers},
        {interfaces::manager, "GetVersion", &S::getVersion},
        {interfaces::manager, "Release", &S::release},
        {interfaces::manager, "SetProtocolInfo", &S::accept},
        {interfaces::manager, "PreferLocalAddresses", &S::accept},
        {interfaces::manager, "Rescan", &S::rescan},
        {interfaces::device, "Cancel", &S::cancel},
        {interfaces::device, "BrowseObjects", &S::browseObjects},
        {interfaces::device, "UploadToAnyContainer", &S::refuseChange},
        {interfaces::device, "CreateContainerInAnyContainer", &S::refuseChange},
        {interfaces::object, "Delete", &S::refuseChange},
        {interfaces::object, "Update", &S::refuseChange},
        {interfaces::container, "ListChildren", &S::listChildren},
        {interfaces::container, "ListChildrenEx", &S::listChildren},
        {interfaces::container, "ListContainers", &S::listContainers},
        {interfaces::container, "ListContainersEx", &S::listContainers},
        {interfaces::container, "ListItems", &S::listItems},
        {interfaces::container, "ListItemsEx", &S::listItems},
        {interfaces::container, "SearchObjects", &S::search},
        {interfaces::container, "SearchObjectsEx", &S::search},
        {interfaces::container, "Upload", &S::refuseChange},
        {interfaces::container, "CreateContainer", &S::refuseChange},
    };
    return table;
}

void MediaService::handle(const BusCallPtr &call)
{
    if (call->path() == managerPath) {
        invoke(call, {}, {interfaces::manager, interfaces::properties, interfaces::introspectable});
    } else if (!introspectAncestor(call)) {
        handleObject(call);
    }
}

void MediaService::handleObject(const BusCallPtr &call)
{
    const std::string serverParent = std::string(serverRootPath) + "/";
    if (call->path().compare(0, serverParent.size(), serverParent) != 0) {
        call->fail(noSuchObject(call->path()));
        return;
    }
    const auto address = parseObjectPath(call->path());
    if (!address) {
        call->fail({errors::badPath, "The object path is badly formed."});
        return;
    }
    const Target target{m_registry.find(serverParent + address->serverName), address->objectId};
    if (!target.server) {
        call->fail(noSuchObject(call->path()));
        return;
    }
    std::vector<const char *> available{interfaces::properties, interfaces::introspectable,
        interfaces::object, interfaces::container, interfaces::item};
    if (target.objectId == rootObjectId)
        available.push_back(interfaces::device);
    invoke(call, target, available);
}

/// The nodes above servers and manager hold nothing but each other.
bool MediaService::introspectAncestor(const BusCallPtr &call)
{
    const std::string path = call->path() == "/" ? "" : call->path();
    std::vector<std::string> children;
    if (path == serverRootPath) {
        for (const auto &server : m_registry.servers())
            children.push_back(lastElement(server->context().path));
    } else if (path.size() < managerPath.size()) {
        const std::string_view rest = managerPath.substr(path.size() + 1);
        children.emplace_back(rest.substr(0, rest.find('/')));
    } else {
        return false;
    }
    if (call->member() == "Introspect") {
        call->reply(introspectionXml({interfaces::introspectable}, children));
    } else {
        call->fail({errors::unknownMethod, "There is no such method at \"" + call->path() + "\"."});
    }
    return true;
}

void MediaService::invoke(
    const BusCallPtr &call, const Target &target, const std::vector<const char *> &available)
{
    const std::string interface = interfaceOf(*call, available);
    const std::string where = "\"" + interface + "." + call->member() + "\"";
    auto *info = const_cast<GDBusInterfaceInfo *>(interfaceInfo(interface));
    const auto *declared =
        info ? g_dbus_interface_info_lookup_method(info, call->member().c_str()) : nullptr;
    if (!declared || !contains(available, interface)) {
        call->fail({errors::unknownMethod,
            "There is no method " + where + " at \"" + call->path() + "\"."});
        return;
    }
    const std::string signature = inputSignature(declared);
    if (signature != call->signature()) {
        call->fail({errors::invalidArgs,
            where + " takes (" + signature + "), not (" + call->signature() + ")."});
        return;
    }
    for (const Method &method : methods()) {
        if (interface == method.interface && call->member() == method.name)
            (this->*method.handler)(call, target);
    }
}

void MediaService::introspect(const BusCallPtr &call, const Target &target)
{
    if (!target.server) {
        call->reply(introspectionXml({interfaces::introspectable, interfaces::peer,
                                         interfaces::properties, interfaces::manager},
            {lastElement(std::string(serverRootPath))}));
        return;
    }
    // What an object is, only its server knows.
    target.server->readObject(target.objectId, {}, call->cancellable(),
        [call, isRoot = target.objectId == rootObjectId](
            const Failure &failure, const MediaObject &object) {
            if (!failure.name.empty()) {
                call->fail(failure);
                return;
            }
            std::vector<const char *> names{interfaces::introspectable, interfaces::peer,
                interfaces::properties, interfaces::object,
                object.isContainer ? interfaces::container : interfaces::item};
            if (isRoot)
                names.push_back(interfaces::device);
            call->reply(introspectionXml(names, {}));
        });
}

void MediaService::refuseChange(const BusCallPtr &call, const Target &)
{
    call->fail({errors::notSupported,
        "This service only reads: " + call->member()
            + " would change what is on the media server. Use the server's own tools for that."});
}

} // namespace bridge
