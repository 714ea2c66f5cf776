#include "upnp/ServerMemory.h"

#include "Log.h"
#include "core/Glib.h"
#include "core/Limits.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <glib/gstdio.h>
#include <sys/stat.h>
#include <unistd.h>

namespace bridge {

namespace {

constexpr unsigned saveAfterMs = 1'000;
constexpr unsigned saveAgainMs = 60'000;
/// Rather than with every announcement.
constexpr int64_t sameFor = 3'600;

int64_t secondsNow()
{
    return g_get_real_time() / G_USEC_PER_SEC;
}

/// The whole of a file; empty where it is none, or too long to be one of ours.
std::string readWhole(const std::string &name)
{
    const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return {};
    struct stat status
    {};
    std::string text;
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode)
        && static_cast<size_t>(status.st_size) <= limits::memoryBytes) {
        text.resize(static_cast<size_t>(status.st_size));
        const ssize_t size = ::read(file, text.data(), text.size());
        text.resize(static_cast<size_t>(std::max<ssize_t>(size, 0)));
    }
    close(file);
    return text;
}

/// Whoever reads meanwhile sees the old or the new one. 0, or what went wrong.
int replaceFile(const std::string &name, const std::string &text)
{
    const std::string folder = takeString(g_path_get_dirname(name.c_str()));
    if (g_mkdir_with_parents(folder.c_str(), 0700) != 0)
        return errno;
    std::string temporary = name + ".XXXXXX";
    const int file = g_mkstemp_full(temporary.data(), O_WRONLY | O_CLOEXEC, 0600);
    if (file < 0)
        return errno;
    errno = ENOSPC;
    const bool isWritten =
        write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    int problem = isWritten ? 0 : errno;
    close(file);
    if (problem == 0 && rename(temporary.c_str(), name.c_str()) != 0)
        problem = errno;
    if (problem != 0)
        unlink(temporary.c_str());
    return problem;
}

} // namespace

ServerMemory::ServerMemory(std::string file)
    : m_file(std::move(file))
{
    for (RememberedServer &server : read())
        m_servers.emplace(server.udn, std::move(server));
}

std::vector<RememberedServer> ServerMemory::read() const
{
    if (m_file.empty())
        return {};
    return parseServers(readWhole(m_file), secondsNow());
}

std::vector<RememberedServer> ServerMemory::foundBy(const std::string &address) const
{
    std::vector<RememberedServer> found;
    for (const auto &[udn, server] : m_servers) {
        if (server.address == address)
            found.push_back(server);
    }
    return found;
}

void ServerMemory::seen(RememberedServer server)
{
    server.lastSeen = secondsNow();
    RememberedServer &known = m_servers[server.udn];
    m_forgotten.erase(server.udn);
    const bool isSame = known.location == server.location && known.name == server.name
        && known.address == server.address && known.missed == 0
        && server.lastSeen - known.lastSeen < sameFor;
    if (isSame)
        return;
    known = std::move(server);
    makeRoom();
    saveSoon();
}

/// The file holds no more, and whoever keeps making servers up would fill the memory.
void ServerMemory::makeRoom()
{
    if (m_servers.size() <= limits::rememberedServers)
        return;
    m_servers.erase(std::min_element(m_servers.begin(), m_servers.end(),
        [](const auto &a, const auto &b) { return a.second.lastSeen < b.second.lastSeen; }));
}

void ServerMemory::missed(const std::string &udn)
{
    const auto server = m_servers.find(udn);
    if (server == m_servers.end())
        return;
    ++server->second.missed;
    saveSoon();
}

void ServerMemory::forget(const std::string &address)
{
    for (auto it = m_servers.begin(); it != m_servers.end();) {
        if (it->second.address != address) {
            ++it;
            continue;
        }
        m_forgotten.insert(it->first);
        it = m_servers.erase(it);
        saveSoon();
    }
}

void ServerMemory::saveSoon()
{
    m_isChanged = !m_file.empty();
    if (m_isChanged && !m_save.isRunning())
        m_save.start(m_problem.empty() ? saveAfterMs : saveAgainMs, [this] { save(); });
}

/// Keeps what others have written meanwhile.
void ServerMemory::save()
{
    if (!std::exchange(m_isChanged, false))
        return;
    m_save.stop();
    std::vector<RememberedServer> servers;
    for (const auto &[udn, server] : m_servers)
        servers.push_back(server);
    for (RememberedServer &server : read()) {
        if (m_servers.count(server.udn) == 0 && m_forgotten.count(server.udn) == 0)
            servers.push_back(std::move(server));
    }
    const int problem = replaceFile(m_file, printServers(std::move(servers)));
    if (problem == 0) {
        m_forgotten.clear(); // the file no longer has them
        m_problem.clear();
        return;
    }
    const std::string sentence = "Media servers can't be remembered in " + m_file + " ("
        + strerror(problem) + "): one that is off at the next start won't be missed.";
    if (std::exchange(m_problem, sentence) != sentence)
        logWarning(sentence);
    saveSoon();
}

} // namespace bridge
