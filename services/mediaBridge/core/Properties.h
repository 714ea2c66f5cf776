#pragma once

#include "core/MediaObject.h"
#include "core/Value.h"

#include <array>
#include <bitset>
#include <string>
#include <string_view>
#include <vector>

namespace bridge {

/// Where a property is shown: of every object on MediaObject2; of a container on MediaContainer2;
/// of an object's media on MediaItem2, and on MediaContainer2 for a container that has it too
/// (albums with a cover, playable folders), but what only a file can have.
enum class PropertyHome { Object, Container, Media, File };

/// What of a server its objects' properties depend on.
struct ServerContext
{
    /// D-Bus path of the server.
    std::string path;
    /// Where relative URLs start from.
    std::string baseUrl;
};

/// A property of media objects. One line of its table is all that is said of it anywhere.
struct Property
{
    /// Name on D-Bus.
    const char *name;
    /// D-Bus signature of the value.
    const char *signature;
    PropertyHome home;
    /// Name in search and sort criteria; null where a server can't search by it.
    const char *didlName;
    /// What a Browse filter has to name besides what every server always sends; null for nothing.
    const char *didlFilter;
    /// One of these gives the value, or nothing where the object has none. The second is asked with
    /// the object's primary resource, and with each in the list of all resources.
    Value (*ofObject)(const MediaObject &, const ServerContext &);
    Value (*ofResource)(const Resource &, const ServerContext &) = nullptr;
};

inline constexpr size_t propertyCount = 34;

/// Every property, in the order in which property maps hold them.
const std::array<Property, propertyCount> &properties();
/// Null for a name that isn't a property's. Case matters.
const Property *findProperty(std::string_view name);
/// Every property that goes by this DIDL-Lite name: Type and TypeEx share upnp:class.
std::vector<const Property *> propertiesOfDidlName(std::string_view didlName);

/// A set of properties, as asked for by a filter.
class PropertySet
{
public:
    /// `property` is one of properties().
    void insert(const Property &property) { m_bits.set(indexOf(property)); }
    bool contains(const Property &property) const { return m_bits.test(indexOf(property)); }
    bool isAll() const { return m_bits.all(); }
    static PropertySet all();

private:
    static size_t indexOf(const Property &property);

    std::bitset<propertyCount> m_bits;
};

/// The properties that a client's filter names: "*" alone means all, unknown names are left out.
PropertySet propertySetFromFilter(const std::vector<std::string> &filter);
/// The Browse filter with which a server sends what `set` needs and as little else as it can.
std::string didlFilter(const PropertySet &set);

/// The value of one property; nothing where the object has none.
Value propertyValue(
    const MediaObject &object, const Property &property, const ServerContext &server);

/// The wanted properties that the object has.
PropertyMap propertyMap(
    const MediaObject &object, const PropertySet &wanted, const ServerContext &server);

} // namespace bridge
