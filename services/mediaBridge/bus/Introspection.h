#pragma once

#include "MediaServiceNames.h"

#include <string>
#include <string_view>
#include <vector>

namespace bridge {

namespace interfaces = mediaService::interfaces;

/// One method of an interface. Arguments stand as signature and name, parted by spaces:
/// "uOffset aa{sv}Children".
struct MethodDeclaration
{
    const char *interface;
    const char *name;
    const char *in;
    const char *out;
};

/// The signature of arguments that are written as above, without their names.
std::string signatureOf(std::string_view arguments);

/// Introspection document of an object with these methods, with the properties and signals that
/// belong to `interfaceNames`, and with these child nodes.
std::string introspectionXml(const std::vector<MethodDeclaration> &methods,
    const std::vector<const char *> &interfaceNames, const std::vector<std::string> &children);

} // namespace bridge
