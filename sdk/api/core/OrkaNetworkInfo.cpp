#include "OrkaNetworkInfo.h"

#include <private/RecordKey.h>

ORKA_RECORD_KEY(OrkaNetworkAddress, Ip, "ip")
ORKA_RECORD_KEY(OrkaNetworkAddresses, Addresses, "addresses")
ORKA_RECORD_KEY(OrkaNetworkSoftApInterface, Aps, "aps")
ORKA_RECORD_KEY(OrkaNetworkInfo, Wired, "wired")
ORKA_RECORD_KEY(OrkaNetworkInfo, Wireless, "wireless")
ORKA_RECORD_KEY(OrkaNetworkInfo, SoftAp, "softAp")

QList<QVariantHash> OrkaNetworkAddresses::addresses() const
{
    QList<QVariantHash> result;
    for (const QVariant &address : value(Addresses()).toList())
        result.append(OrkaHash::fromVariant(address).toHash());
    return result;
}

QList<OrkaNetworkSoftAp> OrkaNetworkSoftApInterface::aps() const
{
    QList<OrkaNetworkSoftAp> result;
    for (const QVariant &ap : value(Aps()).toList())
        result.append(OrkaNetworkSoftAp(OrkaHash::fromVariant(ap)));
    return result;
}
