#pragma once

#include <QDBusArgument>
#include <QDBusMessage>
#include <QVariantMap>

#include <optional>

/// Reads the property maps of a reply (its first argument, aa{sv}) one by one, straight from the
/// message: nothing is decoded twice and no second copy of a long list is held. The reply's
/// signature has been checked before. Keeps the message until the last map has been read.
class PropertyMapReader
{
public:
    /// Reads nothing.
    PropertyMapReader() = default;
    explicit PropertyMapReader(const QDBusMessage &reply);
    PropertyMapReader(const PropertyMapReader &) = delete;
    PropertyMapReader &operator=(const PropertyMapReader &) = delete;
    ~PropertyMapReader() { close(); }

    /// Turns to another reply.
    void open(const QDBusMessage &reply);
    /// The next map; false at the end, with `map` untouched.
    bool next(QVariantMap *map);

private:
    void close();

    /// Inside its array.
    std::optional<QDBusArgument> m_argument;
};
