#include "ObjectProperties.h"

#include <QDBusArgument>

namespace {

const std::array<QString, ObjectProperties::Count> &names()
{
    static const std::array<QString, ObjectProperties::Count> list = {
        QStringLiteral("Album"),
        QStringLiteral("AlbumArtURL"),
        QStringLiteral("Artist"),
        QStringLiteral("Bitrate"),
        QStringLiteral("BitsPerSample"),
        QStringLiteral("Creator"),
        QStringLiteral("Date"),
        QStringLiteral("DisplayName"),
        QStringLiteral("Duration"),
        QStringLiteral("Genre"),
        QStringLiteral("MIMEType"),
        QStringLiteral("Path"),
        QStringLiteral("SampleRate"),
        QStringLiteral("Type"),
        QStringLiteral("URLs"),
    };
    return list;
}

} // namespace

ObjectProperties::ObjectProperties(const QVariantMap &map)
    : m_map(map)
{
    // Of a name that comes more than once, the first entry is the one that value() finds.
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        const Name name = nameOf(entry.key());
        if (name != Count && !has(name))
            set(name, entry.value());
    }
}

void ObjectProperties::merge(const ObjectProperties &other)
{
    for (int name = 0; name < Count; ++name) {
        if (other.has(Name(name)))
            set(Name(name), other.value(Name(name)));
    }
    for (auto entry = other.m_map.begin(); entry != other.m_map.end(); ++entry)
        m_map.insert(entry.key(), other.m_map.value(entry.key()));
}

ObjectProperties::Name ObjectProperties::nameOf(const QString &text)
{
    // Most names differ in their length already, so looking at all of them is the quickest way.
    int name = 0;
    for (const QString &known : names()) {
        if (known.size() == text.size() && known == text)
            break;
        ++name;
    }
    return Name(name);
}

void ObjectProperties::set(Name name, const QVariant &value)
{
    if (name == Count)
        return;
    // Undecoded, it converts to nothing and would keep the whole reply.
    static const int undecoded = qMetaTypeId<QDBusArgument>();
    if (value.userType() == undecoded)
        m_values[std::size_t(name)].clear();
    else
        m_values[std::size_t(name)] = value;
    m_present |= 1U << name;
}
