#include "core/Didl.h"
#include "core/ObjectPath.h"
#include "core/PropertyMap.h"

#include <cstdlib>
#include <cstring>
#include <gio/gio.h>

using namespace bridge;

/// Whatever a server sends, its objects become property maps that may travel on D-Bus.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const ServerContext server{
        "/com/intel/dLeynaServer/server/uuid_3a1", "http://10.0.0.1:8200/"};
    const auto list = parseDidl({reinterpret_cast<const char *>(data), size});
    if (!list)
        return 0;
    for (const MediaObject &object : list->objects) {
        for (const auto &[name, value] : propertyMap(object, PropertySet::all(), server)) {
            const auto *path = std::get_if<ObjectPath>(&value);
            if (path && !g_variant_is_object_path(path->text.c_str()))
                abort();
            const auto *text = std::get_if<std::string>(&value);
            if (text && (text->empty() || std::strlen(text->c_str()) != text->size()))
                abort();
        }
    }
    return 0;
}
