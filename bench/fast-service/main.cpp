// fast-service [SERVERS]: a media service with prebuilt replies on the session bus. Says "ready"
// on standard output when it owns the name, and ends with the bus.

#include "FastService.h"
#include "MediaServiceNames.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv)
{
    const long servers = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 1;
    if (argc > 2 || servers < 1 || servers > 10000) {
        std::fputs("usage: fast-service [SERVERS], 1 to 10000 of them\n", stderr);
        return 2;
    }
    DBusError error = DBUS_ERROR_INIT;
    DBusConnection *connection = dbus_bus_get(DBUS_BUS_SESSION, &error);
    if (!connection) {
        std::fprintf(stderr,
            "There is no session bus (%s). Start one and set DBUS_SESSION_BUS_ADDRESS.\n",
            error.message);
        return 3;
    }
    dbus_connection_set_exit_on_disconnect(connection, FALSE);
    const int owner = dbus_bus_request_name(
        connection, mediaService::busName, DBUS_NAME_FLAG_DO_NOT_QUEUE, &error);
    if (owner != DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER) {
        std::fputs("Another media service runs on this bus; use a bus of its own.\n", stderr);
        return 3;
    }
    std::puts("ready");
    std::fflush(stdout);
    FastService(connection, unsigned(servers)).run();
}
