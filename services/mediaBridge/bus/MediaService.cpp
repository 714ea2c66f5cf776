#include "bus/MediaService.h"

#include "core/Limits.h"
#include "core/ObjectAddress.h"

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

constexpr const char *listing = "uOffset uMax asFilter";
constexpr const char *sortedListing = "uOffset uMax asFilter sSortBy";
constexpr const char *rows = "aa{sv}Children";

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
    m_registry.onAllRemembered = [this] {
        m_firstSearch.stop();
        answerWaiting();
    };
}

void MediaService::start()
{
    m_firstSearch.start(firstSearchMs, [this] { answerWaiting(); });
    m_registry.start();
}

void MediaService::answerWaiting()
{
    constexpr int some = 16;
    constexpr unsigned pauseMs = 1;
    auto &waiting = m_waitingForServers;
    for (int i = 0; i < some && !waiting.empty() && m_bus.unsentBytes() <= limits::unsentBytes;
         ++i) {
        answerGetServers(waiting.front());
        waiting.pop_front();
    }
    if (!waiting.empty())
        m_nextAnswers.start(pauseMs, [this] { answerWaiting(); });
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
    using namespace interfaces;
    static const std::vector<Method> table{
        {introspectable, "Introspect", "", "sData", &S::introspect},
        {interfaces::properties, "Get", "sInterfaceName sPropertyName", "vValue", &S::get},
        {interfaces::properties, "GetAll", "sInterfaceName", "a{sv}Properties", &S::getAll},
        {interfaces::properties, "Set", "sInterfaceName sPropertyName vValue", "", &S::set},
        // These two are answered by libdbus.
        {peer, "Ping", "", "", nullptr},
        {peer, "GetMachineId", "", "sMachineUuid", nullptr},
        {manager, "GetServers", "", "aoServers", &S::getServers},
        {manager, "GetVersion", "", "sVersion", &S::getVersion},
        {manager, "Release", "", "", &S::release},
        {manager, "SetProtocolInfo", "sProtocolInfo", "", &S::accept},
        {manager, "PreferLocalAddresses", "bPrefer", "", &S::accept},
        {manager, "Rescan", "", "", &S::rescan},
        {interfaces::bridge, "AddServer", "sAddress", "oPath", &S::addServer},
        {interfaces::bridge, "ForgetServer", "sAddress", "", &S::forgetServer},
        {interfaces::bridge, "Stop", "", "", &S::stop},
        {device, "Cancel", "", "", &S::cancel},
        {device, "BrowseObjects", "aoObjects asFilter", rows, &S::browseObjects},
        {device, "UploadToAnyContainer", "sDisplayName sFilePath", "uUploadId oPath",
            &S::refuseChange},
        {device, "CreateContainerInAnyContainer", "sDisplayName sType asChildTypes", "oPath",
            &S::refuseChange},
        {object, "Delete", "", "", &S::refuseChange},
        {object, "Update", "a{sv}ToAddUpdate asToDelete", "", &S::refuseChange},
        {container, "ListChildren", listing, rows, &S::list},
        {container, "ListChildrenEx", sortedListing, rows, &S::list},
        {container, "ListContainers", listing, rows, &S::list, {ListKind::Containers}},
        {container, "ListContainersEx", sortedListing, rows, &S::list, {ListKind::Containers}},
        {container, "ListItems", listing, rows, &S::list, {ListKind::Items}},
        {container, "ListItemsEx", sortedListing, rows, &S::list, {ListKind::Items}},
        {container, "SearchObjects", "sQuery uOffset uMax asFilter", rows, &S::search},
        {container, "SearchObjectsEx", "sQuery uOffset uMax asFilter sSortBy",
            "aa{sv}Children uTotalItems", &S::search, {ListKind::All, true}},
        {container, "Upload", "sDisplayName sFilePath", "uUploadId oPath", &S::refuseChange},
        {container, "CreateContainer", "sDisplayName sType asChildTypes", "oPath",
            &S::refuseChange},
    };
    return table;
}

void MediaService::handle(const BusCallPtr &call)
{
    if (call->path() == managerPath) {
        invoke(call, {},
            {interfaces::manager, interfaces::bridge, interfaces::properties,
                interfaces::introspectable});
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
        call->reply(describe({interfaces::introspectable}, children));
    } else {
        call->fail({errors::unknownMethod, "There is no such method at \"" + call->path() + "\"."});
    }
    return true;
}

void MediaService::invoke(
    const BusCallPtr &call, Target target, const std::vector<const char *> &available)
{
    // Callers may leave the interface out.
    const auto isMeant = [&](const Method &method) {
        return call->member() == method.name && contains(available, method.interface)
            && (call->interface().empty() || call->interface() == method.interface);
    };
    const auto method = std::find_if(methods().begin(), methods().end(), isMeant);
    if (method == methods().end()) {
        call->fail({errors::unknownMethod,
            "There is no method \"" + call->interface() + "." + call->member() + "\" at \""
                + call->path() + "\"."});
        return;
    }
    const std::string signature = signatureOf(method->in);
    if (signature != call->signature()) {
        call->fail({errors::invalidArgs,
            call->member() + " takes (" + signature + "), not (" + call->signature() + ")."});
        return;
    }
    target.listed = method->listed;
    (this->*method->handler)(call, target);
}

std::string MediaService::describe(
    const std::vector<const char *> &interfaceNames, const std::vector<std::string> &children)
{
    return introspectionXml({methods().begin(), methods().end()}, interfaceNames, children);
}

void MediaService::introspect(const BusCallPtr &call, const Target &target)
{
    if (!target.server) {
        call->reply(describe({interfaces::introspectable, interfaces::peer, interfaces::properties,
                                 interfaces::manager, interfaces::bridge},
            {lastElement(std::string(serverRootPath))}));
        return;
    }
    // What an object is, only its server knows.
    target.server->readObject(target.objectId, {}, call->caller(),
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
            call->reply(describe(names, {}));
        });
}

void MediaService::refuseChange(const BusCallPtr &call, const Target &)
{
    call->fail({errors::notSupported,
        "This service only reads: " + call->member()
            + " would change what is on the media server. Use the server's own tools for that."});
}

} // namespace bridge
