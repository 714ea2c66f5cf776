#include "ObjectPath.h"

#include <cstdio>
#include <cstdlib>

namespace {

const std::string serverPrefix = "/com/intel/dLeynaServer/server/uuid_3a66617374_2d";

std::string fromHex(const std::string &digits)
{
    std::string text;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        text += char(std::strtol(digits.substr(i, 2).c_str(), nullptr, 16));
    return text;
}

bool takePrefix(std::string *text, const std::string &prefix)
{
    if (text->compare(0, prefix.size(), prefix) != 0)
        return false;
    text->erase(0, prefix.size());
    return true;
}

} // namespace

ObjectPath::ObjectPath(const std::string &path)
{
    const std::size_t slash = path.find('/', serverPrefix.size());
    server = path.substr(0, slash);
    isServer = slash == std::string::npos;
    if (isServer) {
        number = 1000;
        return;
    }
    std::string text = fromHex(path.substr(slash + 1));
    if (takePrefix(&text, "deep"))
        kind = Deep;
    else if (takePrefix(&text, "wide"))
        kind = Wide;
    else if (!takePrefix(&text, "rows"))
        return;
    number = unsigned(std::strtoul(text.c_str(), nullptr, 10));
}

std::string ObjectPath::sibling(const std::string &text) const
{
    std::string path = server + '/';
    char digits[3];
    for (const char c : text) {
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(c));
        path += digits;
    }
    return path;
}

std::string serverPath(unsigned number)
{
    char digits[16];
    std::snprintf(digits, sizeof digits, "%04u", number);
    return serverPrefix + digits;
}

unsigned serverNumber(const std::string &path)
{
    if (path.size() <= serverPrefix.size())
        return 0;
    return unsigned(std::strtoul(path.c_str() + serverPrefix.size(), nullptr, 10));
}
