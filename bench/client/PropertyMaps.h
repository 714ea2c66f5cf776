#pragma once

#include "ObjectProperties.h"
#include "dleyna.h"

/// The property maps of the first `count` children of a container of the fast service, all
/// decoded at once. Ends the program where they don't come. Blocks.
PropertyMaps readPropertyMaps(const QString &container, int count);

/// The same as the plug-in takes them apart while it reads a list.
QVector<ObjectProperties> asProperties(const PropertyMaps &maps);
