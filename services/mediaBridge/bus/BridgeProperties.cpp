#include "bus/BridgeProperties.h"

#include "upnp/ServerRegistry.h"

#include <unistd.h>

#ifndef ORKA_VERSION
#error "the build names the version"
#endif

namespace bridge {

namespace {

const int64_t startedAt = g_get_real_time() / G_USEC_PER_SEC;

Value version(const ServerRegistry &)
{
    return std::string(ORKA_VERSION);
}

Value start(const ServerRegistry &)
{
    return startedAt;
}

Value processId(const ServerRegistry &)
{
    return static_cast<uint32_t>(getpid());
}

Value listening(const ServerRegistry &registry)
{
    return registry.listening();
}

Value troubles(const ServerRegistry &registry)
{
    return registry.troubles();
}

Value absentServers(const ServerRegistry &registry)
{
    return registry.absent();
}

Value awaitedServers(const ServerRegistry &registry)
{
    return registry.awaited();
}

} // namespace

const std::vector<BridgeProperty> &bridgeProperties()
{
    static const std::vector<BridgeProperty> table{
        {"Version", "s", &version},
        {"StartedAt", "x", &start},
        {"ProcessId", "u", &processId},
        {"Listening", "as", &listening},
        {"Troubles", "as", &troubles},
        {"AbsentServers", "as", &absentServers},
        {"AwaitedServers", "as", &awaitedServers},
    };
    return table;
}

const BridgeProperty *findBridgeProperty(std::string_view name)
{
    for (const BridgeProperty &property : bridgeProperties()) {
        if (name == property.name)
            return &property;
    }
    return nullptr;
}

PropertyMap bridgePropertyMap(const ServerRegistry &registry)
{
    PropertyMap map;
    for (const BridgeProperty &property : bridgeProperties())
        map.emplace_back(property.name, property.read(registry));
    return map;
}

} // namespace bridge
