#pragma once

#include "core/Glib.h"
#include "core/MediaObject.h"
#include "core/Properties.h"

#include <array>
#include <string>

namespace bridge {

/// What of a server its objects' properties depend on.
struct ServerContext
{
    /// D-Bus path of the server.
    std::string path;
    /// Where relative URLs start from.
    std::string baseUrl;
};

/// The value of one property, floating; null where the object has none. Any thread.
GVariant *propertyValue(const MediaObject &object, Prop prop, const ServerContext &server);

/// a{sv} of the wanted properties that the object has, floating. Any thread.
GVariant *propertyMap(
    const MediaObject &object, const PropertySet &wanted, const ServerContext &server);

/// Maps one object after the other. Neighbours in a list share most texts (artist, album, type), so
/// an entry is made anew only where it changes: a third of the time and memory of a long list.
/// One thread at a time; what it returns may go to another.
class PropertyMapper
{
public:
    PropertyMapper(const PropertySet &wanted, const ServerContext &server);

    /// As propertyMap.
    GVariant *map(const MediaObject &object);

private:
    struct LastEntry
    {
        std::string source;
        bool isContainer = false;
        Variant entry;
    };
    GVariant *sharedEntry(const MediaObject &object, Prop prop, const std::string &source);

    const PropertySet &m_wanted;
    const ServerContext &m_server;
    std::array<LastEntry, propCount> m_last;
};

/// A D-Bus text, floating: what isn't UTF-8 in it is replaced.
GVariant *textVariant(const std::string &text);

} // namespace bridge
