#include "bus/Message.h"

#include "core/Glib.h"

#include <cstring>

namespace bridge {

namespace {

constexpr const char *signatures[] = {
    "", "b", "i", "u", "x", "s", "o", "as", "ao", "a{sb}", "a(sb)", "a{sv}", "aa{sv}"};
static_assert(std::size(signatures) == std::variant_size_v<Value::variant>);

/// What names an object where a server's text made a path that is none; nothing is there.
constexpr const char *nowhere = "/";

std::string takeText(DBusMessageIter &from)
{
    const char *text = nullptr;
    dbus_message_iter_get_basic(&from, &text);
    dbus_message_iter_next(&from);
    return text;
}

} // namespace

/// One function for each type of value; those of arrays add what is inside.
struct MessageWriter::Adder
{
    MessageWriter &to;

    void operator()(std::monostate) {}
    void operator()(bool value)
    {
        const dbus_bool_t wide = value ? TRUE : FALSE;
        to.addBasic(DBUS_TYPE_BOOLEAN, &wide);
    }
    void operator()(int32_t value) { to.addBasic(DBUS_TYPE_INT32, &value); }
    void operator()(uint32_t value) { to.addBasic(DBUS_TYPE_UINT32, &value); }
    void operator()(int64_t value) { to.addBasic(DBUS_TYPE_INT64, &value); }
    void operator()(const std::string &value) { to.addText(value); }
    void operator()(const ObjectPath &value) { to.addPath(value.text); }
    void operator()(const FlagMap &map) { to.addFlags(DBUS_TYPE_DICT_ENTRY, map.flags); }
    void operator()(const FlagList &list) { to.addFlags(DBUS_TYPE_STRUCT, list.flags); }
    void operator()(const PropertyMap &map)
    {
        for (const auto &[name, value] : map)
            to.addEntry(name, value);
    }
    void operator()(const std::vector<PropertyMap> &maps)
    {
        for (const PropertyMap &map : maps)
            to.add(map);
    }
    template<typename Text>
    void operator()(const std::vector<Text> &texts)
    {
        for (const Text &text : texts)
            (*this)(text);
    }
};

MessageWriter::MessageWriter(DBusMessage *message)
{
    dbus_message_iter_init_append(message, &m_iter);
}

MessageWriter::MessageWriter(MessageWriter &parent, int type, const char *signature)
    : m_parent(&parent)
{
    dbus_message_iter_open_container(&parent.m_iter, type, signature, &m_iter);
}

MessageWriter::~MessageWriter()
{
    constexpr size_t mostOfContainer = 16;
    if (!m_parent)
        return;
    dbus_message_iter_close_container(&m_parent->m_iter, &m_iter);
    m_parent->m_bytes += m_bytes + mostOfContainer;
}

void MessageWriter::add(const Value &value)
{
    const auto &plain = static_cast<const Value::variant &>(value);
    const char *signature = signatures[value.index()];
    if (signature[0] == DBUS_TYPE_ARRAY) {
        MessageWriter array(*this, DBUS_TYPE_ARRAY, signature + 1);
        std::visit(Adder{array}, plain);
    } else {
        std::visit(Adder{*this}, plain);
    }
}

void MessageWriter::addVariant(const Value &value)
{
    MessageWriter variant(*this, DBUS_TYPE_VARIANT, signatures[value.index()]);
    variant.add(value);
}

void MessageWriter::addEntry(const char *name, const Value &value)
{
    if (value.isNone())
        return;
    MessageWriter entry(*this, DBUS_TYPE_DICT_ENTRY, nullptr);
    entry.addBasic(DBUS_TYPE_STRING, &name, std::strlen(name));
    entry.addVariant(value);
}

void MessageWriter::addEntry(const std::string &name, const Value &value)
{
    if (value.isNone())
        return;
    MessageWriter entry(*this, DBUS_TYPE_DICT_ENTRY, nullptr);
    entry.addText(name);
    entry.addVariant(value);
}

void MessageWriter::addBasic(int type, const void *value, size_t size)
{
    constexpr size_t mostOfFixed = 16;
    dbus_message_iter_append_basic(&m_iter, type, value);
    m_bytes += mostOfFixed + size;
}

void MessageWriter::addText(const std::string &text)
{
    // libdbus ends the program over a text that isn't UTF-8.
    const auto size = static_cast<gssize>(text.size());
    const char *bytes = text.c_str();
    if (g_utf8_validate(bytes, size, nullptr) != FALSE) {
        addBasic(DBUS_TYPE_STRING, &bytes, text.size());
        return;
    }
    const std::string valid = takeString(g_utf8_make_valid(bytes, size));
    bytes = valid.c_str();
    addBasic(DBUS_TYPE_STRING, &bytes, valid.size());
}

void MessageWriter::addPath(const std::string &path)
{
    // As with texts; a NUL would hide what comes behind it.
    const bool isValid =
        path.find('\0') == std::string::npos && dbus_validate_path(path.c_str(), nullptr) != FALSE;
    const char *bytes = isValid ? path.c_str() : nowhere;
    addBasic(DBUS_TYPE_OBJECT_PATH, &bytes, path.size());
}

void MessageWriter::addFlags(int type, const std::vector<std::pair<std::string, bool>> &flags)
{
    for (const auto &[name, isSet] : flags) {
        MessageWriter pair(*this, type, nullptr);
        pair.add(name);
        pair.add(isSet);
    }
}

std::string Arguments::text()
{
    return takeText(m_iter);
}

uint32_t Arguments::number()
{
    uint32_t number = 0;
    dbus_message_iter_get_basic(&m_iter, &number);
    dbus_message_iter_next(&m_iter);
    return number;
}

std::vector<std::string> Arguments::texts(size_t most)
{
    std::vector<std::string> texts;
    DBusMessageIter inside;
    dbus_message_iter_recurse(&m_iter, &inside);
    while (texts.size() <= most && dbus_message_iter_get_arg_type(&inside) != DBUS_TYPE_INVALID)
        texts.push_back(takeText(inside));
    dbus_message_iter_next(&m_iter);
    return texts;
}

} // namespace bridge
