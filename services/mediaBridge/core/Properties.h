#pragma once

#include <array>
#include <bitset>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bridge {

/// The properties of media objects, in the order in which property maps hold them.
enum class Prop {
    DisplayName,
    Path,
    Parent,
    Type,
    TypeEx,
    Creator,
    Restricted,
    DLNAManaged,
    ObjectUpdateID,
    ChildCount,
    Searchable,
    CreateClasses,
    ContainerUpdateID,
    TotalDeletedChildCount,
    RefPath,
    Artist,
    Artists,
    Album,
    Genre,
    Date,
    TrackNumber,
    AlbumArtURL,
    URLs,
    MIMEType,
    DLNAProfile,
    Size,
    Duration,
    Bitrate,
    SampleRate,
    BitsPerSample,
    Width,
    Height,
    ColorDepth,
    Resources,
};
inline constexpr size_t propCount = static_cast<size_t>(Prop::Resources) + 1;

/// Where a property belongs. What an object's media has is shown on MediaItem2 for an item and on
/// MediaContainer2 for a container that has it too (albums with a cover, playable folders).
enum class PropHome { Object, Container, Media };

struct PropInfo
{
    Prop prop;
    /// Name on D-Bus.
    const char *name;
    /// D-Bus signature of the value.
    const char *signature;
    PropHome home;
    /// Name in search and sort criteria; null where a server can't search by it.
    const char *didlName;
    /// What a Browse filter has to name besides what every server always sends; null for nothing.
    const char *didlFilter;
};

/// A set of properties, as asked for by a filter.
class PropertySet
{
public:
    void insert(Prop prop) { m_bits.set(static_cast<size_t>(prop)); }
    bool contains(Prop prop) const { return m_bits.test(static_cast<size_t>(prop)); }
    bool isAll() const { return m_bits.all(); }
    static PropertySet all();

private:
    std::bitset<propCount> m_bits;
};

/// Every property, in their order.
const std::array<PropInfo, propCount> &properties();
const PropInfo &propertyInfo(Prop prop);
/// Null for a name that isn't a property's. Case matters.
const PropInfo *findProperty(std::string_view name);
/// Every property that goes by this DIDL-Lite name: Type and TypeEx share upnp:class.
std::vector<const PropInfo *> propertiesOfDidlName(std::string_view didlName);

/// The properties that a client's filter names: "*" alone means all, unknown names are left out.
PropertySet propertySetFromFilter(const std::vector<std::string> &filter);
/// The Browse filter with which a server sends what `set` needs and as little else as it can.
std::string didlFilter(const PropertySet &set);

} // namespace bridge
