#include "FaultyAnswers.h"

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
    return call.member() == QLatin1String("ListChildren")
        || call.member() == QLatin1String("SearchObjectsEx");
}

bool isAboutServers(const FakeCall &call)
{
    return call.path() == names::managerPath || call.arguments().contains(names::device);
}

FakeReply listing(const FakeCall &call, const QList<QVariantMap> &objects)
{
    FakeReply reply{{propertyMaps(objects)}, {}, {}};
    if (call.member() == QLatin1String("SearchObjectsEx"))
        reply.values.append(uint(objects.size()));
    return reply;
}

QVariantMap track(int number)
{
    return {{"Type", "music"}, {"DisplayName", QStringLiteral("Track %1").arg(number)},
        {"MIMEType", "audio/mpeg"}, {"URLs", QStringList{"http://10.0.0.9/track"}},
        {"Path",
            QVariant::fromValue(
                QDBusObjectPath(names::serverPrefix + QStringLiteral("3/%1").arg(number)))}};
}

} // namespace

FakeReply FaultyAnswers::answer(const FakeCall &call)
{
    // Without servers there is little to ask for, so what is read of them fails less often.
    if (!m_dice.chance(isAboutServers(call) ? m_rate / 6 : m_rate))
        return m_service.treeAnswer(call);
    switch (m_dice.below(8)) {
    case 0:
    case 1:
    case 2:
        return error();
    case 3:
    case 4:
        return wrongSignature();
    case 5:
        if (isListing(call) && m_dice.chance(5))
            return hugeListing(call);
        [[fallthrough]];
    default:
        return strangeValues(call);
    }
}

FakeReply FaultyAnswers::error()
{
    m_tally.inject(Fault::ErrorReply);
    return FakeReply::error(m_dice.pick(errorNames), m_dice.text());
}

FakeReply FaultyAnswers::wrongSignature()
{
    m_tally.inject(Fault::WrongSignature);
    QVariantList values;
    for (quint32 left = m_dice.below(3); left > 0; --left)
        values.append(arbitraryValue(m_dice));
    return {values, {}, {}};
}

FakeReply FaultyAnswers::strangeValues(const FakeCall &call)
{
    if (call.member() == QLatin1String("Get")) {
        m_tally.inject(Fault::WrongTypes);
        return {{QVariant::fromValue(QDBusVariant(arbitraryValue(m_dice)))}, {}, {}};
    }
    if (call.member() == QLatin1String("GetAll"))
        return {{strangeObject()}, {}, {}};
    if (!isListing(call))
        return wrongSignature();
    QList<QVariantMap> objects;
    for (quint32 left = m_dice.below(6); left > 0; --left)
        objects.append(strangeObject());
    return listing(call, objects);
}

QVariantMap FaultyAnswers::strangeObject()
{
    QVariantMap object = track(int(m_dice.below(20)));
    // Containers among them are listed in turn; their number is limited, so a walk ends.
    if (m_dice.chance(30))
        object.insert(QStringLiteral("Type"), QStringLiteral("container"));
    for (const QString &name : propertyNames) {
        if (m_dice.chance(20)) {
            object.insert(name, arbitraryValue(m_dice));
            m_tally.inject(Fault::WrongTypes);
        } else if (m_dice.chance(10)) {
            object.remove(name);
            m_tally.inject(Fault::MissingKeys);
        }
    }
    if (m_dice.chance(20)) {
        object.insert(QString(), QString());
        m_tally.inject(Fault::EmptyKeys);
    }
    return object;
}

FakeReply FaultyAnswers::hugeListing(const FakeCall &call)
{
    m_tally.inject(Fault::HugeReply);
    QList<QVariantMap> objects;
    for (int i = 0; i < 2000; ++i)
        objects.append(track(i));
    return listing(call, objects);
}
