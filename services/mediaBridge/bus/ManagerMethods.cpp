#include "bus/MediaService.h"

#ifndef ORKA_VERSION
#error "the build names the version"
#endif

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
    GVariantBuilder paths;
    g_variant_builder_init(&paths, G_VARIANT_TYPE("ao"));
    for (const auto &server : m_registry.servers())
        g_variant_builder_add(&paths, "o", server->context().path.c_str());
    call->reply(g_variant_new("(ao)", &paths));
}

void MediaService::getVersion(const BusCallPtr &call, const Target &)
{
    call->reply(g_variant_new("(s)", ORKA_VERSION));
}

void MediaService::release(const BusCallPtr &call, const Target &)
{
    call->reply(nullptr);
    m_bus.releaseClient(call->sender());
}

/// Preferences that change nothing here: every resource is shown as its server gives it, and
/// addresses are chosen by how far they can be used.
void MediaService::accept(const BusCallPtr &call, const Target &)
{
    call->reply(nullptr);
}

void MediaService::rescan(const BusCallPtr &call, const Target &)
{
    m_registry.rescan();
    call->reply(nullptr);
}

void MediaService::cancel(const BusCallPtr &call, const Target &target)
{
    call->reply(nullptr);
    m_bus.cancelCalls(target.server->context().path, call->sender());
}

} // namespace bridge
