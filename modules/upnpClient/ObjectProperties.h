#pragma once

#include <QVariantMap>

#include <array>

/// The properties of one media object that the plug-in uses, each in a place of its own.
class ObjectProperties
{
public:
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

    ObjectProperties() = default;
    explicit ObjectProperties(const QVariantMap &map);

    /// `Count` for a name that the plug-in has no use for.
    static Name nameOf(const QString &text);

    void set(Name name, const QVariant &value);
    /// Takes over what `other` has, in place of what is here.
    void merge(const ObjectProperties &other);
    bool has(Name name) const { return (m_present >> name & 1U) != 0; }
    /// Each converts as Qt does; what is absent gives an invalid value, an empty text, 0 or an
    /// empty list.
    const QVariant &value(Name name) const { return m_values[std::size_t(name)]; }
    QString string(Name name) const { return value(name).toString(); }
    int integer(Name name) const { return value(name).toInt(); }
    QStringList strings(Name name) const { return value(name).toStringList(); }

    /// The map that this was made from; empty when the properties came one by one.
    const QVariantMap &map() const { return m_map; }

private:
    std::array<QVariant, Count> m_values;
    /// A bit for each name: an invalid value can be present.
    unsigned m_present = 0;
    QVariantMap m_map;
};
