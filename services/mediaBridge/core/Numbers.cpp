#include "core/Numbers.h"

#include <algorithm>
#include <charconv>

namespace bridge {

namespace {

/// Digits only, all of them.
std::optional<int64_t> wholeNumber(std::string_view digits)
{
    int64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size() || value < 0)
        return std::nullopt;
    return value;
}

/// Milliseconds of what stands behind a decimal point: digits, or a fraction such as 1/4.
std::optional<int64_t> fractionMs(std::string_view text)
{
    const size_t slash = text.find('/');
    if (slash == std::string_view::npos) {
        int64_t ms = 0;
        int64_t unit = 100;
        for (const char c : text) {
            if (c < '0' || c > '9')
                return std::nullopt;
            ms += (c - '0') * unit;
            unit /= 10;
        }
        return ms;
    }
    const auto above = wholeNumber(text.substr(0, slash));
    const auto below = wholeNumber(text.substr(slash + 1));
    if (!above || !below || *above >= *below)
        return std::nullopt;
    return static_cast<int64_t>(1000.0 * static_cast<double>(*above) / static_cast<double>(*below));
}

} // namespace

std::optional<int64_t> parseNumber(std::string_view text, int64_t max)
{
    const size_t start = text.find_first_not_of(" \t\r\n");
    if (start == std::string_view::npos)
        return std::nullopt;
    int64_t value = 0;
    const auto error = std::from_chars(text.data() + start, text.data() + text.size(), value).ec;
    if (error != std::errc() || value < 0 || value > max)
        return std::nullopt;
    return value;
}

std::optional<uint32_t> parseCount(std::string_view text)
{
    constexpr const char *space = " \t\r\n";
    const size_t start = std::min(text.find_first_not_of(space), text.size());
    const auto number = wholeNumber(text.substr(start, text.find_last_not_of(space) + 1 - start));
    const bool fits = number && *number <= std::numeric_limits<uint32_t>::max();
    return fits ? std::optional(static_cast<uint32_t>(*number)) : std::nullopt;
}

std::optional<int64_t> parseDuration(std::string_view text)
{
    constexpr int64_t maxPart = 1'000'000;
    int64_t ms = 0;
    if (const size_t point = text.find('.'); point != std::string_view::npos) {
        const auto fraction = fractionMs(text.substr(point + 1));
        if (!fraction)
            return std::nullopt;
        ms = *fraction;
        text = text.substr(0, point);
    }
    int64_t seconds = 0;
    for (int parts = 0; parts < 3; ++parts) {
        const size_t colon = text.find(':');
        const auto part = wholeNumber(text.substr(0, colon));
        if (!part || *part > maxPart)
            return std::nullopt;
        seconds = seconds * 60 + *part;
        if (colon == std::string_view::npos)
            return seconds * 1000 + ms;
        text.remove_prefix(colon + 1);
    }
    return std::nullopt;
}

std::optional<bool> parseBool(std::string_view text)
{
    if (text == "1" || text == "true" || text == "yes")
        return true;
    if (text == "0" || text == "false" || text == "no")
        return false;
    return std::nullopt;
}

} // namespace bridge
