#include "ObjectProperties.h"

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
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        set(nameOf(entry.key()), entry.value());
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
    m_values[std::size_t(name)] = value;
    m_present |= 1U << name;
}
