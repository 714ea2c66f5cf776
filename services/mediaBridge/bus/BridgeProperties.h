#pragma once

#include "core/Value.h"

#include <string_view>
#include <vector>

namespace bridge {

class ServerRegistry;

/// A property of the bridge itself, on the manager object.
struct BridgeProperty
{
    const char *name;
    const char *signature;
    Value (*read)(const ServerRegistry &);
};

const std::vector<BridgeProperty> &bridgeProperties();

/// Null for a name that none of them has.
const BridgeProperty *findBridgeProperty(std::string_view name);

PropertyMap bridgePropertyMap(const ServerRegistry &registry);

} // namespace bridge
