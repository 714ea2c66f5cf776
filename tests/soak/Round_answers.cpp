#include "Round.h"

#include "MediaServiceNames.h"

namespace {

const QStringList propertyNames{"Type", "TypeEx", "MIMEType", "DisplayName", "Artist", "Album",
    "AlbumArtURL", "URLs", "Creator", "Genre", "Path", "Date", "TrackNumber", "Duration", "Bitrate",
    "SampleRate", "BitsPerSample", "Resources", "ChildCount"};

const QStringList errorNames{names::operationFailed, names::badPath, names::unknownMethod,
    "com.intel.dleyna.Cancelled", "org.freedesktop.DBus.Error.NoReply",
    "org.freedesktop.DBus.Error.LimitsExceeded"};

bool isListing(const FakeCall &call)
{
    return call.member() == "ListChildren" || call.member() == "SearchObjectsEx";
}

bool isAboutServers(const FakeCall &call)
{
    return call.path() == names::managerPath || call.arguments().contains(names::device);
}

FakeReply listing(const FakeCall &call, const QList<QVariantMap> &objects)
{
    FakeReply reply{{propertyMaps(objects)}};
    if (call.member() == "SearchObjectsEx")
        reply.values.append(uint(objects.size()));
    return reply;
}

QVariantMap track(int number)
{
    const QDBusObjectPath path(names::serverPrefix + QStringLiteral("3/%1").arg(number));
    return {{"Type", "music"}, {"DisplayName", "Track"}, {"MIMEType", "audio/mpeg"},
        {"URLs", QStringList{"http://10.0.0.9/track"}}, {"Path", QVariant::fromValue(path)}};
}

} // namespace

FakeReply Round::answer(const FakeCall &call)
{
    // Without servers there is little to ask for, so what is read of them fails less often.
    if (!m_dice.chance(isAboutServers(call) ? m_faultRate / 6 : m_faultRate))
        return m_service.treeAnswer(call);
    const quint32 kind = m_dice.below(8);
    if (kind < 3) {
        m_tally.inject("reply is an error");
        return FakeReply::error(m_dice.pick(errorNames), m_dice.text());
    }
    if (kind < 5 || call.path() == names::managerPath)
        return wrongSignature();
    if (kind == 5 && isListing(call) && m_dice.chance(5))
        return hugeListing(call);
    return strangeValues(call);
}

FakeReply Round::wrongSignature()
{
    m_tally.inject("reply of another signature");
    QVariantList values;
    for (quint32 left = m_dice.below(3); left > 0; --left)
        values.append(arbitraryValue(m_dice));
    return {values};
}

FakeReply Round::strangeValues(const FakeCall &call)
{
    if (call.member() == "Get") {
        m_tally.inject("properties of other types");
        return {{QVariant::fromValue(QDBusVariant(arbitraryValue(m_dice)))}};
    }
    if (!isListing(call))
        return {{strangeObject()}};
    QList<QVariantMap> objects;
    for (quint32 left = m_dice.below(6); left > 0; --left)
        objects.append(strangeObject());
    return listing(call, objects);
}

QVariantMap Round::strangeObject()
{
    QVariantMap object = track(int(m_dice.below(20)));
    // Containers among them are listed in turn; their number is limited, so a walk ends.
    if (m_dice.chance(30))
        object.insert("Type", "container");
    for (const QString &name : propertyNames) {
        if (m_dice.chance(20)) {
            object.insert(name, arbitraryValue(m_dice));
            m_tally.inject("properties of other types");
        } else if (m_dice.chance(10)) {
            object.remove(name);
            m_tally.inject("properties missing");
        }
    }
    if (m_dice.chance(20)) {
        object.insert("", "");
        m_tally.inject("empty keys and values");
    }
    return object;
}

FakeReply Round::hugeListing(const FakeCall &call)
{
    m_tally.inject("reply of 2,000 objects");
    QList<QVariantMap> objects;
    for (int i = 0; i < 2000; ++i)
        objects.append(track(i));
    return listing(call, objects);
}
