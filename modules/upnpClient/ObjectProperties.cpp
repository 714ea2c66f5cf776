#include "ObjectProperties.h"

#include <QStringList>

namespace {

const std::array<QString, ObjectProperties::Count> &names()
{
    static const std::array<QString, ObjectProperties::Count> sorted = {
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
    return sorted;
}

} // namespace

ObjectProperties::ObjectProperties(const QVariantMap &map)
    : m_map(map)
{
    // Both sides ascend, so they are walked side by side.
    const auto &sorted = names();
    auto entry = map.constBegin();
    int name = 0;
    while (entry != map.constEnd() && name < Count) {
        const QString &known = sorted[std::size_t(name)];
        const int order = entry.key() == known ? 0 : entry.key().compare(known);
        if (order == 0)
            m_values[std::size_t(name)] = &entry.value();
        if (order <= 0)
            ++entry;
        if (order >= 0)
            ++name;
    }
}

QStringList ObjectProperties::strings(Name name) const
{
    return has(name) ? m_values[name]->toStringList() : QStringList();
}
