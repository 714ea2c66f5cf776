#pragma once

// GLib has members with names that are Qt's keywords.
#pragma push_macro("signals")
#undef signals
#include <gio/gio.h>
#include <libsoup/soup.h>
#pragma pop_macro("signals")

#include <QString>

#include <memory>

struct GObjectUnref
{
    void operator()(gpointer object) const { g_object_unref(object); }
};

/// Owns one reference to a GObject.
template<typename T>
using GRef = std::unique_ptr<T, GObjectUnref>;

/// Adds a reference to an object that somebody else owns.
template<typename T>
GRef<T> shareRef(T *object)
{
    return GRef<T>(static_cast<T *>(g_object_ref(object)));
}

struct GBytesUnref
{
    void operator()(GBytes *bytes) const { g_bytes_unref(bytes); }
};
using GBytesRef = std::unique_ptr<GBytes, GBytesUnref>;

/// The text of `error`, which is freed and reset.
inline QString takeMessage(GError *&error)
{
    const QString message = error != nullptr ? QString::fromUtf8(error->message) : QString();
    g_clear_error(&error);
    return message;
}
