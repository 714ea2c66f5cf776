#pragma once

#include "core/Glib.h"

#include <string_view>

namespace bridge {

inline bool isValidUtf8(std::string_view text)
{
    return g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE;
}

/// `text` with at most `maxBytes` bytes and as valid UTF-8; "…" at the end shows that more was
/// there.
inline std::string shortened(std::string_view text, size_t maxBytes)
{
    constexpr std::string_view more = "…";
    const bool isLong = text.size() > maxBytes;
    if (isLong) {
        size_t end = maxBytes - more.size();
        // Not within a character.
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0U) == 0x80U)
            --end;
        text = text.substr(0, end);
    }
    const auto size = static_cast<gssize>(text.size());
    std::string valid =
        isValidUtf8(text) ? std::string(text) : takeString(g_utf8_make_valid(text.data(), size));
    return isLong ? valid.append(more) : valid;
}

} // namespace bridge
