#include "bus/MediaService.h"

namespace bridge {

void MediaService::getServers(const BusCallPtr &call, const Target &)
{
    if (m_firstSearch.isRunning())
        m_waitingForServers.push_back(call);
    else
        answerGetServers(call);
}

void MediaService::answerGetServers(const BusCallPtr &call)
{
    std::vector<ObjectPath> paths;
    for (const auto &server : m_registry.servers())
        paths.push_back({server->context().path});
    call->reply(paths);
}

void MediaService::getVersion(const BusCallPtr &call, const Target &)
{
    call->reply(std::string(ORKA_VERSION));
}

void MediaService::release(const BusCallPtr &call, const Target &)
{
    call->reply();
    m_bus.releaseClient(call->sender());
}

/// Preferences that change nothing here: every resource is shown as its server gives it, and
/// addresses are chosen by how far they can be used.
void MediaService::accept(const BusCallPtr &call, const Target &)
{
    call->reply();
}

void MediaService::rescan(const BusCallPtr &call, const Target &)
{
    m_registry.rescan();
    call->reply();
}

void MediaService::cancel(const BusCallPtr &call, const Target &target)
{
    call->reply();
    m_bus.cancelCalls(target.server->context().path, call->sender());
}

} // namespace bridge
