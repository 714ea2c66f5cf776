#include "Rows.h"

#include "Target.h"
#include "core/ObjectAddress.h"

#include <cstdio>

namespace {

using bridge::ObjectPath;
using bridge::PropertyMap;

std::string formatted(const char *format, unsigned number)
{
    char text[160];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

std::vector<std::string> onlyOne(std::string text)
{
    return {std::move(text)};
}

} // namespace

PropertyMap rows::track(unsigned number)
{
    const unsigned album = number / 12;
    const std::string artist = formatted("The Harbour Street Quintet %u", album % 40);
    return {
        {"Type", std::string("music")},
        {"TypeEx", std::string("music")},
        {"MIMEType", std::string("audio/mpeg")},
        {"DisplayName", formatted("Evening walk along the river, part %05u", number)},
        {"Artist", artist},
        {"Album", formatted("Collected Recordings, volume %u", album)},
        {"AlbumArtURL",
            formatted("http://192.168.178.20:8200/AlbumArt/%u-large-cover.jpg", 4000 + album)},
        {"URLs",
            onlyOne(formatted("http://192.168.178.20:8200/MediaItems/%u.mp3", 20000 + number))},
        {"Creator", artist},
        {"Genre", std::string("Chamber Jazz")},
        {"Path", ObjectPath{bridge::objectPath(serverPath(0), formatted("64$1$2F$%u", number))}},
        {"Date", formatted("2%03u-03-17", album % 25)},
        {"TrackNumber", int32_t(number % 12 + 1)},
        {"Duration", int32_t(120 + number % 300)},
        {"Bitrate", int32_t(192000)},
        {"SampleRate", int32_t(44100)},
        {"BitsPerSample", int32_t(16)},
    };
}

PropertyMap rows::container(const std::string &path)
{
    return {
        {"Type", std::string("container")},
        {"TypeEx", std::string("container.storageFolder")},
        {"DisplayName", std::string("Folder")},
        {"Path", ObjectPath{path}},
    };
}

PropertyMap rows::server(unsigned number)
{
    return {
        {"FriendlyName", formatted("Fast media server %u", number)},
        {"UDN", udnOf(number)},
        {"Location", std::string("http://192.168.178.20:8200/rootDesc.xml")},
        {"DeviceType", std::string("urn:schemas-upnp-org:device:MediaServer:1")},
        {"SearchCaps", std::vector<std::string>{"DisplayName", "Artist", "Album", "Type", "Genre"}},
        {"Type", std::string("container")},
        {"DisplayName", std::string("root")},
        {"Path", ObjectPath{serverPath(number)}},
    };
}
