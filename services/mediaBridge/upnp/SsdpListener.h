#pragma once

#include "core/Timer.h"
#include "upnp/LocalAddress.h"
#include "upnp/SsdpMessage.h"

#include <array>
#include <memory>

namespace bridge {

/// A UDP socket in the main loop; what comes is given to `onPacket` with its sender's address.
class UdpSocket
{
public:
    UdpSocket() = default;
    ~UdpSocket();
    UdpSocket(const UdpSocket &) = delete;
    UdpSocket &operator=(const UdpSocket &) = delete;

    std::function<void(std::string_view packet, const std::string &sender)> onPacket;
    /// The socket doesn't work any more.
    std::function<void()> onBroken;

    bool open(int family);
    bool set(int level, int option, const void *value, size_t size) const;
    bool set(int level, int option, int value) const
    {
        return set(level, option, &value, sizeof value);
    }
    bool bind(const std::string &address, uint16_t port, unsigned scope) const;
    bool send(
        const std::string &text, const std::string &address, uint16_t port, unsigned scope) const;
    /// Starts to receive.
    void listen();

private:
    static gboolean readable(int, GIOCondition, gpointer self);
    void readSome();
    bool receive() const;

    int m_fd = -1;
    int m_family = AF_INET;
    guint m_source = 0;
    Timer m_rest;
};

/// Hears what media servers say at one address of this machine, and searches from there. UPnP's
/// discovery needs only UDP; no port but 1900 is asked for by its number.
class SsdpListener
{
public:
    explicit SsdpListener(LocalAddress address);

    const LocalAddress &address() const { return m_address; }

    std::function<void(const SsdpMessage &, const std::string &sender)> onMessage;
    /// It hears nothing any more and has to be replaced.
    std::function<void()> onBroken;

    /// Gives a sentence on failure, else nothing.
    std::string start();
    /// Sends one search; servers answer within a second.
    void search();

private:
    bool openNotifySocket();
    bool openSearchSocket();

    LocalAddress m_address;
    std::vector<std::string> m_groups;
    UdpSocket m_notify;
    UdpSocket m_search;
};

} // namespace bridge
