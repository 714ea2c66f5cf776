// SPDX-License-Identifier: MIT
#pragma once

#include <api/core/OrkaHash.h>

/// One address of one interface.
class ORKA_API_EXPORT OrkaNetworkAddress : public OrkaHash
{
    ORKA_RECORD(OrkaNetworkAddress)

    static const QString &Ip();

    /// Numeric, IPv4 or IPv6 without brackets.
    void setIp(const QString &ip) { setValue(Ip(), ip); }
    QString ip() const { return value(Ip()).toString(); }
};

/// Anything that holds a list of addresses, in the order in which they are preferred.
class ORKA_API_EXPORT OrkaNetworkAddresses : public OrkaHash
{
    ORKA_RECORD(OrkaNetworkAddresses)

    static const QString &Addresses();

    void setAddresses(const OrkaList<OrkaNetworkAddress> &list)
    {
        setValue(Addresses(), QVariantList(list));
    }
    /// Each hash is an `OrkaNetworkAddress`.
    QList<QVariantHash> addresses() const;
};

class ORKA_API_EXPORT OrkaNetworkWiredInterface : public OrkaNetworkAddresses
{
    using OrkaNetworkAddresses::OrkaNetworkAddresses;
};

class ORKA_API_EXPORT OrkaNetworkWirelessInterface : public OrkaNetworkAddresses
{
    using OrkaNetworkAddresses::OrkaNetworkAddresses;
};

/// One network that the device itself offers as an access point.
class ORKA_API_EXPORT OrkaNetworkSoftAp : public OrkaNetworkAddresses
{
    using OrkaNetworkAddresses::OrkaNetworkAddresses;
};

class ORKA_API_EXPORT OrkaNetworkSoftApInterface : public OrkaHash
{
    ORKA_RECORD(OrkaNetworkSoftApInterface)

    static const QString &Aps();

    QList<OrkaNetworkSoftAp> aps() const;
};

/// The device's addresses by kind of interface; published at `OrkaNetworkInfoPath()`.
class ORKA_API_EXPORT OrkaNetworkInfo : public OrkaHash
{
    ORKA_RECORD(OrkaNetworkInfo)

    static const QString &Wired();
    static const QString &Wireless();
    static const QString &SoftAp();

    void setWired(const OrkaNetworkWiredInterface &wired) { setValue(Wired(), wired.toVariant()); }
    void setWireless(const OrkaNetworkWirelessInterface &interface)
    {
        setValue(Wireless(), interface.toVariant());
    }

    OrkaNetworkWiredInterface wired() const { return fromVariant(value(Wired())); }
    OrkaNetworkWirelessInterface wireless() const { return fromVariant(value(Wireless())); }
    OrkaNetworkSoftApInterface softAp() const { return fromVariant(value(SoftAp())); }
};
