#pragma once

#include "core/Value.h"

#include <dbus/dbus.h>
#include <memory>

namespace bridge {

struct MessageUnref
{
    void operator()(DBusMessage *message) const { dbus_message_unref(message); }
};
/// Owns one reference to a D-Bus message.
using Message = std::unique_ptr<DBusMessage, MessageUnref>;

/// Appends values to the body of a message, or to a container in it that is open for as long as its
/// writer lives. Only the innermost writer may be used. libdbus ends the program over a text that
/// isn't UTF-8 and over a path that is none: both are replaced here, whoever they came from.
class MessageWriter
{
public:
    explicit MessageWriter(DBusMessage *message);
    /// Opens a container: `type` is one of libdbus's DBUS_TYPE_ constants, `signature` what is
    /// inside an array or a variant, else null.
    MessageWriter(MessageWriter &parent, int type, const char *signature);
    ~MessageWriter();
    MessageWriter(const MessageWriter &) = delete;
    MessageWriter &operator=(const MessageWriter &) = delete;

    /// As what it is; nothing for none.
    void add(const Value &value);
    /// As a variant; not none.
    void addVariant(const Value &value);
    /// As an entry of an a{sv}; nothing for none. The name is one of ours, which isn't checked.
    void addEntry(const char *name, const Value &value);
    /// The same with a name that may be a server's.
    void addEntry(const std::string &name, const Value &value);

    /// At least the bytes that were appended, those of closed containers included; of the whole
    /// body where this is its writer.
    size_t bytes() const { return m_bytes; }

private:
    struct Adder;
    void addBasic(int type, const void *value, size_t size = 0);
    void addText(const std::string &text);
    void addPath(const std::string &path);
    void addFlags(int type, const std::vector<std::pair<std::string, bool>> &flags);

    MessageWriter *m_parent = nullptr;
    DBusMessageIter m_iter;
    size_t m_bytes = 0;
};

/// Reads the arguments of a message one by one. The caller has checked the signature.
class Arguments
{
public:
    explicit Arguments(DBusMessage *message) { dbus_message_iter_init(message, &m_iter); }
    bool hasMore() { return dbus_message_iter_get_arg_type(&m_iter) != DBUS_TYPE_INVALID; }
    /// An s or o.
    std::string text();
    /// A u.
    uint32_t number();
    /// An as or ao. One more than `most` means that there are more: the rest isn't read.
    std::vector<std::string> texts(size_t most);

private:
    DBusMessageIter m_iter;
};

} // namespace bridge
