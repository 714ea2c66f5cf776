#include "core/Xml.h"

#include "core/Encoding.h"
#include "core/Limits.h"

#include <algorithm>
#include <cstring>
#include <glib.h>

namespace bridge {

namespace {

constexpr auto isControl = [](char c) {
    return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
};

/// Without control characters.
std::string cleaned(std::string_view text)
{
    std::string clean(text);
    if (std::any_of(clean.begin(), clean.end(), isControl))
        clean.erase(std::remove_if(clean.begin(), clean.end(), isControl), clean.end());
    return clean;
}

std::string_view trimmed(std::string_view text)
{
    constexpr char space[] = " \t\r\n";
    const size_t first = text.find_first_not_of(space);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(space) - first + 1);
}

/// Where this character is next, or the text's end; find() would be called for each.
size_t nextOf(char character, const std::string &text, size_t from)
{
    const void *found = from < text.size()
        ? std::memchr(text.data() + from, character, text.size() - from)
        : nullptr;
    return found ? static_cast<size_t>(static_cast<const char *>(found) - text.data())
                 : text.size();
}

/// Ends the text where there would be more of this character than so many.
void cutBehind(std::string &text, char character, size_t most)
{
    size_t position = nextOf(character, text, 0);
    for (size_t count = 0; position < text.size();
         position = nextOf(character, text, position + 1)) {
        if (++count > most) {
            text.resize(position);
            return;
        }
    }
}

bool mayFollowBracket(char c)
{
    return std::strchr("!?_:", c) || static_cast<unsigned char>(c) >= 0x80;
}

/// What isn't looked into: "<![CDATA[" or "<!--"; where it begins, its end, else `position`.
size_t behindSection(const std::string &text, size_t position)
{
    for (const auto &[start, end] : {std::pair("<![CDATA[", "]]>"), std::pair("<!--", "-->")}) {
        if (text.compare(position, std::strlen(start), start) == 0)
            return std::min(text.find(end, position), text.size());
    }
    return position;
}

/// Escapes each "<" that begins no tag: "I <3 you".
void escapeStrayBrackets(std::string &text)
{
    std::string escaped;
    size_t done = 0;
    for (size_t at = nextOf('<', text, 0); at + 1 < text.size(); at = nextOf('<', text, at + 1)) {
        if (g_ascii_isalpha(text[at + 1]) || text[at + 1] == '/')
            continue; // as nearly always
        at = behindSection(text, at);
        if (at + 1 >= text.size() || text[at] != '<' || mayFollowBracket(text[at + 1]))
            continue;
        escaped.append(text, done, at - done).append("&lt;");
        done = at + 1;
    }
    if (done > 0)
        text = escaped.append(text, done, std::string::npos);
}

/// Without white space at an end that has a line break in it: it lays out the document.
std::string_view withoutLayout(std::string_view text)
{
    const std::string_view inner = trimmed(text);
    if (inner.empty())
        return text.find('\n') == std::string_view::npos ? text : inner;
    const auto start = static_cast<size_t>(inner.data() - text.data());
    const size_t end = start + inner.size();
    const bool cutsStart = text.substr(0, start).find('\n') != std::string_view::npos;
    const bool cutsEnd = text.substr(end).find('\n') != std::string_view::npos;
    const size_t first = cutsStart ? start : 0;
    return text.substr(first, (cutsEnd ? end : text.size()) - first);
}

/// The end of a reference to what is no character, "&#0;", or `position`: the parser would make a
/// NUL of it, or another character of a number that is too large.
size_t behindImpossible(const std::string &text, size_t position)
{
    constexpr guint64 lastCharacter = 0x10ffff;
    const bool isHex = text.compare(position, 3, "&#x") == 0;
    const char *digits = text.c_str() + position + (isHex ? 3 : 2);
    char *end = nullptr;
    const guint64 number = g_ascii_strtoull(digits, &end, isHex ? 16 : 10);
    const bool isReference = g_ascii_isxdigit(*digits) && *end == ';';
    const bool isImpossible = isReference && (number == 0 || number > lastCharacter);
    return isImpossible ? static_cast<size_t>(end - text.c_str()) + 1 : position;
}

/// Looks for "#", which is rarer than "&".
void dropImpossibleReferences(std::string &text)
{
    std::string kept;
    size_t done = 0;
    for (size_t at = nextOf('#', text, 1); at < text.size(); at = nextOf('#', text, at + 1)) {
        const size_t start = at - 1;
        const size_t end = text[start] == '&' ? behindImpossible(text, start) : start;
        if (end == start)
            continue;
        kept.append(text, done, start - done);
        done = end;
    }
    if (done > 0)
        text = kept.append(text, done, std::string::npos);
}

bool isText(pugi::xml_node node)
{
    return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

} // namespace

XmlDocument::XmlDocument(std::string text, size_t maxTags, std::string_view charset)
    : m_text(decoded(std::move(text), charset))
{
    // The parser takes a NUL for the end.
    if (std::memchr(m_text.data(), 0, m_text.size()))
        m_text.erase(std::remove(m_text.begin(), m_text.end(), '\0'), m_text.end());
    cutBehind(m_text, '<', maxTags);
    cutBehind(m_text, '=', std::max(maxTags, maxTags * limits::attributesOfTag));
    escapeStrayBrackets(m_text);
    dropImpossibleReferences(m_text);
    const auto result = m_document.load_buffer_inplace(
        m_text.data(), m_text.size(), pugi::parse_default, pugi::encoding_utf8);
    m_isWhole = result;
    m_faultAt = static_cast<size_t>(result.offset);
}

bool XmlDocument::isCut() const
{
    return !m_isWhole && m_text.find('>', m_faultAt) == std::string::npos;
}

bool XmlDocument::isClosed(pugi::xml_node last) const
{
    if (m_isWhole)
        return true;
    const std::string end = std::string("/") + last.name();
    const size_t found = std::string_view(m_text).substr(0, m_faultAt).rfind(end);
    return found != std::string::npos && static_cast<ptrdiff_t>(found) > last.offset_debug();
}

std::string_view localName(const char *name)
{
    const std::string_view whole(name);
    const size_t colon = whole.rfind(':');
    return colon == std::string_view::npos ? whole : whole.substr(colon + 1);
}

pugi::xml_node childElement(pugi::xml_node parent, std::string_view name)
{
    return parent.find_child([&](pugi::xml_node child) { return localName(child.name()) == name; });
}

std::string rawElementText(pugi::xml_node element)
{
    const pugi::xml_node first = element.first_child();
    if (isText(first) && !first.next_sibling())
        return first.value();
    std::string text;
    for (const pugi::xml_node child : element.children()) {
        if (isText(child))
            text += child.value();
    }
    return text;
}

std::string elementText(pugi::xml_node element)
{
    // Nearly every element has one text and nothing else.
    const pugi::xml_node first = element.first_child();
    if (isText(first) && !first.next_sibling())
        return cleaned(trimmed(first.value()));
    return cleaned(trimmed(rawElementText(element)));
}

std::string titleText(pugi::xml_node element)
{
    const pugi::xml_node first = element.first_child();
    if (isText(first) && !first.next_sibling())
        return cleaned(withoutLayout(first.value()));
    return cleaned(withoutLayout(rawElementText(element)));
}

std::string attributeText(pugi::xml_attribute attribute)
{
    return cleaned(attribute.value());
}

} // namespace bridge
