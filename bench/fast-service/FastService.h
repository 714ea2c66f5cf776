#pragma once

#include "Replies.h"

#include <cstdint>

/// A media service that answers at once, so that a measurement shows the client and the bus. Owns
/// the media service's name on the bus. One thread; `run()` returns when the bus is gone.
class FastService
{
public:
    /// `servers` are announced by GetServers, from 1.
    FastService(DBusConnection *connection, unsigned servers);

    void run();

private:
    void handle(DBusMessage *call);
    bridge::Message answer(DBusMessage *call);
    bridge::Message answerList(DBusMessage *call);
    bridge::Message answerSearch(DBusMessage *call);
    bridge::Message answerGet(DBusMessage *call);
    bridge::Message answerGetAll(DBusMessage *call);
    bridge::Message answerServers();
    bridge::Message answerCounters(DBusMessage *call);
    void send(DBusMessage *call, bridge::Message reply);

    DBusConnection *m_connection;
    unsigned m_servers;
    Replies m_replies;
    /// Calls since the last time that somebody asked for them.
    std::uint32_t m_calls = 0;
    /// When a property was last answered, in nanoseconds of the monotonic clock.
    std::uint64_t m_lastProperty = 0;
};
