#pragma once

#include <QVariantMap>

#include <array>

/// The properties of one media object that the plug-in knows, found in its property map in one
/// pass. Keeps a reference to the map.
class ObjectProperties
{
public:
    /// In the ascending order of their names, which the pass relies on.
    enum Name {
        Album,
        AlbumArtURL,
        Artist,
        Bitrate,
        BitsPerSample,
        Creator,
        Date,
        DisplayName,
        Duration,
        Genre,
        MIMEType,
        Path,
        SampleRate,
        Type,
        URLs,
        Count
    };

    explicit ObjectProperties(const QVariantMap &map);

    const QVariantMap &map() const { return m_map; }
    bool has(Name name) const { return m_values[name] != nullptr; }
    /// Each converts as Qt does; what is absent gives an empty text, 0 or an empty list.
    QString string(Name name) const { return has(name) ? m_values[name]->toString() : QString(); }
    int integer(Name name) const { return has(name) ? m_values[name]->toInt() : 0; }
    QStringList strings(Name name) const;
    QVariant value(Name name) const { return has(name) ? *m_values[name] : QVariant(); }

private:
    const QVariantMap &m_map;
    std::array<const QVariant *, Count> m_values{};
};
