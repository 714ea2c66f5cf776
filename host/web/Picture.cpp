#include "web/Picture.h"

#include "web/Soup.h"

#include <algorithm>
#include <gdk-pixbuf/gdk-pixbuf.h>

namespace {

constexpr qint64 mostPixels = 25'000'000;
constexpr int piece = 16384; // bytes that a loader sees at once

struct Wanted
{
    int width;
    bool isTooBig = false;
    bool isMeasured = false;
};

/// Called before there are pixels: JPEG is then read at the size that is wanted.
void onSize(GdkPixbufLoader *loader, int width, int height, gpointer data)
{
    auto *wanted = static_cast<Wanted *>(data);
    wanted->isTooBig = qint64(width) * height > mostPixels;
    wanted->isMeasured = true;
    if (wanted->isTooBig || wanted->width == 0) {
        gdk_pixbuf_loader_set_size(loader, 0, 0); // read no further
        return;
    }
    const double scale = std::min(1.0, double(wanted->width) / std::max({width, height, 1}));
    gdk_pixbuf_loader_set_size(
        loader, std::max(1, int(width * scale)), std::max(1, int(height * scale)));
}

QByteArray saved(GdkPixbuf *pixbuf)
{
    const bool isClear = gdk_pixbuf_get_has_alpha(pixbuf) != FALSE;
    gchar *data = nullptr;
    gsize size = 0;
    if (isClear) {
        gdk_pixbuf_save_to_buffer(pixbuf, &data, &size, "png", nullptr, nullptr);
    } else {
        gdk_pixbuf_save_to_buffer(pixbuf, &data, &size, "jpeg", nullptr, "quality", "85", nullptr);
    }
    QByteArray bytes(data, int(size));
    g_free(data);
    return bytes;
}

} // namespace

const char *pictureType(const QByteArray &bytes)
{
    if (bytes.startsWith("\xff\xd8\xff"))
        return "image/jpeg";
    if (bytes.startsWith("\x89PNG\r\n\x1a\n"))
        return "image/png";
    if (bytes.startsWith("GIF87a") || bytes.startsWith("GIF89a"))
        return "image/gif";
    if (bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WEBP")
        return "image/webp";
    return nullptr;
}

QByteArray scaledPicture(const QByteArray &bytes, int width)
{
    const char *type = pictureType(bytes);
    if (type == nullptr)
        return {};
    // By its type alone, so that no other of the library's many readers is tried.
    const GRef<GdkPixbufLoader> loader(gdk_pixbuf_loader_new_with_mime_type(type, nullptr));
    if (!loader)
        return {};
    Wanted wanted{width};
    g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(onSize), &wanted);
    bool isFine = true;
    const auto isEnough = [&] {
        return wanted.isTooBig || (width == 0 && wanted.isMeasured);
    };
    for (int at = 0; at < bytes.size() && isFine && !isEnough(); at += piece) {
        isFine = gdk_pixbuf_loader_write(loader.get(),
                     reinterpret_cast<const guchar *>(bytes.constData()) + at,
                     gsize(std::min(piece, bytes.size() - at)), nullptr)
            != FALSE;
    }
    isFine = gdk_pixbuf_loader_close(loader.get(), nullptr) != FALSE && isFine;
    if (wanted.isTooBig)
        return {};
    if (width == 0)
        return wanted.isMeasured ? bytes : QByteArray();
    GdkPixbuf *pixbuf = isFine ? gdk_pixbuf_loader_get_pixbuf(loader.get()) : nullptr;
    return pixbuf != nullptr ? saved(pixbuf) : QByteArray();
}
