#include "core/ObjectPath.h"

#include <cstdlib>
#include <gio/gio.h>

using namespace bridge;

/// Paths that name an object lead back to it; every UDN and id makes a path that D-Bus takes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    if (const auto address = parseObjectPath(text)) {
        const std::string server = std::string(serverRootPath) + "/" + address->serverName;
        const auto again = parseObjectPath(objectPath(server, address->objectId));
        if (!again || again->objectId != address->objectId
            || again->serverName != address->serverName)
            abort();
    }
    if (text.empty() || text.find('\0') != std::string::npos)
        return 0;
    const std::string path = objectPath(serverPathFromUdn("uuid:" + text), text);
    const auto address = parseObjectPath(path);
    if (!g_variant_is_object_path(path.c_str()) || !address || address->objectId != text)
        abort();
    return 0;
}
