#include "core/Bitrate.h"
#include "core/Glib.h"
#include "core/MediaClass.h"
#include "core/ObjectAddress.h"
#include "core/Properties.h"

#include <algorithm>
#include <limits>

namespace bridge {

namespace {

Value valueOf(const std::string &value)
{
    return value.empty() ? Value() : Value(value);
}

Value pathOf(const ServerContext &server, std::string_view id)
{
    std::string value = objectPath(server.path, id);
    return value.empty() ? Value() : Value(ObjectPath{std::move(value)});
}

template<typename T>
Value valueOf(const std::optional<T> &value)
{
    return value ? Value(*value) : Value();
}

template<typename T>
Value valueOf(std::vector<T> list)
{
    return list.empty() ? Value() : Value(std::move(list));
}

template<auto field>
Value member(const MediaObject &object, const ServerContext &)
{
    return valueOf(object.*field);
}

template<auto field>
Value member(const Resource &resource, const ServerContext &)
{
    return valueOf(resource.*field);
}

Value seconds(const Resource &resource, const ServerContext &)
{
    if (!resource.duration)
        return {};
    constexpr int64_t limit = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::min(*resource.duration / 1000, limit));
}

/// A year or a month is its first day: half a date is none for most readers.
Value date(const MediaObject &object, const ServerContext &)
{
    const std::string &given = object.date;
    constexpr size_t year = 4, month = 7;
    const bool isYear = given.size() == year;
    const bool isMonth = given.size() == month && given[year] == '-';
    std::string digits = given;
    if (isMonth)
        digits.erase(year, 1);
    const bool isPlain = digits.find_first_not_of("0123456789") == std::string::npos;
    if (!isPlain || (!isYear && !isMonth))
        return valueOf(given);
    return given + (isYear ? "-01-01" : "-01");
}

Value urls(const Resource &resource, const ServerContext &server)
{
    std::string url = absoluteUrl(resource.uri, server.baseUrl);
    return url.empty() ? Value() : Value(std::vector<std::string>{std::move(url)});
}

/// Of each resource what the primary one's properties show, and where it is.
Value resources(const MediaObject &object, const ServerContext &server)
{
    std::vector<PropertyMap> maps;
    for (const Resource &resource : object.resources) {
        PropertyMap &map = maps.emplace_back();
        const auto add = [&map](const char *name, Value value) {
            if (!value.isNone())
                map.emplace_back(name, std::move(value));
        };
        add("URL", valueOf(absoluteUrl(resource.uri, server.baseUrl)));
        for (const Property &property : properties()) {
            if (property.ofResource && property.ofResource != urls)
                add(property.name, property.ofResource(resource, server));
        }
    }
    return valueOf(std::move(maps));
}

Value createClasses(const MediaObject &object, const ServerContext &)
{
    FlagList classes;
    for (const auto &[upnpClass, includeDerived] : object.createClasses) {
        const bool isContainer = upnpClass.rfind("object.container", 0) == 0;
        classes.flags.emplace_back(mediaTypeOfClass(upnpClass, isContainer).typeEx, includeDerived);
    }
    return classes.flags.empty() ? Value() : Value(std::move(classes));
}

/// The bits of the DLNA guidelines' `dlna:dlnaManaged`.
Value dlnaManaged(const MediaObject &object, const ServerContext &)
{
    if (!object.dlnaManaged)
        return {};
    const auto has = [&](unsigned bit) {
        return (*object.dlnaManaged & (1U << bit)) != 0;
    };
    return FlagMap{{{"Upload", has(0)}, {"CreateContainer", has(1)}, {"Delete", has(2)},
        {"UploadDelete", has(3)}, {"ChangeMeta", has(4)}}};
}

/// The root has no parent ("-1" on most servers) and is its own, so that walking upwards ends.
Value parent(const MediaObject &object, const ServerContext &server)
{
    const bool isTop = object.id == rootObjectId || object.parentId == "-1";
    return pathOf(server, isTop ? rootObjectId : std::string_view(object.parentId));
}

Value path(const MediaObject &object, const ServerContext &server)
{
    return pathOf(server, object.id);
}

Value refPath(const MediaObject &object, const ServerContext &server)
{
    return pathOf(server, object.refId);
}

Value type(const MediaObject &object, const ServerContext &)
{
    return std::string(mediaTypeOfClass(object.upnpClass, object.isContainer).type);
}

Value typeEx(const MediaObject &object, const ServerContext &)
{
    return mediaTypeOfClass(object.upnpClass, object.isContainer).typeEx;
}

Value artist(const MediaObject &object, const ServerContext &)
{
    return object.artists.empty() ? Value() : valueOf(object.artists.front());
}

Value albumArt(const MediaObject &object, const ServerContext &server)
{
    return valueOf(absoluteUrl(object.albumArtUri, server.baseUrl));
}

Value bitrate(const Resource &resource, const ServerContext &)
{
    return valueOf(bitsPerSecond(resource));
}

} // namespace

const std::array<Property, propertyCount> &properties()
{
    using O = MediaObject;
    using R = Resource;
    using H = PropertyHome;
    static constexpr std::array<Property, propertyCount> table{{
        {"DisplayName", "s", H::Object, "dc:title", nullptr, &member<&O::title>},
        {"Path", "o", H::Object, "@id", nullptr, &path},
        {"Parent", "o", H::Object, "@parentID", nullptr, &parent},
        {"Type", "s", H::Object, "upnp:class", nullptr, &type},
        {"TypeEx", "s", H::Object, "upnp:class", nullptr, &typeEx},
        {"Creator", "s", H::Object, "dc:creator", "dc:creator", &member<&O::creator>},
        {"Restricted", "b", H::Object, "@restricted", nullptr, &member<&O::restricted>},
        {"DLNAManaged", "a{sb}", H::Object, nullptr, "@dlna:dlnaManaged", &dlnaManaged},
        {"ObjectUpdateID", "u", H::Object, "upnp:objectUpdateID", "upnp:objectUpdateID",
            &member<&O::objectUpdateId>},
        {"ChildCount", "u", H::Container, "@childCount", "@childCount", &member<&O::childCount>},
        {"Searchable", "b", H::Container, "@searchable", "@searchable", &member<&O::searchable>},
        {"CreateClasses", "a(sb)", H::Container, nullptr, "upnp:createClass", &createClasses},
        {"ContainerUpdateID", "u", H::Container, "upnp:containerUpdateID", "upnp:containerUpdateID",
            &member<&O::containerUpdateId>},
        {"TotalDeletedChildCount", "u", H::Container, "upnp:totalDeletedChildCount",
            "upnp:totalDeletedChildCount", &member<&O::totalDeletedChildCount>},
        {"RefPath", "o", H::Media, "@refID", "@refID", &refPath},
        {"Artist", "s", H::Media, "upnp:artist", "upnp:artist", &artist},
        {"Artists", "as", H::Media, nullptr, "upnp:artist", &member<&O::artists>},
        {"Album", "s", H::Media, "upnp:album", "upnp:album", &member<&O::album>},
        {"Genre", "s", H::Media, "upnp:genre", "upnp:genre", &member<&O::genre>},
        {"Date", "s", H::Media, "dc:date", "dc:date", &date},
        {"TrackNumber", "i", H::File, "upnp:originalTrackNumber", "upnp:originalTrackNumber",
            &member<&O::trackNumber>},
        {"AlbumArtURL", "s", H::Media, nullptr, "upnp:albumArtURI", &albumArt},
        {"URLs", "as", H::Media, nullptr, "res", nullptr, &urls},
        {"MIMEType", "s", H::Media, nullptr, "res", nullptr, &member<&R::mimeType>},
        {"DLNAProfile", "s", H::Media, nullptr, "res", nullptr, &member<&R::dlnaProfile>},
        {"Size", "x", H::Media, "res@size", "res,res@size", nullptr, &member<&R::size>},
        {"Duration", "i", H::File, "res@duration", "res,res@duration", nullptr, &seconds},
        // Size and duration tell whether the server counts bits or bytes.
        {"Bitrate", "i", H::File, "res@bitrate", "res,res@bitrate,res@size,res@duration", nullptr,
            &bitrate},
        {"SampleRate", "i", H::File, "res@sampleFrequency", "res,res@sampleFrequency", nullptr,
            &member<&R::sampleRate>},
        {"BitsPerSample", "i", H::File, "res@bitsPerSample", "res,res@bitsPerSample", nullptr,
            &member<&R::bitsPerSample>},
        {"Width", "i", H::File, nullptr, "res,res@resolution", nullptr, &member<&R::width>},
        {"Height", "i", H::File, nullptr, "res,res@resolution", nullptr, &member<&R::height>},
        {"ColorDepth", "i", H::File, "res@colorDepth", "res,res@colorDepth", nullptr,
            &member<&R::colorDepth>},
        {"Resources", "aa{sv}", H::Media, nullptr,
            "res,res@size,res@duration,res@bitrate,res@sampleFrequency,res@bitsPerSample,"
            "res@resolution,res@colorDepth",
            &resources},
    }};
    static_assert(table.back().name != nullptr);
    return table;
}

} // namespace bridge
