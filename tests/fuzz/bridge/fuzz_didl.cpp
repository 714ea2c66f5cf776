#include "core/Bitrate.h"
#include "core/Didl.h"
#include "core/PropertyMap.h"

#include <cstdlib>

using namespace bridge;

/// Whatever a server sends, its objects become property maps that may travel on D-Bus.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const ServerContext server{
        "/com/intel/dLeynaServer/server/uuid_3a1", "http://10.0.0.1:8200/"};
    const auto objects = parseDidl({reinterpret_cast<const char *>(data), size});
    if (!objects)
        return 0;
    for (const MediaObject &object : *objects) {
        const Variant map = ownVariant(propertyMap(object, PropertySet::all(), server));
        if (!g_variant_is_of_type(map.get(), G_VARIANT_TYPE_VARDICT)
            || !g_variant_is_normal_form(map.get()))
            abort();
    }
    return 0;
}
