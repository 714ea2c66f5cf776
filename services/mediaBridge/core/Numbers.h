#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace bridge {

/// The number at the start of `text`, white space before and anything after it ignored. Nothing
/// comes back where there is no digit, or where the number is negative or above `max`.
std::optional<int64_t> parseNumber(
    std::string_view text, int64_t max = std::numeric_limits<int64_t>::max());

/// A count: digits and nothing else but white space around them. "2,000" is none.
std::optional<uint32_t> parseCount(std::string_view text);

/// The same as parseNumber, for a value that travels in `T`.
template<typename T>
std::optional<T> parseAs(std::string_view text)
{
    const auto number = parseNumber(text, int64_t{std::numeric_limits<T>::max()});
    return number ? std::optional<T>(static_cast<T>(*number)) : std::nullopt;
}

/// Milliseconds of a duration such as `0:03:25.480`, `99:59:59`, `8:17.493`, `42` or `1:02:03.1/4`:
/// up to three numbers, the last one being seconds.
std::optional<int64_t> parseDuration(std::string_view text);

/// 1, true, yes and 0, false, no.
std::optional<bool> parseBool(std::string_view text);

} // namespace bridge
