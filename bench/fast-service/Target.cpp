#include "Target.h"

#include "core/ObjectAddress.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::size_t digits = 4;

bool takePrefix(std::string *text, const std::string &prefix)
{
    if (text->compare(0, prefix.size(), prefix) != 0)
        return false;
    text->erase(0, prefix.size());
    return true;
}

} // namespace

Target::Target(const std::string &path)
{
    const auto address = bridge::parseObjectPath(path);
    if (!address)
        return;
    server = std::string(bridge::serverRootPath) + '/' + address->serverName;
    std::string id = address->objectId;
    isServer = id == bridge::rootObjectId;
    if (isServer)
        number = 1000;
    if (takePrefix(&id, "deep"))
        kind = Deep;
    else if (takePrefix(&id, "wide"))
        kind = Wide;
    else if (!takePrefix(&id, "rows"))
        return;
    number = unsigned(std::strtoul(id.c_str(), nullptr, 10));
}

std::string Target::sibling(const std::string &id) const
{
    return bridge::objectPath(server, id);
}

std::string udnOf(unsigned number)
{
    char udn[32];
    std::snprintf(udn, sizeof udn, "uuid:fast0000-%04u", number);
    return udn;
}

std::string serverPath(unsigned number)
{
    return bridge::serverPathFromUdn(udnOf(number));
}

unsigned serverNumber(const std::string &path)
{
    return path.size() < digits
        ? 0
        : unsigned(std::strtoul(path.c_str() + path.size() - digits, nullptr, 10));
}
