#pragma once

#include <api/core/CMValueItem.h>
#include <api/core/orka.h>

/// An interface or an access point with these addresses.
inline QVariantHash withAddresses(const QStringList &ips)
{
    QVariantList addresses;
    for (const QString &ip : ips)
        addresses.append(QVariantHash{{"ip", ip}});
    return {{"addresses", addresses}};
}

/// Publishes the device's addresses; a list for each soft access point.
inline void publishNetwork(const QStringList &wired, const QStringList &wireless = {},
    const QList<QStringList> &softAps = {})
{
    QVariantList aps;
    for (const QStringList &ips : softAps)
        aps.append(withAddresses(ips));
    const QVariantHash info{{"wired", withAddresses(wired)}, {"wireless", withAddresses(wireless)},
        {"softAp", QVariantHash{{"aps", aps}}}};
    CMValueStore::setValue(OrkaNetworkInfoPath(), OrkaHash(QVariantHash{{"networkInfo", info}}));
}
