#include "core/PropertyMap.h"

#include "core/Bitrate.h"
#include "core/Glib.h"
#include "core/MediaClass.h"
#include "core/ObjectPath.h"

#include <algorithm>
#include <limits>

namespace bridge {

namespace {

Value text(const std::string &value)
{
    return value.empty() ? Value() : Value(value);
}

Value path(const ServerContext &server, std::string_view id)
{
    std::string value = objectPath(server.path, id);
    return value.empty() ? Value() : Value(ObjectPath{std::move(value)});
}

template<typename T>
Value number(const std::optional<T> &value)
{
    return value ? Value(*value) : Value();
}

template<typename List>
Value list(List values)
{
    return values.empty() ? Value() : Value(std::move(values));
}

Value seconds(const Resource &resource)
{
    if (!resource.duration)
        return {};
    constexpr int64_t limit = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::min(*resource.duration / 1000, limit));
}

/// A year or a month is its first day: half a date is none for most readers.
Value date(const std::string &given)
{
    constexpr size_t year = 4, month = 7;
    const bool isYear = given.size() == year;
    const bool isMonth = given.size() == month && given[year] == '-';
    std::string digits = given;
    if (isMonth)
        digits.erase(year, 1);
    const bool isPlain = digits.find_first_not_of("0123456789") == std::string::npos;
    if (!isPlain || (!isYear && !isMonth))
        return text(given);
    return given + (isYear ? "-01-01" : "-01");
}

Value urls(const Resource &resource, const ServerContext &server)
{
    std::string url = absoluteUrl(resource.uri, server.baseUrl);
    return url.empty() ? Value() : Value(std::vector<std::string>{std::move(url)});
}

Value resourceValue(const Resource &resource, Prop prop, const ServerContext &server)
{
    switch (prop) {
    case Prop::URLs:
        return urls(resource, server);
    case Prop::MIMEType:
        return text(resource.mimeType);
    case Prop::DLNAProfile:
        return text(resource.dlnaProfile);
    case Prop::Size:
        return number(resource.size);
    case Prop::Duration:
        return seconds(resource);
    case Prop::Bitrate:
        return number(bitsPerSecond(resource));
    case Prop::SampleRate:
        return number(resource.sampleRate);
    case Prop::BitsPerSample:
        return number(resource.bitsPerSample);
    case Prop::Width:
        return number(resource.width);
    case Prop::Height:
        return number(resource.height);
    case Prop::ColorDepth:
        return number(resource.colorDepth);
    default:
        return {};
    }
}

void add(PropertyMap &map, const char *name, Value value)
{
    if (!value.isNone())
        map.emplace_back(name, std::move(value));
}

Value resources(const MediaObject &object, const ServerContext &server)
{
    constexpr Prop shown[] = {Prop::MIMEType, Prop::DLNAProfile, Prop::Size, Prop::Duration,
        Prop::Bitrate, Prop::SampleRate, Prop::BitsPerSample, Prop::Width, Prop::Height,
        Prop::ColorDepth};
    std::vector<PropertyMap> maps;
    for (const Resource &resource : object.resources) {
        PropertyMap &map = maps.emplace_back();
        add(map, "URL", text(absoluteUrl(resource.uri, server.baseUrl)));
        for (const Prop prop : shown)
            add(map, propertyInfo(prop).name, resourceValue(resource, prop, server));
    }
    return list(std::move(maps));
}

Value createClasses(const MediaObject &object)
{
    FlagList classes;
    for (const auto &[upnpClass, includeDerived] : object.createClasses) {
        const bool isContainer = upnpClass.rfind("object.container", 0) == 0;
        classes.flags.emplace_back(mediaTypeOfClass(upnpClass, isContainer).typeEx, includeDerived);
    }
    return classes.flags.empty() ? Value() : Value(std::move(classes));
}

/// The bits of the DLNA guidelines' `dlna:dlnaManaged`.
Value dlnaManaged(const MediaObject &object)
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
    return path(server, isTop ? rootObjectId : std::string_view(object.parentId));
}

} // namespace

Value propertyValue(const MediaObject &object, Prop prop, const ServerContext &server)
{
    switch (prop) {
    case Prop::DisplayName:
        return text(object.title);
    case Prop::Path:
        return path(server, object.id);
    case Prop::Parent:
        return parent(object, server);
    case Prop::RefPath:
        return path(server, object.refId);
    case Prop::Type:
        return std::string(mediaTypeOfClass(object.upnpClass, object.isContainer).type);
    case Prop::TypeEx:
        return mediaTypeOfClass(object.upnpClass, object.isContainer).typeEx;
    case Prop::Creator:
        return text(object.creator);
    case Prop::Restricted:
        return number(object.restricted);
    case Prop::DLNAManaged:
        return dlnaManaged(object);
    case Prop::ObjectUpdateID:
        return number(object.objectUpdateId);
    case Prop::ChildCount:
        return number(object.childCount);
    case Prop::Searchable:
        return number(object.searchable);
    case Prop::CreateClasses:
        return createClasses(object);
    case Prop::ContainerUpdateID:
        return number(object.containerUpdateId);
    case Prop::TotalDeletedChildCount:
        return number(object.totalDeletedChildCount);
    case Prop::Artist:
        return object.artists.empty() ? Value() : text(object.artists.front());
    case Prop::Artists:
        return list(object.artists);
    case Prop::Album:
        return text(object.album);
    case Prop::Genre:
        return text(object.genre);
    case Prop::Date:
        return date(object.date);
    case Prop::TrackNumber:
        return number(object.trackNumber);
    case Prop::AlbumArtURL:
        return text(absoluteUrl(object.albumArtUri, server.baseUrl));
    case Prop::Resources:
        return resources(object, server);
    default:
        break;
    }
    const Resource *resource = object.primaryResource();
    return resource ? resourceValue(*resource, prop, server) : Value();
}

PropertyMap propertyMap(
    const MediaObject &object, const PropertySet &wanted, const ServerContext &server)
{
    PropertyMap map;
    for (const PropInfo &info : properties()) {
        if (wanted.contains(info.prop))
            add(map, info.name, propertyValue(object, info.prop, server));
    }
    return map;
}

} // namespace bridge
