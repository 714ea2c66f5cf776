#include "core/Encoding.h"

#include "core/Glib.h"

#include <algorithm>
#include <cerrno>
#include <initializer_list>

namespace bridge {

namespace {

/// The name of the two-byte encoding that a document begins with, in which nothing could be looked
/// for; null where it is another.
const char *wideEncoding(std::string_view text)
{
    using namespace std::string_view_literals;
    for (const std::string_view start : {"\xff\xfe"sv, "<\0"sv}) {
        if (text.substr(0, start.size()) == start)
            return "UTF-16LE";
    }
    for (const std::string_view start : {"\xfe\xff"sv, "\0<"sv}) {
        if (text.substr(0, start.size()) == start)
            return "UTF-16BE";
    }
    return nullptr;
}

/// What stands in the first line; empty where it is nothing.
std::string_view declaredEncoding(std::string_view text)
{
    constexpr size_t longest = 200;
    const std::string_view start = text.substr(0, longest);
    const std::string_view line = start.substr(0, start.find("?>"));
    const size_t key = line.find("encoding");
    const size_t quote = line.find_first_of("'\"", key);
    if (line.substr(0, 5) != "<?xml" || key == std::string_view::npos
        || quote == std::string_view::npos)
        return {};
    return line.substr(quote + 1, line.find(line[quote], quote + 1) - quote - 1);
}

bool isOf(const std::string &encoding, std::string_view family)
{
    return encoding.compare(0, family.size(), family) == 0
        && encoding.find_first_not_of("0123456789", family.size()) == std::string::npos;
}

bool isOneOf(const std::string &encoding, std::initializer_list<const char *> names)
{
    return std::find(names.begin(), names.end(), encoding) != names.end();
}

/// Encodings for alphabets: a byte is a character, and words in them are no UTF-8 by accident.
/// (Thai might be.)
bool isAlphabetic(const std::string &encoding)
{
    return isOneOf(encoding, {"koi8-r", "koi8-u", "latin1"}) || isOf(encoding, "windows-125")
        || isOf(encoding, "cp125") || (isOf(encoding, "iso-8859-") && encoding != "iso-8859-11");
}

/// Whether text in this encoding is to be converted: one of those whose tags are those of ASCII and
/// whose bytes mean the same wherever they stand. In a wide one not even the declaration would have
/// been found, so that text isn't in it, whoever says that it is. Named one by one, since some of
/// their relatives have converters that never end.
bool isNarrow(const std::string &encoding)
{
    return isAlphabetic(encoding)
        || isOneOf(encoding,
            {"big5", "euc-jp", "euc-kr", "gb18030", "gb2312", "gbk", "iso-8859-11", "shift_jis",
                "tis-620"});
}

bool isUtf8(std::string_view text)
{
    return g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE;
}

/// To be converted from; empty for UTF-8, or what is read as that.
std::string encodingOf(std::string_view text, std::string_view charset)
{
    constexpr size_t longest = 12;
    if (const char *wide = wideEncoding(text))
        return wide;
    const std::string_view said = charset.empty() ? declaredEncoding(text) : charset;
    if (text.substr(0, 3) == "\xef\xbb\xbf" || said.empty() || said.size() > longest)
        return {};
    const std::string name =
        takeString(g_ascii_strdown(said.data(), static_cast<gssize>(said.size())));
    return isNarrow(name) && !(isAlphabetic(name) && isUtf8(text)) ? name : std::string();
}

/// Text that is converted to UTF-8, piece by piece.
class Conversion
{
public:
    /// The text must stay as long as it does.
    Conversion(const std::string &text, const std::string &encoding)
        : m_converter(g_iconv_open("UTF-8", encoding.c_str()))
        , m_unit(wideEncoding(text) ? 2 : 1)
        , m_converted(growth * text.size(), '\0')
        // It is only read.
        , m_from(const_cast<char *>(text.data()))
        , m_left(text.size())
    {
    }
    ~Conversion()
    {
        if (isKnown())
            g_iconv_close(m_converter);
    }
    Conversion(const Conversion &) = delete;
    Conversion &operator=(const Conversion &) = delete;

    /// Whether the C library has that encoding.
    bool isKnown() const { return m_converter != reinterpret_cast<GIConv>(-1); }
    /// With "�" for what isn't in the encoding; cut where the converter makes more of it than it
    /// may.
    std::string run()
    {
        while (convert() == static_cast<gsize>(-1) && errno != E2BIG && m_left >= m_unit)
            replaceOne();
        g_iconv(m_converter, nullptr, nullptr, &m_to, &m_room);
        m_converted.resize(m_converted.size() - m_room);
        return std::move(m_converted);
    }
    bool hasLost() const { return m_hasLost; }

private:
    gsize convert() { return g_iconv(m_converter, &m_from, &m_left, &m_to, &m_room); }
    void replaceOne()
    {
        m_hasLost = true;
        m_from += m_unit;
        m_left -= m_unit;
        if (m_room < replacement.size())
            return;
        m_to = std::copy(replacement.begin(), replacement.end(), m_to);
        m_room -= replacement.size();
    }

    static constexpr std::string_view replacement = "\xef\xbf\xbd";
    // No character becomes longer than that; some converters would go on for ever.
    static constexpr size_t growth = 3;
    GIConv m_converter;
    gsize m_unit;
    std::string m_converted;
    char *m_from;
    char *m_to = m_converted.data();
    gsize m_left;
    gsize m_room = m_converted.size();
    bool m_hasLost = false;
};

/// Text in an encoding that isn't known is left as it is, and so is UTF-8 that isn't in the one it
/// claims.
std::string toUtf8(const std::string &text, const std::string &encoding)
{
    Conversion conversion(text, encoding);
    if (!conversion.isKnown())
        return text;
    std::string converted = conversion.run();
    return conversion.hasLost() && isUtf8(text) ? text : converted;
}

} // namespace

std::string decoded(std::string text, std::string_view charset)
{
    const std::string encoding = encodingOf(text, charset);
    return encoding.empty() ? text : toUtf8(text, encoding);
}

} // namespace bridge
