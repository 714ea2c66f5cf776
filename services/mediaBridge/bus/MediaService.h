#pragma once

#include "bus/BusService.h"
#include "bus/Introspection.h"
#include "bus/ListingsUnderWay.h"
#include "upnp/Listing.h"
#include "upnp/ServerRegistry.h"

#include <deque>

namespace bridge {

/// Answers every call: finds the object, checks that it has the method and that the arguments fit,
/// and does what is asked. Main thread only.
class MediaService
{
public:
    MediaService(BusService &bus, ServerRegistry &registry);

    /// Starts the search for servers. GetServers waits for its first round, so that a client that
    /// has only just started the service doesn't get an empty list for "nobody there". Where
    /// servers are remembered, it waits only until all of them are there.
    void start();

    /// A client wants the program to end.
    std::function<void()> onStop;

private:
    /// What a method that lists gives.
    struct Listed
    {
        ListKind kind = ListKind::All;
        /// How many there are in all, besides.
        bool withTotal = false;
    };
    /// The object that a call is for.
    struct Target
    {
        std::shared_ptr<MediaServer> server;
        std::string objectId;
        Listed listed = {};
    };
    using Handler = void (MediaService::*)(const BusCallPtr &, const Target &);
    struct Method : MethodDeclaration
    {
        Handler handler;
        Listed listed = {};
    };
    /// What isn't in it can't be called, and introspection shows it: the two are one.
    static const std::vector<Method> &methods();

    // MediaService.cpp: routing and introspection
    void answerWaiting();
    void serverChanged(const MediaServer &server, bool isThere);
    void handle(const BusCallPtr &call);
    void handleObject(const BusCallPtr &call);
    bool introspectAncestor(const BusCallPtr &call);
    void invoke(const BusCallPtr &call, Target target, const std::vector<const char *> &available);
    static std::string describe(
        const std::vector<const char *> &interfaceNames, const std::vector<std::string> &children);
    void introspect(const BusCallPtr &call, const Target &target);
    void refuseChange(const BusCallPtr &call, const Target &target);

    // ManagerMethods.cpp
    void getServers(const BusCallPtr &call, const Target &);
    void getVersion(const BusCallPtr &call, const Target &);
    void release(const BusCallPtr &call, const Target &);
    void accept(const BusCallPtr &call, const Target &);
    void rescan(const BusCallPtr &call, const Target &);
    void cancel(const BusCallPtr &call, const Target &target);
    void answerGetServers(const BusCallPtr &call);

    // BridgeMethods.cpp
    void addServer(const BusCallPtr &call, const Target &);
    void forgetServer(const BusCallPtr &call, const Target &);
    void stop(const BusCallPtr &call, const Target &);

    // ContainerMethods.cpp
    void list(const BusCallPtr &call, const Target &target);
    void search(const BusCallPtr &call, const Target &target);
    void browseObjects(const BusCallPtr &call, const Target &target);
    void runListing(const BusCallPtr &call, const Target &target, ListRequest request);

    // PropertyMethods.cpp
    void get(const BusCallPtr &call, const Target &target);
    void getAll(const BusCallPtr &call, const Target &target);
    void getOfManager(
        const BusCallPtr &call, const std::string &interface, const std::string &name);
    void getAllOfManager(const BusCallPtr &call, const std::string &interface);
    void getAllOfDevice(const BusCallPtr &call, const Target &target);
    void getAllOfObject(const BusCallPtr &call, const Target &target, const std::string &interface);
    void set(const BusCallPtr &call, const Target &target);
    void getDeviceProperty(const BusCallPtr &call, const Target &target, const std::string &name);
    void getObjectProperty(const BusCallPtr &call, const Target &target,
        const std::string &interface, const std::string &name);
    void getChildCount(const BusCallPtr &call, const Target &target, const std::string &interface);

    BusService &m_bus;
    ServerRegistry &m_registry;
    std::deque<BusCallPtr> m_waitingForServers;
    ListingsUnderWay m_listings;
    Timer m_firstSearch;
    Timer m_nextAnswers;
};

} // namespace bridge
