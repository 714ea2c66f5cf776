#include "Rows.h"

#include <cstdio>
#include <string>

namespace {

using Text = const char *;

std::string formatted(Text format, unsigned number)
{
    char text[160];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

/// "64$1$<number>" as the last element of an object path: the hex digits of its bytes.
std::string trackPath(unsigned number)
{
    std::string path = "/com/intel/dLeynaServer/server/uuid_3a66617374_2d0000/";
    for (const char c : formatted("64$1$2F$%u", number))
        path += formatted("%02x", static_cast<unsigned char>(c));
    return path;
}

/// One a{sv} being written; complete when it goes out of scope.
class PropertyMap
{
public:
    explicit PropertyMap(DBusMessageIter *parent)
        : m_parent(parent)
    {
        dbus_message_iter_open_container(m_parent, DBUS_TYPE_ARRAY, "{sv}", &m_map);
    }
    ~PropertyMap() { dbus_message_iter_close_container(m_parent, &m_map); }

    void text(Text name, const std::string &value, Text type = "s")
    {
        Text plain = value.c_str();
        add(name, type, [&](DBusMessageIter *variant) {
            dbus_message_iter_append_basic(variant, type[0], &plain);
        });
    }
    void number(Text name, dbus_int32_t value)
    {
        add(name, "i", [&](DBusMessageIter *variant) {
            dbus_message_iter_append_basic(variant, DBUS_TYPE_INT32, &value);
        });
    }
    void list(Text name, const std::string &onlyElement)
    {
        Text plain = onlyElement.c_str();
        add(name, "as", [&](DBusMessageIter *variant) {
            DBusMessageIter array;
            dbus_message_iter_open_container(variant, DBUS_TYPE_ARRAY, "s", &array);
            dbus_message_iter_append_basic(&array, DBUS_TYPE_STRING, &plain);
            dbus_message_iter_close_container(variant, &array);
        });
    }

private:
    template<typename AppendValue>
    void add(Text name, Text signature, AppendValue appendValue)
    {
        DBusMessageIter entry;
        DBusMessageIter variant;
        dbus_message_iter_open_container(&m_map, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
        dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &name);
        dbus_message_iter_open_container(&entry, DBUS_TYPE_VARIANT, signature, &variant);
        appendValue(&variant);
        dbus_message_iter_close_container(&entry, &variant);
        dbus_message_iter_close_container(&m_map, &entry);
    }

    DBusMessageIter *m_parent;
    DBusMessageIter m_map;
};

} // namespace

void rows::appendTrack(DBusMessageIter *parent, unsigned number)
{
    const unsigned album = number / 12;
    PropertyMap track(parent);
    track.text("Type", "music");
    track.text("TypeEx", "music");
    track.text("MIMEType", "audio/mpeg");
    track.text("DisplayName", formatted("Evening walk along the river, part %05u", number));
    track.text("Artist", formatted("The Harbour Street Quintet %u", album % 40));
    track.text("Album", formatted("Collected Recordings, volume %u", album));
    track.text("AlbumArtURL",
        formatted("http://192.168.178.20:8200/AlbumArt/%u-large-cover.jpg", 4000 + album));
    track.list("URLs", formatted("http://192.168.178.20:8200/MediaItems/%u.mp3", 20000 + number));
    track.text("Creator", formatted("The Harbour Street Quintet %u", album % 40));
    track.text("Genre", "Chamber Jazz");
    track.text("Path", trackPath(number), "o");
    track.text("Date", formatted("2%03u-03-17", album % 25));
    track.number("TrackNumber", dbus_int32_t(number % 12 + 1));
    track.number("Duration", dbus_int32_t(120 + number % 300));
    track.number("Bitrate", 192000);
    track.number("SampleRate", 44100);
    track.number("BitsPerSample", 16);
}

void rows::appendContainer(DBusMessageIter *parent, const char *path)
{
    PropertyMap container(parent);
    container.text("Type", "container");
    container.text("TypeEx", "container.storageFolder");
    container.text("DisplayName", "Folder");
    container.text("Path", path, "o");
}

void rows::appendServer(DBusMessageIter *parent, const char *path, unsigned number)
{
    PropertyMap server(parent);
    server.text("FriendlyName", formatted("Fast media server %u", number));
    server.text("UDN", formatted("uuid:fast-%u", number));
    server.text("Location", "http://192.168.178.20:8200/rootDesc.xml");
    server.text("DeviceType", "urn:schemas-upnp-org:device:MediaServer:1");
    server.list("SearchCaps", "DisplayName");
    server.text("Type", "container");
    server.text("DisplayName", "root");
    server.text("Path", path, "o");
}
