#include "ArbitraryValue.h"
#include "LonelyWorker.h"

#include <QJsonDocument>

#include <fuzzer/FuzzedDataProvider.h>

namespace {

const QStringList propertyNames{"Type", "TypeEx", "MIMEType", "DisplayName", "Artist", "Album",
    "AlbumArtURL", "URLs", "Creator", "Genre", "Path", "Date", "TrackNumber", "Duration", "Bitrate",
    "SampleRate", "BitsPerSample", ""};

/// The fuzzer's bytes as a source of arbitrary values.
class Bytes
{
public:
    Bytes(const uint8_t *data, size_t size)
        : m_data(data, size)
    {
    }

    bool isEmpty() { return m_data.remaining_bytes() == 0; }
    quint32 below(quint32 bound) { return m_data.ConsumeIntegralInRange<quint32>(0, bound - 1); }
    QString text()
    {
        const quint32 choice = below(quint32(hostileTexts().size()) + 8);
        if (choice < quint32(hostileTexts().size()))
            return hostileTexts().at(int(choice));
        return QString::fromStdString(m_data.ConsumeRandomLengthString(64));
    }

private:
    FuzzedDataProvider m_data;
};

} // namespace

/// Whatever a media server says of an object, it becomes a row and an item of well-formed parts.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const LonelyWorker lonely;
    Bytes bytes(data, size);
    QVariantMap properties;
    while (!bytes.isEmpty() && properties.size() < 25) {
        const QString name = propertyNames.at(int(bytes.below(quint32(propertyNames.size()))));
        properties.insert(name, arbitraryValue(bytes));
    }

    const OrkaRoles roles = lonely.worker->fillin_roles(properties);
    require(roles.path().prefix() == QLatin1String("upnp"));
    const QStringList wanted{OrkaRoles::Title(), OrkaRoles::Path(), QStringLiteral("nonsense")};
    require(lonely.worker->fillin_childRoles(properties, wanted).size() == wanted.size());

    const OrkaPlayListItem item = lonely.worker->fillin_playlistItem(properties);
    QJsonParseError error;
    QJsonDocument::fromJson(item.orkaRoles().toUtf8(), &error);
    require(item.isEmpty() || error.error == QJsonParseError::NoError);
    return 0;
}
