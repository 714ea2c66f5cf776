#include "core/PropertyMap.h"

#include "core/Bitrate.h"
#include "core/MediaClass.h"
#include "core/ObjectPath.h"

#include <algorithm>
#include <array>
#include <limits>

namespace bridge {

namespace {

/// Texts that are in every row are made once, for all threads.
GVariant *key(Prop prop)
{
    static const std::array<GVariant *, propCount> keys = [] {
        std::array<GVariant *, propCount> made{};
        for (const PropInfo &info : properties())
            made[static_cast<size_t>(info.prop)] =
                g_variant_ref_sink(g_variant_new_string(info.name));
        return made;
    }();
    return keys[static_cast<size_t>(prop)];
}

GVariant *text(const std::string &value)
{
    return value.empty() ? nullptr : textVariant(value);
}

GVariant *path(const ServerContext &server, const std::string &id)
{
    const std::string value = objectPath(server.path, id);
    return value.empty() ? nullptr : g_variant_new_object_path(value.c_str());
}

GVariant *number(const std::optional<int32_t> &value)
{
    return value ? g_variant_new_int32(*value) : nullptr;
}

GVariant *count(const std::optional<uint32_t> &value)
{
    return value ? g_variant_new_uint32(*value) : nullptr;
}

GVariant *flag(const std::optional<bool> &value)
{
    return value ? g_variant_new_boolean(*value) : nullptr;
}

std::string absoluteUrl(const std::string &uri, const ServerContext &server)
{
    if (uri.empty() || uri.find("://") != std::string::npos)
        return uri;
    return takeString(
        g_uri_resolve_relative(server.baseUrl.c_str(), uri.c_str(), G_URI_FLAGS_ENCODED, nullptr));
}

GVariant *textList(const std::vector<std::string> &values)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_STRING_ARRAY);
    for (const std::string &value : values)
        g_variant_builder_add_value(&builder, textVariant(value));
    return g_variant_builder_end(&builder);
}

GVariant *artists(const MediaObject &object)
{
    return object.artists.empty() ? nullptr : textList(object.artists);
}

std::optional<int32_t> seconds(const Resource &resource)
{
    if (!resource.duration)
        return std::nullopt;
    constexpr int64_t limit = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::min(*resource.duration / 1000, limit));
}

GVariant *resourceValue(const Resource &resource, Prop prop, const ServerContext &server)
{
    switch (prop) {
    case Prop::URLs: {
        const std::string url = absoluteUrl(resource.uri, server);
        return url.empty() ? nullptr : textList({url});
    }
    case Prop::MIMEType:
        return text(resource.mimeType);
    case Prop::DLNAProfile:
        return text(resource.dlnaProfile);
    case Prop::Size:
        return resource.size ? g_variant_new_int64(*resource.size) : nullptr;
    case Prop::Duration:
        return number(seconds(resource));
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
        return nullptr;
    }
}

void addEntry(GVariantBuilder &builder, const char *name, GVariant *value)
{
    if (value)
        g_variant_builder_add(&builder, "{sv}", name, value);
}

GVariant *resources(const MediaObject &object, const ServerContext &server)
{
    if (object.resources.empty())
        return nullptr;
    constexpr Prop shown[] = {Prop::MIMEType, Prop::DLNAProfile, Prop::Size, Prop::Duration,
        Prop::Bitrate, Prop::SampleRate, Prop::BitsPerSample, Prop::Width, Prop::Height,
        Prop::ColorDepth};
    GVariantBuilder list;
    g_variant_builder_init(&list, G_VARIANT_TYPE("aa{sv}"));
    for (const Resource &resource : object.resources) {
        GVariantBuilder map;
        g_variant_builder_init(&map, G_VARIANT_TYPE_VARDICT);
        addEntry(map, "URL", text(absoluteUrl(resource.uri, server)));
        for (const Prop prop : shown) {
            const char *name = properties()[static_cast<size_t>(prop)].name;
            addEntry(map, name, resourceValue(resource, prop, server));
        }
        g_variant_builder_add_value(&list, g_variant_builder_end(&map));
    }
    return g_variant_builder_end(&list);
}

GVariant *createClasses(const MediaObject &object)
{
    if (object.createClasses.empty())
        return nullptr;
    GVariantBuilder list;
    g_variant_builder_init(&list, G_VARIANT_TYPE("a(sb)"));
    for (const auto &[upnpClass, includeDerived] : object.createClasses) {
        const std::string type =
            mediaTypeOfClass(upnpClass, upnpClass.rfind("object.container", 0) == 0).typeEx;
        g_variant_builder_add(
            &list, "(@sb)", textVariant(type), static_cast<gboolean>(includeDerived));
    }
    return g_variant_builder_end(&list);
}

GVariant *dlnaManaged(const MediaObject &object)
{
    struct Right
    {
        const char *name;
        uint32_t bit;
    };
    constexpr Right rights[] = {{"Upload", 1U << 0}, {"CreateContainer", 1U << 1},
        {"Delete", 1U << 2}, {"UploadDelete", 1U << 3}, {"ChangeMeta", 1U << 4}};
    if (!object.dlnaManaged)
        return nullptr;
    GVariantBuilder map;
    g_variant_builder_init(&map, G_VARIANT_TYPE("a{sb}"));
    for (const Right &right : rights) {
        g_variant_builder_add(&map, "{sb}", right.name,
            static_cast<gboolean>((*object.dlnaManaged & right.bit) != 0));
    }
    return g_variant_builder_end(&map);
}

/// The root has no parent ("-1" on most servers) and is its own, so that walking upwards ends.
GVariant *parent(const MediaObject &object, const ServerContext &server)
{
    if (object.id == rootObjectId || object.parentId == "-1")
        return path(server, std::string(rootObjectId));
    return path(server, object.parentId);
}

/// {sv} of one property, floating; null where the object has no value.
GVariant *newEntry(const MediaObject &object, Prop prop, const ServerContext &server)
{
    GVariant *value = propertyValue(object, prop, server);
    return value ? g_variant_new_dict_entry(key(prop), g_variant_new_variant(value)) : nullptr;
}

/// The text that decides a property's value, where neighbours are likely to share it; else null.
const std::string *sharedSource(const MediaObject &object, Prop prop)
{
    switch (prop) {
    case Prop::Type:
    case Prop::TypeEx:
        return &object.upnpClass;
    case Prop::Parent:
        return object.id == rootObjectId ? nullptr : &object.parentId;
    case Prop::Creator:
        return &object.creator;
    case Prop::Artist:
        return object.artists.empty() ? nullptr : &object.artists.front();
    case Prop::Album:
        return &object.album;
    case Prop::Genre:
        return &object.genre;
    case Prop::Date:
        return &object.date;
    case Prop::MIMEType: {
        const Resource *resource = object.primaryResource();
        return resource ? &resource->mimeType : nullptr;
    }
    default:
        return nullptr;
    }
}

} // namespace

GVariant *textVariant(const std::string &value)
{
    const auto size = static_cast<gssize>(value.size());
    if (g_utf8_validate(value.c_str(), size, nullptr))
        return g_variant_new_string(value.c_str());
    return g_variant_new_take_string(g_utf8_make_valid(value.c_str(), size));
}

GVariant *propertyValue(const MediaObject &object, Prop prop, const ServerContext &server)
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
        return g_variant_new_string(
            std::string(mediaTypeOfClass(object.upnpClass, object.isContainer).type).c_str());
    case Prop::TypeEx:
        return textVariant(mediaTypeOfClass(object.upnpClass, object.isContainer).typeEx);
    case Prop::Creator:
        return text(object.creator);
    case Prop::Restricted:
        return flag(object.restricted);
    case Prop::DLNAManaged:
        return dlnaManaged(object);
    case Prop::ObjectUpdateID:
        return count(object.objectUpdateId);
    case Prop::ChildCount:
        return count(object.childCount);
    case Prop::Searchable:
        return flag(object.searchable);
    case Prop::CreateClasses:
        return createClasses(object);
    case Prop::ContainerUpdateID:
        return count(object.containerUpdateId);
    case Prop::TotalDeletedChildCount:
        return count(object.totalDeletedChildCount);
    case Prop::Artist:
        return object.artists.empty() ? nullptr : text(object.artists.front());
    case Prop::Artists:
        return artists(object);
    case Prop::Album:
        return text(object.album);
    case Prop::Genre:
        return text(object.genre);
    case Prop::Date:
        return text(object.date);
    case Prop::TrackNumber:
        return number(object.trackNumber);
    case Prop::AlbumArtURL:
        return text(absoluteUrl(object.albumArtUri, server));
    case Prop::Resources:
        return resources(object, server);
    default:
        break;
    }
    const Resource *resource = object.primaryResource();
    return resource ? resourceValue(*resource, prop, server) : nullptr;
}

GVariant *propertyMap(
    const MediaObject &object, const PropertySet &wanted, const ServerContext &server)
{
    return PropertyMapper(wanted, server).map(object);
}

PropertyMapper::PropertyMapper(const PropertySet &wanted, const ServerContext &server)
    : m_wanted(wanted)
    , m_server(server)
{
}

GVariant *PropertyMapper::map(const MediaObject &object)
{
    // A builder would look up types and make a text of every key; for long lists that is half the
    // time.
    std::array<GVariant *, propCount> entries{};
    size_t count = 0;
    for (const PropInfo &info : properties()) {
        if (!m_wanted.contains(info.prop))
            continue;
        const std::string *source = sharedSource(object, info.prop);
        GVariant *entry = source ? sharedEntry(object, info.prop, *source)
                                 : newEntry(object, info.prop, m_server);
        if (entry)
            entries[count++] = entry;
    }
    return g_variant_new_array(G_VARIANT_TYPE("{sv}"), entries.data(), count);
}

GVariant *PropertyMapper::sharedEntry(
    const MediaObject &object, Prop prop, const std::string &source)
{
    LastEntry &last = m_last[static_cast<size_t>(prop)];
    const bool isSame =
        last.entry && last.source == source && last.isContainer == object.isContainer;
    if (!isSame) {
        GVariant *entry = newEntry(object, prop, m_server);
        last = {source, object.isContainer, entry ? ownVariant(entry) : nullptr};
    }
    return last.entry.get();
}

} // namespace bridge
