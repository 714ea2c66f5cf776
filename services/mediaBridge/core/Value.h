#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace bridge {

struct Value;

/// D-Bus o: the path of an object.
struct ObjectPath
{
    std::string text;
};
/// D-Bus a{sb}.
struct FlagMap
{
    std::vector<std::pair<std::string, bool>> flags;
};
/// D-Bus a(sb).
struct FlagList
{
    std::vector<std::pair<std::string, bool>> flags;
};
/// D-Bus a{sv}.
using PropertyMap = std::vector<std::pair<std::string, Value>>;

/// Anything that a property can be: in this order nothing, b, i, u, x, s, o, as, ao, a{sb}, a(sb),
/// a{sv}, aa{sv}. Texts may hold any bytes but NUL; what isn't UTF-8 is replaced on its way out.
struct Value : std::variant<std::monostate, bool, int32_t, uint32_t, int64_t, std::string,
                   ObjectPath, std::vector<std::string>, std::vector<ObjectPath>, FlagMap, FlagList,
                   PropertyMap, std::vector<PropertyMap>>
{
    using variant::variant;

    /// Nothing: the object doesn't have the property.
    bool isNone() const { return index() == 0; }
};

} // namespace bridge
