#include "bus/Introspection.h"

#include "core/Properties.h"

namespace bridge {

namespace {

// "name(in signatures with names)>(out …)" would be shorter than XML, but XML is what everybody
// reads.
constexpr const char *fixedInterfaces = R"xml(
<interface name="org.freedesktop.DBus.Properties">
 <method name="Get">
  <arg name="InterfaceName" type="s"/><arg name="PropertyName" type="s"/>
  <arg name="Value" type="v" direction="out"/></method>
 <method name="GetAll">
  <arg name="InterfaceName" type="s"/><arg name="Properties" type="a{sv}" direction="out"/></method>
 <method name="Set">
  <arg name="InterfaceName" type="s"/><arg name="PropertyName" type="s"/>
  <arg name="Value" type="v"/></method>
</interface>
<interface name="org.freedesktop.DBus.Introspectable">
 <method name="Introspect"><arg name="Data" type="s" direction="out"/></method>
</interface>
<interface name="org.freedesktop.DBus.Peer">
 <method name="Ping"/>
 <method name="GetMachineId"><arg name="MachineUuid" type="s" direction="out"/></method>
</interface>
<interface name="com.intel.dLeynaServer.Manager">
 <method name="GetServers"><arg name="Servers" type="ao" direction="out"/></method>
 <method name="GetVersion"><arg name="Version" type="s" direction="out"/></method>
 <method name="Release"/>
 <method name="SetProtocolInfo"><arg name="ProtocolInfo" type="s"/></method>
 <method name="PreferLocalAddresses"><arg name="Prefer" type="b"/></method>
 <method name="Rescan"/>
 <signal name="FoundServer"><arg name="Path" type="o"/></signal>
 <signal name="LostServer"><arg name="Path" type="o"/></signal>
</interface>
<interface name="com.intel.dLeynaServer.MediaDevice">
 <method name="Cancel"/>
 <method name="BrowseObjects">
  <arg name="Objects" type="ao"/><arg name="Filter" type="as"/>
  <arg name="Children" type="aa{sv}" direction="out"/></method>
 <method name="UploadToAnyContainer">
  <arg name="DisplayName" type="s"/><arg name="FilePath" type="s"/>
  <arg name="UploadId" type="u" direction="out"/><arg name="Path" type="o" direction="out"/></method>
 <method name="CreateContainerInAnyContainer">
  <arg name="DisplayName" type="s"/><arg name="Type" type="s"/><arg name="ChildTypes" type="as"/>
  <arg name="Path" type="o" direction="out"/></method>
 <property name="Location" type="s" access="read"/>
 <property name="UDN" type="s" access="read"/>
 <property name="DeviceType" type="s" access="read"/>
 <property name="FriendlyName" type="s" access="read"/>
 <property name="Manufacturer" type="s" access="read"/>
 <property name="ManufacturerUrl" type="s" access="read"/>
 <property name="ModelDescription" type="s" access="read"/>
 <property name="ModelName" type="s" access="read"/>
 <property name="ModelNumber" type="s" access="read"/>
 <property name="ModelURL" type="s" access="read"/>
 <property name="SerialNumber" type="s" access="read"/>
 <property name="PresentationURL" type="s" access="read"/>
 <property name="IconURL" type="s" access="read"/>
 <property name="DLNACaps" type="a{sv}" access="read"/>
 <property name="SearchCaps" type="as" access="read"/>
 <property name="SortCaps" type="as" access="read"/>
 <property name="SystemUpdateID" type="u" access="read"/>
</interface>
)xml";

constexpr const char *objectMethods = R"xml(
 <method name="Delete"/>
 <method name="Update">
  <arg name="ToAddUpdate" type="a{sv}"/><arg name="ToDelete" type="as"/></method>
)xml";

constexpr const char *containerMethods = R"xml(
 <method name="SearchObjects">
  <arg name="Query" type="s"/><arg name="Offset" type="u"/><arg name="Max" type="u"/>
  <arg name="Filter" type="as"/><arg name="Children" type="aa{sv}" direction="out"/></method>
 <method name="SearchObjectsEx">
  <arg name="Query" type="s"/><arg name="Offset" type="u"/><arg name="Max" type="u"/>
  <arg name="Filter" type="as"/><arg name="SortBy" type="s"/>
  <arg name="Children" type="aa{sv}" direction="out"/>
  <arg name="TotalItems" type="u" direction="out"/></method>
 <method name="Upload">
  <arg name="DisplayName" type="s"/><arg name="FilePath" type="s"/>
  <arg name="UploadId" type="u" direction="out"/><arg name="Path" type="o" direction="out"/></method>
 <method name="CreateContainer">
  <arg name="DisplayName" type="s"/><arg name="Type" type="s"/><arg name="ChildTypes" type="as"/>
  <arg name="Path" type="o" direction="out"/></method>
)xml";

std::string listMethods()
{
    std::string xml;
    for (const char *name : {"ListChildren", "ListContainers", "ListItems"}) {
        for (const bool sorted : {false, true}) {
            xml += std::string("<method name=\"") + name + (sorted ? "Ex" : "")
                + "\"><arg name=\"Offset\" type=\"u\"/><arg name=\"Max\" type=\"u\"/>"
                  "<arg name=\"Filter\" type=\"as\"/>"
                + (sorted ? "<arg name=\"SortBy\" type=\"s\"/>" : "")
                + "<arg name=\"Children\" type=\"aa{sv}\" direction=\"out\"/></method>";
        }
    }
    return xml;
}

/// Media properties are declared for items and for containers that have them.
std::string mediaInterface(const char *name, PropHome home, const std::string &methods)
{
    std::string xml = std::string("<interface name=\"") + name + "\">" + methods;
    for (const PropInfo &info : properties()) {
        const bool isShared = home == PropHome::Container && info.home == PropHome::Media;
        if (info.home != home && !isShared)
            continue;
        xml += std::string("<property name=\"") + info.name + "\" type=\"" + info.signature
            + "\" access=\"read\"/>";
    }
    return xml + "</interface>";
}

const GDBusNodeInfo *declarations()
{
    static const GDBusNodeInfo *const info = [] {
        const std::string xml = std::string("<node>") + fixedInterfaces
            + mediaInterface(interfaces::object, PropHome::Object, objectMethods)
            + mediaInterface(
                interfaces::container, PropHome::Container, listMethods() + containerMethods)
            + mediaInterface(interfaces::item, PropHome::Media, "") + "</node>";
        GError *error = nullptr;
        GDBusNodeInfo *parsed = g_dbus_node_info_new_for_xml(xml.c_str(), &error);
        if (!parsed)
            g_error("the introspection data is malformed: %s", error->message);
        return parsed;
    }();
    return info;
}

} // namespace

const GDBusInterfaceInfo *interfaceInfo(const std::string &name)
{
    return g_dbus_node_info_lookup_interface(
        const_cast<GDBusNodeInfo *>(declarations()), name.c_str());
}

std::string inputSignature(const GDBusMethodInfo *method)
{
    std::string signature;
    for (GDBusArgInfo **argument = method->in_args; argument && *argument; ++argument)
        signature += (*argument)->signature;
    return signature;
}

std::string introspectionXml(
    const std::vector<const char *> &interfaceNames, const std::vector<std::string> &children)
{
    GString *text = g_string_new(
        "<!DOCTYPE node PUBLIC \"-//freedesktop//DTD D-BUS Object Introspection 1.0//EN\"\n"
        " \"http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd\">\n<node>\n");
    for (const char *name : interfaceNames) {
        auto *info = const_cast<GDBusInterfaceInfo *>(interfaceInfo(name));
        g_dbus_interface_info_generate_xml(info, 2, text);
    }
    for (const std::string &child : children)
        g_string_append_printf(text, "  <node name=\"%s\"/>\n", child.c_str());
    g_string_append(text, "</node>\n");
    return takeString(g_string_free(text, FALSE));
}

} // namespace bridge
