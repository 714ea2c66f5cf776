#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bridge {

using SoapArguments = std::vector<std::pair<const char *, std::string>>;

/// Request body of a SOAP action. Argument values are escaped here.
std::string soapEnvelope(
    const std::string &serviceType, const std::string &action, const SoapArguments &arguments);

/// What a server answered to a SOAP action.
struct SoapAnswer
{
    enum class Kind { Result, Fault, Unreadable };
    Kind kind = Kind::Unreadable;
    /// Output arguments of a result.
    std::map<std::string, std::string, std::less<>> values;
    /// UPnP error code of a fault; 0 where it has none.
    int faultCode = 0;
    std::string faultText;

    /// An output argument; empty where the server left it out.
    std::string value(std::string_view name) const;
};

/// Reads the body of an answer. What is neither a result of `action` nor a fault is Unreadable.
/// `charset` as for an XmlDocument.
SoapAnswer parseSoapAnswer(
    std::string body, const std::string &action, std::string_view charset = {});

} // namespace bridge
