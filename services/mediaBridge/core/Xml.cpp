#include "core/Xml.h"

#include <climits>
#include <libxml/parser.h>

namespace bridge {

namespace {

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
    if (start == std::string_view::npos || text.size() > INT_MAX)
        return nullptr;
    text.remove_prefix(start);
    constexpr int options = XML_PARSE_RECOVER | XML_PARSE_NONET | XML_PARSE_NOERROR
        | XML_PARSE_NOWARNING | XML_PARSE_COMPACT;
    XmlDoc doc(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, encoding, options));
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
