#include "core/Xml.h"

#include <algorithm>
#include <climits>
#include <libxml/parser.h>

namespace bridge {

namespace {

/// Whether what follows an "&" makes it a reference that every parser knows, as in `amp;` or
/// `#38;`.
bool isReference(std::string_view rest)
{
    constexpr std::string_view names[] = {"amp", "lt", "gt", "quot", "apos"};
    constexpr size_t longest = 10;
    const size_t end = rest.substr(0, longest).find(';');
    if (end == std::string_view::npos)
        return false;
    const std::string_view name = rest.substr(0, end);
    const bool isNumber = name.size() > 1 && name[0] == '#'
        && name.find_first_not_of("0123456789abcdefABCDEFx", 1) == std::string_view::npos;
    return isNumber || std::find(std::begin(names), std::end(names), name) != std::end(names);
}

/// Where the next character stands that XML doesn't allow as it is.
size_t findForbidden(std::string_view text, size_t start)
{
    for (size_t i = start; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const bool isControl = c < 0x20 && c != '\t' && c != '\n' && c != '\r';
        if (isControl || (c == '&' && !isReference(text.substr(i + 1))))
            return i;
    }
    return std::string_view::npos;
}

/// The text without control characters and with every lone "&" escaped: behind one of those, the
/// parser's recovery loses more than the character.
std::string repaired(std::string_view text)
{
    std::string clean;
    clean.reserve(text.size() + 64);
    size_t done = 0;
    for (size_t bad = findForbidden(text, 0); bad != std::string_view::npos;
         bad = findForbidden(text, done)) {
        clean += text.substr(done, bad - done);
        if (text[bad] == '&')
            clean += "&amp;";
        done = bad + 1;
    }
    clean += text.substr(done);
    return clean;
}

std::string_view view(const xmlChar *text)
{
    return text ? std::string_view(reinterpret_cast<const char *>(text)) : std::string_view();
}

std::string joinText(const xmlNode *node)
{
    std::string text;
    for (; node; node = node->next) {
        if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE)
            text += view(node->content);
    }
    return text;
}

std::string trimmed(std::string text)
{
    constexpr char space[] = " \t\r\n";
    const size_t last = text.find_last_not_of(space);
    if (last == std::string::npos)
        return {};
    text.erase(last + 1);
    text.erase(0, text.find_first_not_of(space));
    return text;
}

} // namespace

XmlDoc parseXml(std::string_view text, const char *encoding)
{
    // libxml2 takes white space before an XML declaration for a fault.
    const size_t start = text.find('<');
    if (start == std::string_view::npos || text.size() > INT_MAX / 8)
        return nullptr;
    text.remove_prefix(start);
    const auto parse = [encoding](std::string_view document, int more) {
        constexpr int options =
            XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_COMPACT;
        return XmlDoc(xmlReadMemory(
            document.data(), static_cast<int>(document.size()), nullptr, encoding, options | more));
    };
    XmlDoc doc = parse(text, 0);
    if (!doc)
        doc = parse(repaired(text), XML_PARSE_RECOVER);
    if (!doc || !xmlDocGetRootElement(doc.get()))
        return nullptr;
    return doc;
}

const xmlNode *elementFrom(const xmlNode *node)
{
    while (node && node->type != XML_ELEMENT_NODE)
        node = node->next;
    return node;
}

const xmlNode *childElement(const xmlNode *parent, std::string_view name)
{
    if (!parent)
        return nullptr;
    const xmlNode *child = elementFrom(parent->children);
    while (child && localName(child->name) != name)
        child = elementFrom(child->next);
    return child;
}

std::string_view localName(const xmlChar *name)
{
    const std::string_view whole = view(name);
    const size_t colon = whole.rfind(':');
    return colon == std::string_view::npos ? whole : whole.substr(colon + 1);
}

std::string elementText(const xmlNode *element)
{
    return trimmed(rawElementText(element));
}

std::string rawElementText(const xmlNode *element)
{
    return element ? joinText(element->children) : std::string();
}

std::string attributeText(const xmlAttr *attribute)
{
    return trimmed(joinText(attribute->children));
}

} // namespace bridge
