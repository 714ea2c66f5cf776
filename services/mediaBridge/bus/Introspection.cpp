#include "bus/Introspection.h"

#include "bus/BridgeProperties.h"
#include "bus/DeviceProperties.h"
#include "core/Properties.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace bridge {

namespace {

/// Signature and name of the first argument, and removes it. The signature ends at the name's
/// capital letter.
std::pair<std::string, std::string> takeArgument(std::string_view &arguments)
{
    const std::string_view argument = arguments.substr(0, arguments.find(' '));
    arguments.remove_prefix(std::min(arguments.size(), argument.size() + 1));
    const size_t name = argument.find_first_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    return {std::string(argument.substr(0, name)), std::string(argument.substr(name))};
}

std::string argumentsXml(std::string_view arguments, const char *direction)
{
    std::string xml;
    while (!arguments.empty()) {
        const auto [signature, name] = takeArgument(arguments);
        xml.append("   <arg name=\"").append(name).append("\" type=\"").append(signature);
        xml.append("\"").append(direction).append("/>\n");
    }
    return xml;
}

std::string propertyXml(const char *name, const char *signature)
{
    return std::string("  <property name=\"") + name + "\" type=\"" + signature
        + "\" access=\"read\"/>\n";
}

bool isDeclared(PropertyHome home, const std::string &interface)
{
    using H = PropertyHome;
    if (interface == interfaces::object)
        return home == H::Object;
    if (interface == interfaces::container)
        return home == H::Container || home == H::Media;
    return interface == interfaces::item && (home == H::Media || home == H::File);
}

std::string propertiesXml(const std::string &interface)
{
    std::string xml;
    for (const Property &property : properties()) {
        if (isDeclared(property.home, interface))
            xml += propertyXml(property.name, property.signature);
    }
    if (interface == interfaces::device) {
        for (const DeviceProperty &property : deviceProperties())
            xml += propertyXml(property.name, property.signature);
    }
    if (interface == interfaces::bridge) {
        for (const BridgeProperty &property : bridgeProperties())
            xml += propertyXml(property.name, property.signature);
    }
    // Else clients keep what they read once, and wait for word of a change for ever.
    constexpr const char *annotation =
        "  <annotation name=\"org.freedesktop.DBus.Property.EmitsChangedSignal\" "
        "value=\"false\"/>\n";
    return xml.empty() ? xml : annotation + xml;
}

std::string interfaceXml(const std::vector<MethodDeclaration> &methods, const char *interface)
{
    std::string xml = std::string(" <interface name=\"") + interface + "\">\n";
    for (const MethodDeclaration &method : methods) {
        if (std::strcmp(method.interface, interface) != 0)
            continue;
        xml += std::string("  <method name=\"") + method.name + "\">\n";
        xml += argumentsXml(method.in, "") + argumentsXml(method.out, " direction=\"out\"");
        xml += "  </method>\n";
    }
    if (std::strcmp(interface, interfaces::manager) == 0) {
        for (const char *name : {"FoundServer", "LostServer"})
            xml += std::string("  <signal name=\"") + name + "\">\n" + argumentsXml("oPath", "")
                + "  </signal>\n";
    }
    return xml + propertiesXml(interface) + " </interface>\n";
}

} // namespace

std::string signatureOf(std::string_view arguments)
{
    std::string signature;
    while (!arguments.empty())
        signature += takeArgument(arguments).first;
    return signature;
}

std::string introspectionXml(const std::vector<MethodDeclaration> &methods,
    const std::vector<const char *> &interfaceNames, const std::vector<std::string> &children)
{
    std::string xml =
        "<!DOCTYPE node PUBLIC \"-//freedesktop//DTD D-BUS Object Introspection 1.0//EN\"\n"
        " \"http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd\">\n<node>\n";
    for (const char *name : interfaceNames)
        xml += interfaceXml(methods, name);
    for (const std::string &child : children)
        xml += " <node name=\"" + child + "\"/>\n";
    return xml + "</node>\n";
}

} // namespace bridge
