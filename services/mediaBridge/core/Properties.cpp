#include "core/Properties.h"

namespace bridge {

PropertySet PropertySet::all()
{
    PropertySet set;
    set.m_bits.set();
    return set;
}

size_t PropertySet::indexOf(const Property &property)
{
    return static_cast<size_t>(&property - properties().data());
}

const Property *findProperty(std::string_view name)
{
    for (const Property &property : properties()) {
        if (name == property.name)
            return &property;
    }
    return nullptr;
}

std::vector<const Property *> propertiesOfDidlName(std::string_view didlName)
{
    std::vector<const Property *> found;
    for (const Property &property : properties()) {
        if (property.didlName && didlName == property.didlName)
            found.push_back(&property);
    }
    return found;
}

PropertySet propertySetFromFilter(const std::vector<std::string> &filter)
{
    if (filter.size() == 1 && filter.front() == "*")
        return PropertySet::all();
    PropertySet set;
    for (const std::string &name : filter) {
        if (const Property *property = findProperty(name))
            set.insert(*property);
    }
    return set;
}

std::string didlFilter(const PropertySet &set)
{
    if (set.isAll())
        return "*";
    // What every object has travels anyway; naming it keeps the filter from being empty, which some
    // servers take for "*" and others for an error.
    std::string filter = "dc:title,upnp:class";
    for (const Property &property : properties()) {
        if (property.didlFilter && set.contains(property)) {
            filter += ',';
            filter += property.didlFilter;
        }
    }
    return filter;
}

Value propertyValue(
    const MediaObject &object, const Property &property, const ServerContext &server)
{
    if (property.ofObject)
        return property.ofObject(object, server);
    const Resource *resource = object.primaryResource();
    return resource ? property.ofResource(*resource, server) : Value();
}

PropertyMap propertyMap(
    const MediaObject &object, const PropertySet &wanted, const ServerContext &server)
{
    PropertyMap map;
    for (const Property &property : properties()) {
        if (!wanted.contains(property))
            continue;
        Value value = propertyValue(object, property, server);
        if (!value.isNone())
            map.emplace_back(property.name, std::move(value));
    }
    return map;
}

} // namespace bridge
