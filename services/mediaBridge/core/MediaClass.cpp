#include "core/MediaClass.h"

namespace bridge {

namespace {

struct ClassName
{
    std::string_view upnpClass;
    std::string_view type;
};

// The more specific class stands before the one that it derives from.
constexpr ClassName classNames[] = {
    {"object.container", "container"},
    {"object.item.audioItem.musicTrack", "music"},
    {"object.item.audioItem", "audio"},
    {"object.item.videoItem.movie", "video.movie"},
    {"object.item.videoItem", "video"},
    {"object.item.imageItem.photo", "image.photo"},
    {"object.item.imageItem", "image"},
};

constexpr std::string_view unclassified = "item.unclassified";

/// Whether `name` is `base` or goes on below it.
bool derivesFrom(std::string_view name, std::string_view base)
{
    return name.substr(0, base.size()) == base
        && (name.size() == base.size() || name[base.size()] == '.');
}

} // namespace

MediaType mediaTypeOfClass(std::string_view upnpClass, bool isContainer)
{
    for (const ClassName &known : classNames) {
        if (derivesFrom(upnpClass, known.upnpClass) && isContainer == (known.type == "container")) {
            std::string typeEx(known.type);
            typeEx += upnpClass.substr(known.upnpClass.size());
            return {known.type, std::move(typeEx)};
        }
    }
    const std::string_view fallback = isContainer ? std::string_view("container") : unclassified;
    return {fallback, std::string(fallback)};
}

std::string classOfMediaType(std::string_view typeEx)
{
    if (typeEx == unclassified)
        return "object.item";
    const ClassName *best = nullptr;
    for (const ClassName &known : classNames) {
        if (derivesFrom(typeEx, known.type) && (!best || known.type.size() > best->type.size()))
            best = &known;
    }
    if (!best)
        return {};
    std::string upnpClass(best->upnpClass);
    upnpClass += typeEx.substr(best->type.size());
    return upnpClass;
}

} // namespace bridge
