#include "bus/BusLoop.h"

#include "core/Glib.h"
#include "core/Limits.h"

namespace bridge {

namespace {

struct Flag
{
    GIOCondition condition;
    unsigned watchFlag;
};
constexpr Flag flags[] = {{G_IO_IN, DBUS_WATCH_READABLE}, {G_IO_OUT, DBUS_WATCH_WRITABLE},
    {G_IO_HUP, DBUS_WATCH_HANGUP}, {G_IO_ERR, DBUS_WATCH_ERROR}};

bool hasMore(int descriptor)
{
    GPollFD more{descriptor, G_IO_IN, 0};
    return g_poll(&more, 1, 0) > 0;
}

/// libdbus reads 16 KiB at a time. What it doesn't read waits in the order it came, where one
/// client's thousand calls are before the others'; here, clients take turns.
gboolean watchIsReady(int descriptor, GIOCondition condition, gpointer watch)
{
    constexpr int mostReads = 4;
    unsigned ready = 0;
    for (const Flag &flag : flags)
        ready |= (condition & flag.condition) != 0 ? flag.watchFlag : 0;
    dbus_watch_handle(static_cast<DBusWatch *>(watch), ready);
    // The watch may have gone, and this source with it.
    GSource *source = g_main_current_source();
    for (int i = 1; i < mostReads && ready == DBUS_WATCH_READABLE
         && g_source_is_destroyed(source) == FALSE && hasMore(descriptor);
         ++i)
        dbus_watch_handle(static_cast<DBusWatch *>(watch), ready);
    return G_SOURCE_CONTINUE;
}

void removeWatch(DBusWatch *watch, void *)
{
    if (const guint source = GPOINTER_TO_UINT(dbus_watch_get_data(watch)))
        g_source_remove(source);
    dbus_watch_set_data(watch, nullptr, nullptr);
}

dbus_bool_t addWatch(DBusWatch *watch, void *)
{
    if (!dbus_watch_get_enabled(watch))
        return TRUE;
    const unsigned wanted = dbus_watch_get_flags(watch) | DBUS_WATCH_HANGUP | DBUS_WATCH_ERROR;
    unsigned condition = 0;
    for (const Flag &flag : flags)
        condition |= (wanted & flag.watchFlag) != 0 ? flag.condition : 0;
    const guint source = watchDescriptor(
        dbus_watch_get_unix_fd(watch), static_cast<GIOCondition>(condition), &watchIsReady, watch);
    dbus_watch_set_data(watch, GUINT_TO_POINTER(source), nullptr);
    return TRUE;
}

void toggleWatch(DBusWatch *watch, void *)
{
    removeWatch(watch, nullptr);
    addWatch(watch, nullptr);
}

} // namespace

BusLoop::BusLoop(DBusConnection *connection)
    : m_connection(connection)
{
    dbus_connection_set_watch_functions(
        connection, &addWatch, &removeWatch, &toggleWatch, nullptr, nullptr);
    dbus_connection_set_dispatch_status_function(
        connection,
        [](DBusConnection *, DBusDispatchStatus status, void *self) {
            if (status == DBUS_DISPATCH_DATA_REMAINS)
                static_cast<BusLoop *>(self)->dispatchLater();
        },
        this, nullptr);
    // What came while the connection was made.
    dispatchLater();
}

BusLoop::~BusLoop()
{
    dbus_connection_set_dispatch_status_function(m_connection, nullptr, nullptr, nullptr);
    dbus_connection_set_watch_functions(m_connection, nullptr, nullptr, nullptr, nullptr, nullptr);
}

/// For a short time of a turn, so that many messages don't hold up everything else.
void BusLoop::dispatchLater()
{
    if (m_dispatch.isRunning())
        return;
    m_dispatch.start(0, [this] {
        const int64_t end = g_get_monotonic_time() + limits::turnUs;
        while (dbus_connection_dispatch(m_connection) == DBUS_DISPATCH_DATA_REMAINS) {
            if (g_get_monotonic_time() > end) {
                dispatchLater();
                return;
            }
        }
    });
}

} // namespace bridge
