#pragma once

#include <dbus/dbus.h>
#include <string>
#include <vector>

/// What the bus itself costs: sends the plug-in's calls with libdbus, all at once, and waits for
/// the replies without looking into them. A private connection; blocking; one thread.
class FloorClient
{
public:
    /// Ends the program with a sentence where there is no such bus.
    explicit FloorClient(const std::string &address);
    ~FloorClient();
    FloorClient(const FloorClient &) = delete;
    FloorClient &operator=(const FloorClient &) = delete;

    /// Both calls of a listing: children from `offset`, `max` of them, and the child count.
    void list(const std::string &path, unsigned offset, unsigned max);
    /// Reads one property `count` times.
    void readProperties(const std::string &path, int count);

private:
    void send(DBusMessage *call);
    void waitForAll();

    DBusConnection *m_connection;
    std::vector<DBusPendingCall *> m_pending;
};
