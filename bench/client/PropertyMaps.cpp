#include "PropertyMaps.h"

#include "PluginClient.h"

#include <cstdio>
#include <cstdlib>

PropertyMaps readPropertyMaps(const QString &container, int count)
{
    const OrgGnomeUPnPMediaContainer2Interface proxy(
        dleyna::service(), objectPath(container), orkaDBusConnection());
    auto reply = proxy.ListChildren(0, uint(count), {});
    reply.waitForFinished();
    const PropertyMaps maps = reply.value();
    if (maps.size() != count) {
        std::fputs("The fast service's objects could not be read.\n", stderr);
        std::exit(3);
    }
    return maps;
}

QVector<ObjectProperties> asProperties(const PropertyMaps &maps)
{
    QVector<ObjectProperties> all;
    for (const QVariantMap &map : maps) {
        ObjectProperties properties;
        for (auto it = map.begin(); it != map.end(); ++it)
            properties.set(ObjectProperties::nameOf(it.key()), it.value());
        all.append(properties);
    }
    return all;
}
