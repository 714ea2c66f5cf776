#pragma once

#include <gio/gio.h>
#include <glib-unix.h>
#include <string>
#include <utility>

namespace bridge {

/// Owns one reference to a GObject.
template<typename T>
class Ref
{
public:
    Ref() = default;
    /// Takes over the caller's reference.
    explicit Ref(T *object)
        : m_object(object)
    {
    }
    Ref(const Ref &other)
        : m_object(other.m_object ? static_cast<T *>(g_object_ref(other.m_object)) : nullptr)
    {
    }
    Ref(Ref &&other) noexcept
        : m_object(std::exchange(other.m_object, nullptr))
    {
    }
    Ref &operator=(Ref other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~Ref()
    {
        if (m_object)
            g_object_unref(m_object);
    }
    /// Adds a reference to an object that somebody else owns.
    static Ref share(T *object)
    {
        return Ref(object ? static_cast<T *>(g_object_ref(object)) : nullptr);
    }
    T *get() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

private:
    T *m_object = nullptr;
};

/// Calls `ready` from the main loop for as long as it gives G_SOURCE_CONTINUE. The number is for
/// g_source_remove.
inline guint watchDescriptor(
    int descriptor, GIOCondition condition, GUnixFDSourceFunc ready, void *data)
{
    GSource *source = g_unix_fd_source_new(descriptor, condition);
    g_source_set_callback(source, G_SOURCE_FUNC(ready), data, nullptr);
    // Others are taken out of the poll while they are called, and the next is woken for it.
    g_source_set_can_recurse(source, TRUE);
    const guint id = g_source_attach(source, nullptr);
    g_source_unref(source);
    return id;
}

/// Copies and frees a text of GLib's; null gives an empty one.
inline std::string takeString(char *text)
{
    std::string copy = text ? text : "";
    g_free(text);
    return copy;
}

/// Copies a text that may be null.
inline std::string textOrEmpty(const char *text)
{
    return text ? text : "";
}

/// The message of `error`, which is freed and reset.
inline std::string takeMessage(GError *&error)
{
    std::string message = error ? error->message : "";
    g_clear_error(&error);
    return message;
}

/// `uri` as seen from `base`; empty where there is no such URL.
inline std::string absoluteUrl(const std::string &uri, const std::string &base)
{
    if (uri.empty() || g_uri_peek_scheme(uri.c_str()))
        return uri;
    std::string url =
        takeString(g_uri_resolve_relative(base.c_str(), uri.c_str(), G_URI_FLAGS_ENCODED, nullptr));
    // GLib forgets to escape the sign before the interface of a link-local address.
    const size_t scope = url.find('%');
    const size_t baseEnd = base.find(']');
    if (baseEnd != std::string::npos && base.find("%25") < baseEnd && scope < url.find(']'))
        url.insert(scope + 1, "25");
    return url;
}

} // namespace bridge
