#include "core/Xml.h"

#include <algorithm>
#include <cstring>

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

void cutBehind(std::string &text, size_t maxTags)
{
    size_t position = 0;
    for (size_t tags = 0; (position = text.find('<', position)) != std::string::npos; ++position) {
        if (++tags > maxTags) {
            text.resize(position);
            return;
        }
    }
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

bool isText(pugi::xml_node node)
{
    return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

} // namespace

XmlDocument::XmlDocument(std::string text, size_t maxTags)
    : m_text(std::move(text))
{
    // The parser takes a NUL for the end.
    if (std::memchr(m_text.data(), 0, m_text.size()))
        m_text.erase(std::remove(m_text.begin(), m_text.end(), '\0'), m_text.end());
    cutBehind(m_text, maxTags);
    m_isWhole = m_document.load_buffer_inplace(m_text.data(), m_text.size());
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
