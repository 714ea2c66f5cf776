#include "core/SoapMessage.h"

#include "core/Glib.h"
#include "core/Limits.h"
#include "core/Numbers.h"
#include "core/Text.h"
#include "core/Xml.h"

namespace bridge {

namespace {

SoapAnswer readFault(pugi::xml_node fault)
{
    SoapAnswer answer;
    answer.kind = SoapAnswer::Kind::Fault;
    const pugi::xml_node error = childElement(childElement(fault, "detail"), "UPnPError");
    answer.faultCode = parseAs<int32_t>(elementText(childElement(error, "errorCode"))).value_or(0);
    const auto text = [](pugi::xml_node parent, std::string_view name) {
        return shortened(elementText(childElement(parent, name)), limits::errorTextBytes);
    };
    answer.faultText = text(error, "errorDescription");
    if (answer.faultText.empty())
        answer.faultText = text(fault, "faultstring");
    return answer;
}

/// Whether the last tag of this name is a closing one.
bool closes(std::string_view body, std::string_view name)
{
    const size_t last = body.rfind(name);
    const size_t tag = last == std::string_view::npos ? last : body.rfind('<', last);
    return tag != std::string_view::npos && body.substr(tag, 2) == "</";
}

/// As the text of an element. A parser would read a bare carriage return as a line feed.
std::string escaped(const std::string &text)
{
    const std::string escaped =
        takeString(g_markup_escape_text(text.c_str(), static_cast<gssize>(text.size())));
    std::string whole;
    for (const char c : escaped)
        c == '\r' ? whole.append("&#13;") : whole.append(1, c);
    return whole;
}

} // namespace

std::string soapEnvelope(
    const std::string &serviceType, const std::string &action, const SoapArguments &arguments)
{
    std::string body = "<?xml version=\"1.0\" encoding=\"utf-8\"?>"
                       "<s:Envelope xmlns:s=\"http://schemas.xmlsoap.org/soap/envelope/\" "
                       "s:encodingStyle=\"http://schemas.xmlsoap.org/soap/encoding/\"><s:Body>";
    body += "<u:" + action + " xmlns:u=\"" + serviceType + "\">";
    for (const auto &[name, value] : arguments) {
        body += std::string("<") + name + '>';
        body += escaped(value);
        body += std::string("</") + name + '>';
    }
    return body + "</u:" + action + "></s:Body></s:Envelope>";
}

std::string SoapAnswer::value(std::string_view name) const
{
    const auto found = values.find(name);
    return found == values.end() ? std::string() : found->second;
}

SoapAnswer parseSoapAnswer(std::string body, const std::string &action, std::string_view charset)
{
    SoapAnswer answer;
    const bool isClosed = closes(body, action + "Response");
    const XmlDocument document(
        std::move(body), limits::tags(std::numeric_limits<uint32_t>::max()), charset);
    const pugi::xml_node soapBody = childElement(document.root(), "Body");
    if (const pugi::xml_node fault = childElement(soapBody, "Fault"))
        return readFault(fault);
    const pugi::xml_node response = childElement(soapBody, action + "Response");
    // Of an answer that was cut, a number may lack its last digits.
    if (!response || !(isClosed || document.isWhole()))
        return answer;
    answer.kind = SoapAnswer::Kind::Result;
    for (const pugi::xml_node value : response.children()) {
        const std::string_view name = localName(value.name());
        if (!name.empty() && answer.values.size() < limits::outputs)
            answer.values.emplace(name, rawElementText(value));
    }
    return answer;
}

} // namespace bridge
