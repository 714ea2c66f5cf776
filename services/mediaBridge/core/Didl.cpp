#include "core/Didl.h"

#include "core/Limits.h"
#include "core/Numbers.h"
#include "core/Text.h"
#include "core/Xml.h"

#include <cstdlib>
#include <cstring>

namespace bridge {

namespace {

/// What isn't UTF-8 is mended here, in the background, rather than on its way to the bus.
std::string boundedText(std::string text)
{
    const bool isGood = text.size() <= limits::textBytes && isValidUtf8(text);
    return isGood ? std::move(text) : shortened(text, limits::textBytes);
}

/// What names something is as it is, or not there.
std::string shortOrNothing(std::string text, size_t maxBytes)
{
    return text.size() <= maxBytes ? std::move(text) : std::string();
}

std::string urlText(pugi::xml_node element)
{
    return boundedText(shortOrNothing(elementText(element), limits::urlBytes));
}

/// What an element itself says that a prefix stands for, among its first attributes; empty where it
/// says nothing.
pugi::xml_attribute declarationIn(pugi::xml_node element, std::string_view prefix)
{
    size_t seen = 0;
    for (auto attribute = element.first_attribute(); attribute && seen < limits::repeated;
         attribute = attribute.next_attribute(), ++seen) {
        const char *name = attribute.name();
        if (name[0] != 'x' || std::strncmp(name, "xmlns", 5) != 0)
            continue;
        if (prefix.empty() ? name[5] == '\0' : name[5] == ':' && prefix == name + 6)
            return attribute;
    }
    return {};
}

/// Whether a child of an object is one of those that are read here: other vocabularies have titles,
/// too. The usual prefixes mean these, whatever the list's first tag says of them, if anything.
bool isOfDidl(pugi::xml_node element, std::string_view local)
{
    const auto before = static_cast<size_t>(local.data() - element.name());
    const std::string_view prefix(element.name(), before > 0 ? before - 1 : 0);
    const bool isUsual = prefix.empty() || prefix == "dc" || prefix == "upnp";
    if (isUsual && !element.first_attribute())
        return true; // as nearly always
    pugi::xml_attribute declaration = declarationIn(element, prefix);
    for (auto place = element.parent(); !isUsual && !declaration && place; place = place.parent())
        declaration = declarationIn(place, prefix);
    if (!declaration)
        return isUsual;
    const std::string_view meaning = declaration.value();
    return meaning.find("schemas-upnp-org:metadata") != std::string_view::npos
        || meaning.find("purl.org/dc") != std::string_view::npos;
}

/// Splits `protocol:network:mimeType:additional`, whose last field may hold more colons.
void readProtocolInfo(Resource &resource, std::string_view info)
{
    std::string_view fields[4];
    for (int i = 0; i < 3; ++i) {
        const size_t colon = info.find(':');
        fields[i] = info.substr(0, colon);
        info = colon == std::string_view::npos ? std::string_view() : info.substr(colon + 1);
    }
    fields[3] = info;
    resource.protocol = fields[0];
    if (fields[2] != "*")
        resource.mimeType = fields[2];

    std::string_view parameters = fields[3];
    while (!parameters.empty()) {
        const size_t end = parameters.find(';');
        const std::string_view parameter = parameters.substr(0, end);
        constexpr std::string_view profileKey = "DLNA.ORG_PN=";
        if (parameter.substr(0, profileKey.size()) == profileKey)
            resource.dlnaProfile = parameter.substr(profileKey.size());
        else if (parameter == "DLNA.ORG_CI=1")
            resource.isConverted = true;
        parameters =
            end == std::string_view::npos ? std::string_view() : parameters.substr(end + 1);
    }
}

void readResolution(Resource &resource, std::string_view text)
{
    const size_t by = text.find('x');
    if (by == std::string_view::npos)
        return;
    resource.width = parseAs<int32_t>(text.substr(0, by));
    resource.height = parseAs<int32_t>(text.substr(by + 1));
}

Resource readResource(pugi::xml_node element)
{
    Resource resource;
    resource.uri = urlText(element);
    for (const pugi::xml_attribute attribute : element.attributes()) {
        const std::string_view name = localName(attribute.name());
        const std::string value = boundedText(attributeText(attribute));
        if (name == "protocolInfo")
            readProtocolInfo(resource, value);
        else if (name == "size")
            resource.size = parseNumber(value);
        else if (name == "duration")
            resource.duration = parseDuration(value);
        else if (name == "bitrate")
            resource.rawBitrate = parseAs<int32_t>(value);
        else if (name == "sampleFrequency")
            resource.sampleRate = parseAs<int32_t>(value);
        else if (name == "bitsPerSample")
            resource.bitsPerSample = parseAs<int32_t>(value);
        else if (name == "resolution")
            readResolution(resource, value);
        else if (name == "colorDepth")
            resource.colorDepth = parseAs<int32_t>(value);
    }
    return resource;
}

void readObjectAttributes(MediaObject &object, pugi::xml_node element)
{
    for (const pugi::xml_attribute attribute : element.attributes()) {
        const std::string_view name = localName(attribute.name());
        // An id is whatever the server makes of it, control characters, too.
        std::string value = shortOrNothing(attribute.value(), limits::idBytes);
        if (name == "id")
            object.id = std::move(value);
        else if (name == "parentID")
            object.parentId = std::move(value);
        else if (name == "refID")
            object.refId = std::move(value);
        else if (name == "restricted")
            object.restricted = parseBool(value);
        else if (name == "searchable")
            object.searchable = parseBool(value);
        else if (name == "childCount")
            object.childCount = parseCount(value);
        else if (name == "dlnaManaged")
            object.dlnaManaged = static_cast<uint32_t>(std::strtoul(value.c_str(), nullptr, 16));
    }
}

std::pair<std::string, bool> readCreateClass(pugi::xml_node element)
{
    const std::string_view includeDerived = element.attribute("includeDerived").value();
    return {boundedText(elementText(element)), parseBool(includeDerived).value_or(false)};
}

/// Sets a text that hasn't been set before: the first of several wins.
void setOnce(std::string &field, pugi::xml_node element)
{
    if (field.empty())
        field = boundedText(elementText(element));
}

bool readText(MediaObject &object, std::string_view name, pugi::xml_node element)
{
    struct TextField
    {
        std::string_view name;
        std::string MediaObject::*field;
    };
    static constexpr TextField fields[] = {
        {"class", &MediaObject::upnpClass},
        {"creator", &MediaObject::creator},
        {"album", &MediaObject::album},
        {"genre", &MediaObject::genre},
        {"date", &MediaObject::date},
    };
    for (const TextField &known : fields) {
        if (name == known.name) {
            setOnce(object.*known.field, element);
            return true;
        }
    }
    return false;
}

void readChild(MediaObject &object, pugi::xml_node element)
{
    const std::string_view name = localName(element.name());
    if (!isOfDidl(element, name) || readText(object, name, element))
        return;
    if (name == "title" && object.title.empty())
        object.title = boundedText(titleText(element));
    else if (name == "albumArtURI" && object.albumArtUri.empty())
        object.albumArtUri = urlText(element);
    else if (name == "res" && object.resources.size() < limits::repeated)
        object.resources.push_back(readResource(element));
    else if (name == "artist" && object.artists.size() < limits::repeated)
        object.artists.push_back(boundedText(elementText(element)));
    else if (name == "originalTrackNumber")
        object.trackNumber = parseAs<int32_t>(elementText(element));
    else if (name == "objectUpdateID")
        object.objectUpdateId = parseAs<uint32_t>(elementText(element));
    else if (name == "containerUpdateID")
        object.containerUpdateId = parseAs<uint32_t>(elementText(element));
    else if (name == "totalDeletedChildCount")
        object.totalDeletedChildCount = parseAs<uint32_t>(elementText(element));
    else if (name == "createClass" && object.createClasses.size() < limits::repeated)
        object.createClasses.push_back(readCreateClass(element));
}

MediaObject readObject(pugi::xml_node element, bool isContainer)
{
    MediaObject object;
    object.isContainer = isContainer;
    readObjectAttributes(object, element);
    const auto start = element.offset_debug();
    for (const pugi::xml_node child : element.children()) {
        if (child.offset_debug() - start > limits::objectBytes)
            break;
        readChild(object, child);
    }
    return object;
}

} // namespace

const Resource *MediaObject::primaryResource() const
{
    const Resource *best = nullptr;
    int bestRank = 0;
    for (const Resource &resource : resources) {
        const int rank = resource.protocol != "http-get" ? 1 : resource.isConverted ? 2 : 3;
        if (rank > bestRank) {
            best = &resource;
            bestRank = rank;
        }
    }
    return best;
}

std::optional<DidlList> parseDidl(std::string didl, size_t maxObjects)
{
    DidlList list;
    if (didl.find_first_not_of(" \t\r\n") == std::string::npos)
        return list;
    // Decoded with the answer that it stood in, whatever it declares.
    const XmlDocument document(std::move(didl), limits::tags(maxObjects), "UTF-8");
    if (localName(document.root().name()) != "DIDL-Lite")
        return std::nullopt;
    list.isWhole = document.isWhole();
    pugi::xml_node last;
    for (const pugi::xml_node element : document.root().children()) {
        const std::string_view name = localName(element.name());
        if (name != "container" && name != "item")
            continue;
        if (list.objects.size() == maxObjects) {
            // What is behind the last one that counts doesn't matter.
            list.isWhole = true;
            break;
        }
        list.objects.push_back(readObject(element, name == "container"));
        last = element;
    }
    if (!list.isWhole && last && !document.isClosed(last)) {
        list.objects.pop_back();
        list.endsAtFault = !document.isCut();
    }
    return list;
}

} // namespace bridge
