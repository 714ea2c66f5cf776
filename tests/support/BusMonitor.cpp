#include "BusMonitor.h"

#include <QDeadlineTimer>

#include <dbus/dbus.h>

BusMonitor::BusMonitor(const QString &address)
{
    DBusError error = DBUS_ERROR_INIT;
    m_connection = dbus_connection_open_private(address.toLatin1().constData(), &error);
    if (!m_connection || !dbus_bus_register(m_connection, &error))
        qFatal("No monitor on the test's bus: %s", error.message);
    dbus_connection_set_exit_on_disconnect(m_connection, FALSE);
    DBusMessage *become = dbus_message_new_method_call(
        DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, "org.freedesktop.DBus.Monitoring", "BecomeMonitor");
    const char **rules = nullptr;
    const dbus_uint32_t flags = 0;
    dbus_message_append_args(become, DBUS_TYPE_ARRAY, DBUS_TYPE_STRING, &rules, 0, DBUS_TYPE_UINT32,
        &flags, DBUS_TYPE_INVALID);
    DBusMessage *answer =
        dbus_connection_send_with_reply_and_block(m_connection, become, 5000, &error);
    if (!answer)
        qFatal("No monitor on the test's bus: %s", error.message);
    dbus_message_unref(answer);
    dbus_message_unref(become);
}

BusMonitor::~BusMonitor()
{
    dbus_connection_close(m_connection);
    dbus_connection_unref(m_connection);
}

DBusMessage *BusMonitor::next()
{
    const QDeadlineTimer deadline(5000);
    while (!deadline.hasExpired()) {
        if (DBusMessage *message = dbus_connection_pop_message(m_connection))
            return message;
        dbus_connection_read_write(m_connection, 100);
    }
    qFatal("The end of what the monitor should see never came.");
}

QStringList BusMonitor::callsOf(const QString &sender, const QString &until)
{
    QStringList calls;
    for (bool more = true; more;) {
        DBusMessage *message = next();
        const QString member = QString::fromLatin1(dbus_message_get_member(message));
        more = member != until;
        const bool isCall = dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_METHOD_CALL;
        if (isCall && more && sender == QLatin1String(dbus_message_get_sender(message))) {
            const char *text = "";
            dbus_message_get_args(message, nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
            calls.append(member + QLatin1Char(' ') + QString::fromUtf8(text));
        }
        dbus_message_unref(message);
    }
    return calls;
}
