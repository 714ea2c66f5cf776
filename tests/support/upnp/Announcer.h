#pragma once

#include <QString>

#include <vector>

struct _GSSDPResourceGroup;

/// Announces one UPnP media server by SSDP on every address of the machine, and answers searches
/// for it.
class Announcer
{
public:
    /// On every interface that is up, carries multicast and isn't the loopback. The description is
    /// fetched from `port` at the address that heard the search. Addresses that can't be used are
    /// left out.
    Announcer(const QString &udn, quint16 port);
    ~Announcer(); ///< says byebye, unless it was silenced
    Announcer(const Announcer &) = delete;
    Announcer &operator=(const Announcer &) = delete;

    /// From here on nothing is sent, not even a byebye.
    void silence();
    /// How many addresses it announces on.
    int addressCount() const { return int(m_groups.size()); }

private:
    std::vector<_GSSDPResourceGroup *> m_groups;
};
