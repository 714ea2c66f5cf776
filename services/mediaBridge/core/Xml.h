#pragma once

#include <libxml/tree.h>
#include <memory>
#include <string>
#include <string_view>

namespace bridge {

struct XmlDocDeleter
{
    void operator()(xmlDoc *doc) const { xmlFreeDoc(doc); }
};
using XmlDoc = std::unique_ptr<xmlDoc, XmlDocDeleter>;

/// Parses as much as can be made sense of, fetching nothing: in a document that isn't well-formed,
/// characters that XML forbids are left out and an "&" that begins no reference is taken for itself.
/// Null where there is no element at all.
/// `encoding` overrules what the document says of itself; null leaves it to the document.
XmlDoc parseXml(std::string_view text, const char *encoding = nullptr);

/// Next element from `node` on, itself included; null after the last.
const xmlNode *elementFrom(const xmlNode *node);
/// First child element with this local name; null where there is none.
const xmlNode *childElement(const xmlNode *parent, std::string_view name);
/// Name without any prefix, declared or not.
std::string_view localName(const xmlChar *name);
/// Text directly inside an element, white space at both ends cut off. Entities that the document
/// defines itself are left out, so that no document can blow itself up.
std::string elementText(const xmlNode *element);
/// Text as it stands, without a copy of what may be megabytes more than once.
std::string rawElementText(const xmlNode *element);
/// Text of an attribute.
std::string attributeText(const xmlAttr *attribute);

} // namespace bridge
