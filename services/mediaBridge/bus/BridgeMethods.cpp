#include "bus/MediaService.h"

namespace bridge {

void MediaService::addServer(const BusCallPtr &call, const Target &)
{
    const std::string text = call->arguments().text();
    std::string problem;
    const auto address = parseServerAddress(text, &problem);
    if (!address) {
        call->fail({errors::notReached, problem});
        return;
    }
    m_registry.addNamed(*address, [call](const std::string &path, const Failure &failure) {
        if (failure.name.empty())
            call->reply(ObjectPath{path});
        else
            call->fail(failure);
    });
}

void MediaService::forgetServer(const BusCallPtr &call, const Target &)
{
    const std::string text = call->arguments().text();
    std::string problem;
    const auto address = parseServerAddress(text, &problem);
    if (!address) {
        call->fail({errors::invalidArgs, problem});
        return;
    }
    m_registry.forgetNamed(*address);
    call->reply();
}

void MediaService::stop(const BusCallPtr &call, const Target &)
{
    if (m_bus.isShared()) {
        call->fail(
            {errors::accessDenied, "On a system bus the bridge is ended by whoever started it."});
        return;
    }
    call->reply();
    onStop();
}

} // namespace bridge
