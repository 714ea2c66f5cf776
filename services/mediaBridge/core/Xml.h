#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace bridge {

/// A parsed text. Takes what real servers send: an "&" that is none of XML's references and a "<"
/// that begins no tag stand for themselves, documents can't define entities, and behind a fault
/// everything read so far is kept.
class XmlDocument
{
public:
    /// With more than `maxTags` tags it is as if the text ended there, and so it is with too many
    /// attributes. `charset` as for `decoded`.
    explicit XmlDocument(
        std::string text, size_t maxTags = std::string::npos, std::string_view charset = {});

    /// The outermost element; empty where there is none.
    pugi::xml_node root() const { return m_document.document_element(); }
    /// Whether the text was read to its end without a fault.
    bool isWhole() const { return m_isWhole; }
    /// Whether no tag ends behind the fault: the rest of the text didn't come.
    bool isCut() const;
    /// Whether the end of the last element of its parent was read.
    bool isClosed(pugi::xml_node last) const;

private:
    // The nodes point into it.
    std::string m_text;
    pugi::xml_document m_document;
    bool m_isWhole = false;
    size_t m_faultAt = 0;
};

/// Name without any prefix, declared or not.
std::string_view localName(const char *name);
/// First child element with this local name; empty where there is none.
pugi::xml_node childElement(pugi::xml_node parent, std::string_view name);
/// Text directly inside an element as it stands.
std::string rawElementText(pugi::xml_node element);
/// The same for people and programs: without control characters, white space at both ends cut off.
std::string elementText(pugi::xml_node element);
/// The same for a title: white space is part of it, line breaks and the indents with them aren't.
std::string titleText(pugi::xml_node element);
/// The value of an attribute, without control characters.
std::string attributeText(pugi::xml_attribute attribute);

} // namespace bridge
