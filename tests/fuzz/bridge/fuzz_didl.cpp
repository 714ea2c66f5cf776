#include "bus/Message.h"
#include "core/Didl.h"
#include "core/Properties.h"

#include <cstdlib>

using namespace bridge;

/// Whatever a server sends, its objects become property maps that may travel on D-Bus: libdbus ends
/// the program over a text or a path that may not, and a complete message comes out.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const ServerContext server{
        "/com/intel/dLeynaServer/server/uuid_3a1", "http://10.0.0.1:8200/"};
    const auto list = parseDidl({reinterpret_cast<const char *>(data), size});
    if (!list)
        return 0;
    std::vector<PropertyMap> rows;
    for (const MediaObject &object : list->objects)
        rows.push_back(propertyMap(object, PropertySet::all(), server));
    const Message message(dbus_message_new(DBUS_MESSAGE_TYPE_METHOD_RETURN));
    MessageWriter writer(message.get());
    writer.add(rows);
    dbus_message_set_reply_serial(message.get(), 1);
    dbus_message_set_serial(message.get(), 1);
    char *bytes = nullptr;
    int length = 0;
    if (!dbus_message_marshal(message.get(), &bytes, &length))
        abort();
    DBusError error = DBUS_ERROR_INIT;
    const Message again(dbus_message_demarshal(bytes, length, &error));
    dbus_free(bytes);
    constexpr size_t header = 128;
    if (!again || static_cast<size_t>(length) > writer.bytes() + header)
        abort();
    return 0;
}
