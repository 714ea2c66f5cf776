#include <api/core/CMRequest.h>
#include <api/core/CMWorker.h>
#include <api/core/OrkaValue.h>

namespace {
template<typename Record>
void registerRecord(const char *name)
{
    qRegisterMetaType<Record>(name);
    QMetaType::registerConverter<Record, OrkaHash>(
        [](const Record &record) { return OrkaHash(record); });
    QMetaType::registerConverter<Record, QVariantHash>(
        [](const Record &record) { return record.toHash(); });
}

void registerRecords()
{
    qRegisterMetaType<OrkaHash>("OrkaHash");
    QMetaType::registerEqualsComparator<OrkaHash>();
    QMetaType::registerConverter<OrkaHash, QVariantHash>(&OrkaHash::toHash);
    QMetaType::registerConverter<QVariantHash, OrkaHash>(
        [](const QVariantHash &hash) { return OrkaHash(hash); });
    QMetaType::registerConverter<QVariantMap, OrkaHash>([](const QVariantMap &map) {
        OrkaHash record;
        for (auto it = map.begin(); it != map.end(); ++it)
            record.setValue(it.key(), it.value());
        return record;
    });
    registerRecord<OrkaRowsRoles>("OrkaRowsRoles");
    registerRecord<OrkaValue>("OrkaValue");
}

void registerTexts()
{
    qRegisterMetaType<CMPath>("CMPath");
    QMetaType::registerEqualsComparator<CMPath>();
    QMetaType::registerConverter<CMPath, QString>(&CMPath::toEncoded);
    qRegisterMetaType<TrString>("TrString");
    QMetaType::registerEqualsComparator<TrString>();
    QMetaType::registerConverter<TrString, QString>(&TrString::toString);
    QMetaType::registerConverter<QString, TrString>(
        [](const QString &text) { return TrString(text); });
}

bool registerTypes()
{
    registerRecords();
    registerTexts();
    qRegisterMetaType<CMGetRowsRequest>("CMGetRowsRequest");
#ifndef ORKA_FOREIGN_SDK
    qRegisterMetaType<CMVoidReply>("CMVoidReply");
    qRegisterMetaType<CMGetDataRequest>("CMGetDataRequest");
    qRegisterMetaType<CMSetDataRequest>("CMSetDataRequest");
#endif
    return true;
}

// Done when the library is loaded: variants that hold these types are compared and converted, and
// queued connections carry them, before anybody had a reason to call into the library.
[[maybe_unused]] const bool registered = registerTypes();
} // namespace
