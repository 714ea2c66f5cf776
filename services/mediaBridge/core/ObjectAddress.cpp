#include "core/ObjectAddress.h"

namespace bridge {

namespace {

constexpr char hexDigits[] = "0123456789abcdef";

bool isAsciiAlnum(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

void appendHex(std::string &text, char c)
{
    const auto byte = static_cast<unsigned char>(c);
    text += hexDigits[byte >> 4];
    text += hexDigits[byte & 0xf];
}

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

std::optional<std::string> decodeObjectId(std::string_view hex)
{
    if (hex.empty() || hex.size() % 2 != 0)
        return std::nullopt;
    std::string id;
    id.reserve(hex.size() / 2);
    for (size_t i = 0; i < hex.size(); i += 2) {
        const int high = hexValue(hex[i]);
        const int low = hexValue(hex[i + 1]);
        if (high < 0 || low < 0 || (high == 0 && low == 0))
            return std::nullopt;
        id += static_cast<char>(high * 16 + low);
    }
    return id;
}

} // namespace

std::string serverPathFromUdn(std::string_view udn)
{
    std::string path(serverRootPath);
    path += '/';
    for (const char c : udn) {
        if (isAsciiAlnum(c)) {
            path += c;
        } else {
            path += '_';
            appendHex(path, c);
        }
    }
    return path;
}

std::string objectPath(std::string_view serverPath, std::string_view objectId)
{
    if (objectId.empty())
        return {};
    std::string path(serverPath);
    if (objectId == rootObjectId)
        return path;
    path.reserve(path.size() + 1 + 2 * objectId.size());
    path += '/';
    for (const char c : objectId)
        appendHex(path, c);
    return path;
}

std::optional<ObjectAddress> parseObjectPath(std::string_view path)
{
    if (path.substr(0, serverRootPath.size()) != serverRootPath)
        return std::nullopt;
    path.remove_prefix(serverRootPath.size());
    if (path.size() < 2 || path.front() != '/')
        return std::nullopt;
    path.remove_prefix(1);

    const size_t slash = path.find('/');
    ObjectAddress address{std::string(path.substr(0, slash)), std::string(rootObjectId)};
    if (address.serverName.empty())
        return std::nullopt;
    if (slash == std::string_view::npos)
        return address;

    auto id = decodeObjectId(path.substr(slash + 1));
    if (!id)
        return std::nullopt;
    address.objectId = std::move(*id);
    return address;
}

} // namespace bridge
