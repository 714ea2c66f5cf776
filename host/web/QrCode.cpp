#include "web/QrCode.h"

#include <qrencode.h>

#include <memory>

namespace {

constexpr int quietZone = 2;

struct CodeFree
{
    void operator()(QRcode *code) const { QRcode_free(code); }
};

bool isDark(const QRcode &code, int x, int y)
{
    const bool isInside = x >= 0 && y >= 0 && x < code.width && y < code.width;
    return isInside && (code.data[y * code.width + x] & 1) != 0;
}

} // namespace

QString qrCode(const QString &text)
{
    const std::unique_ptr<QRcode, CodeFree> code(
        QRcode_encodeString8bit(text.toUtf8().constData(), 0, QR_ECLEVEL_M));
    if (!code)
        return {};
    // Two rows of it a line: light modules are drawn, in black on white whatever the terminal's
    // own colours.
    static const QString blocks[] = {
        QStringLiteral("█"), QStringLiteral("▀"), QStringLiteral("▄"), QStringLiteral(" ")};
    QString picture;
    for (int y = -quietZone; y < code->width + quietZone; y += 2) {
        picture += QStringLiteral("\x1b[97;40m");
        for (int x = -quietZone; x < code->width + quietZone; ++x)
            picture += blocks[(isDark(*code, x, y) ? 2 : 0) + (isDark(*code, x, y + 1) ? 1 : 0)];
        picture += QStringLiteral("\x1b[0m\n");
    }
    return picture;
}
