#include "core/RememberedServer.h"

#include "core/Limits.h"
#include "core/Text.h"

#include <algorithm>
#include <memory>

namespace bridge {

namespace {

constexpr const char *head = "orka-media-bridge";
constexpr int version = 1;
constexpr int64_t longestAbsence = int64_t{30} * 24 * 3600;
constexpr unsigned mostMissed = 3;

struct KeyFileUnref
{
    void operator()(GKeyFile *file) const { g_key_file_unref(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileUnref>;

std::string text(const KeyFile &file, const char *group, const char *key)
{
    return takeString(g_key_file_get_string(file.get(), group, key, nullptr));
}

bool isPlain(const std::string &text, size_t most)
{
    return !text.empty() && text.size() <= most
        && std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c <= '~'; });
}

bool isUsable(const RememberedServer &server, int64_t now)
{
    return isPlain(server.udn, limits::udnBytes) && isPlain(server.location, limits::locationBytes)
        && server.missed < mostMissed && now - server.lastSeen < longestAbsence;
}

} // namespace

std::vector<RememberedServer> parseServers(const std::string &document, int64_t now)
{
    const KeyFile file(g_key_file_new());
    if (g_key_file_load_from_data(
            file.get(), document.data(), document.size(), G_KEY_FILE_NONE, nullptr)
            == FALSE
        || g_key_file_get_integer(file.get(), head, "Version", nullptr) != version)
        return {};
    gsize count = 0;
    char **groups = g_key_file_get_groups(file.get(), &count);
    std::vector<RememberedServer> servers;
    for (gsize i = 0; i < count && servers.size() < limits::rememberedServers; ++i) {
        const char *group = groups[i];
        RememberedServer server;
        server.udn = text(file, group, "Udn");
        server.location = text(file, group, "Location");
        server.name = shortened(text(file, group, "Name"), limits::rememberedNameBytes);
        server.address = text(file, group, "Address");
        server.lastSeen =
            std::min<int64_t>(g_key_file_get_int64(file.get(), group, "LastSeen", nullptr), now);
        server.missed = static_cast<unsigned>(
            std::max(g_key_file_get_integer(file.get(), group, "Missed", nullptr), 0));
        if (isUsable(server, now))
            servers.push_back(std::move(server));
    }
    g_strfreev(groups);
    return servers;
}

std::string printServers(std::vector<RememberedServer> servers)
{
    std::sort(servers.begin(), servers.end(),
        [](const auto &a, const auto &b) { return a.lastSeen > b.lastSeen; });
    servers.resize(std::min(servers.size(), limits::rememberedServers));
    const KeyFile file(g_key_file_new());
    g_key_file_set_integer(file.get(), head, "Version", version);
    int number = 0;
    for (const RememberedServer &server : servers) {
        const std::string group = "server " + std::to_string(++number);
        const auto set = [&](const char *key, const std::string &value) {
            if (!value.empty())
                g_key_file_set_string(file.get(), group.c_str(), key, value.c_str());
        };
        set("Udn", server.udn);
        set("Location", server.location);
        set("Name", shortened(server.name, limits::rememberedNameBytes));
        set("Address", server.address);
        g_key_file_set_int64(file.get(), group.c_str(), "LastSeen", server.lastSeen);
        if (server.missed != 0)
            g_key_file_set_integer(
                file.get(), group.c_str(), "Missed", static_cast<int>(server.missed));
    }
    return takeString(g_key_file_to_data(file.get(), nullptr, nullptr));
}

} // namespace bridge
