#pragma once

#include "ObjectProperties.h"
#include "WantedRoles.h"

#include <QDBusArgument>
#include <QDBusMessage>

#include <optional>

/// Reads the property maps of a reply (its first argument, aa{sv} or a single a{sv}) one by one,
/// straight from the message: nothing is decoded twice, no second copy of a long list is held, and
/// what nobody asks for is passed over. The reply's signature has been checked before. Keeps the
/// message until the last map has been read.
class PropertyMapReader
{
public:
    PropertyMapReader() = default;
    PropertyMapReader(const PropertyMapReader &) = delete;
    PropertyMapReader &operator=(const PropertyMapReader &) = delete;
    ~PropertyMapReader() { close(); }

    /// Turns to a reply; `wanted` are the roles that will be made of its objects.
    void open(const QDBusMessage &reply, const WantedRoles &wanted = WantedRoles());
    /// The next object; false at the end, or when nothing is open.
    bool next(ObjectProperties *properties);

private:
    bool isWanted(ObjectProperties::Name name) const;
    ObjectProperties readWanted(const QDBusArgument &argument) const;
    void close();

    /// Inside its array, where it is one.
    std::optional<QDBusArgument> m_argument;
    bool m_isArray = false;
    bool m_wantsMediaData = true;
};
