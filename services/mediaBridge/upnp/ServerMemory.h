#pragma once

#include "core/RememberedServer.h"
#include "core/Timer.h"

#include <map>
#include <set>

namespace bridge {

/// The file that keeps servers from one run to the next. It is only ever a help: where it can't be
/// read or written, servers are found as if there were none. Several programs may share it. Main
/// thread only; owned by the registry.
class ServerMemory
{
public:
    /// Reads the file; an empty name stands for none.
    explicit ServerMemory(std::string file);
    /// Writes what hasn't been written yet.
    ~ServerMemory() { save(); }
    ServerMemory(const ServerMemory &) = delete;
    ServerMemory &operator=(const ServerMemory &) = delete;

    /// What was found by this named address; empty for what was found by multicast.
    std::vector<RememberedServer> foundBy(const std::string &address) const;
    /// The server is there now. `lastSeen` and `missed` are set here.
    void seen(RememberedServer server);
    /// It isn't where it was.
    void missed(const std::string &udn);
    /// Why it can't be written, in a sentence; empty where it can.
    const std::string &problem() const { return m_problem; }
    /// What was found by this named address only is dropped.
    void forget(const std::string &address);

private:
    std::vector<RememberedServer> read() const;
    void makeRoom();
    void saveSoon();
    void save();

    std::string m_file;
    /// By UDN.
    std::map<std::string, RememberedServer> m_servers;
    std::set<std::string> m_forgotten;
    bool m_isChanged = false;
    std::string m_problem;
    Timer m_save;
};

} // namespace bridge
