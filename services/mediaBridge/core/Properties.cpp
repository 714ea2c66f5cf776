#include "core/Properties.h"

namespace bridge {

namespace {

constexpr std::array<PropInfo, propCount> table{{
    {Prop::DisplayName, "DisplayName", "s", PropHome::Object, "dc:title", nullptr},
    {Prop::Path, "Path", "o", PropHome::Object, "@id", nullptr},
    {Prop::Parent, "Parent", "o", PropHome::Object, "@parentID", nullptr},
    {Prop::Type, "Type", "s", PropHome::Object, "upnp:class", nullptr},
    {Prop::TypeEx, "TypeEx", "s", PropHome::Object, "upnp:class", nullptr},
    {Prop::Creator, "Creator", "s", PropHome::Object, "dc:creator", "dc:creator"},
    {Prop::Restricted, "Restricted", "b", PropHome::Object, "@restricted", nullptr},
    {Prop::DLNAManaged, "DLNAManaged", "a{sb}", PropHome::Object, nullptr, "@dlna:dlnaManaged"},
    {Prop::ObjectUpdateID, "ObjectUpdateID", "u", PropHome::Object, "upnp:objectUpdateID",
        "upnp:objectUpdateID"},
    {Prop::ChildCount, "ChildCount", "u", PropHome::Container, "@childCount", "@childCount"},
    {Prop::Searchable, "Searchable", "b", PropHome::Container, "@searchable", "@searchable"},
    {Prop::CreateClasses, "CreateClasses", "a(sb)", PropHome::Container, nullptr,
        "upnp:createClass"},
    {Prop::ContainerUpdateID, "ContainerUpdateID", "u", PropHome::Container,
        "upnp:containerUpdateID", "upnp:containerUpdateID"},
    {Prop::TotalDeletedChildCount, "TotalDeletedChildCount", "u", PropHome::Container,
        "upnp:totalDeletedChildCount", "upnp:totalDeletedChildCount"},
    {Prop::RefPath, "RefPath", "o", PropHome::Media, "@refID", "@refID"},
    {Prop::Artist, "Artist", "s", PropHome::Media, "upnp:artist", "upnp:artist"},
    {Prop::Artists, "Artists", "as", PropHome::Media, nullptr, "upnp:artist"},
    {Prop::Album, "Album", "s", PropHome::Media, "upnp:album", "upnp:album"},
    {Prop::Genre, "Genre", "s", PropHome::Media, "upnp:genre", "upnp:genre"},
    {Prop::Date, "Date", "s", PropHome::Media, "dc:date", "dc:date"},
    {Prop::TrackNumber, "TrackNumber", "i", PropHome::Media, "upnp:originalTrackNumber",
        "upnp:originalTrackNumber"},
    {Prop::AlbumArtURL, "AlbumArtURL", "s", PropHome::Media, nullptr, "upnp:albumArtURI"},
    {Prop::URLs, "URLs", "as", PropHome::Media, nullptr, "res"},
    {Prop::MIMEType, "MIMEType", "s", PropHome::Media, nullptr, "res"},
    {Prop::DLNAProfile, "DLNAProfile", "s", PropHome::Media, nullptr, "res"},
    {Prop::Size, "Size", "x", PropHome::Media, "res@size", "res,res@size"},
    {Prop::Duration, "Duration", "i", PropHome::Media, "res@duration", "res,res@duration"},
    // Size and duration tell whether the server counts bits or bytes.
    {Prop::Bitrate, "Bitrate", "i", PropHome::Media, "res@bitrate",
        "res,res@bitrate,res@size,res@duration"},
    {Prop::SampleRate, "SampleRate", "i", PropHome::Media, "res@sampleFrequency",
        "res,res@sampleFrequency"},
    {Prop::BitsPerSample, "BitsPerSample", "i", PropHome::Media, "res@bitsPerSample",
        "res,res@bitsPerSample"},
    {Prop::Width, "Width", "i", PropHome::Media, nullptr, "res,res@resolution"},
    {Prop::Height, "Height", "i", PropHome::Media, nullptr, "res,res@resolution"},
    {Prop::ColorDepth, "ColorDepth", "i", PropHome::Media, "res@colorDepth", "res,res@colorDepth"},
    {Prop::Resources, "Resources", "aa{sv}", PropHome::Media, nullptr,
        "res,res@size,res@duration,res@bitrate,res@sampleFrequency,res@bitsPerSample,"
        "res@resolution,res@colorDepth"},
}};

} // namespace

PropertySet PropertySet::all()
{
    PropertySet set;
    set.m_bits.set();
    return set;
}

const std::array<PropInfo, propCount> &properties()
{
    return table;
}

const PropInfo &propertyInfo(Prop prop)
{
    return table[static_cast<size_t>(prop)];
}

const PropInfo *findProperty(std::string_view name)
{
    for (const PropInfo &info : table) {
        if (name == info.name)
            return &info;
    }
    return nullptr;
}

std::vector<const PropInfo *> propertiesOfDidlName(std::string_view didlName)
{
    std::vector<const PropInfo *> found;
    for (const PropInfo &info : table) {
        if (info.didlName && didlName == info.didlName)
            found.push_back(&info);
    }
    return found;
}

PropertySet propertySetFromFilter(const std::vector<std::string> &filter)
{
    if (filter.size() == 1 && filter.front() == "*")
        return PropertySet::all();
    PropertySet set;
    for (const std::string &name : filter) {
        if (const PropInfo *info = findProperty(name))
            set.insert(info->prop);
    }
    return set;
}

std::string didlFilter(const PropertySet &set)
{
    if (set.isAll())
        return "*";
    // What every object has travels anyway; naming it keeps the filter from being empty, which some
    // servers take for "*" and others for an error.
    std::string filter = "dc:title,upnp:class";
    for (const PropInfo &info : table) {
        if (info.didlFilter && set.contains(info.prop)) {
            filter += ',';
            filter += info.didlFilter;
        }
    }
    return filter;
}

} // namespace bridge
