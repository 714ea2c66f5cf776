#include "bus/MediaService.h"

namespace bridge {

void MediaService::addServer(const BusCallPtr &call, const Target &)
{
    const std::string address = call->arguments().text();
    call->fail({errors::notReached,
        "\"" + address + "\" was not asked: servers are looked for by multicast only."});
}

void MediaService::forgetServer(const BusCallPtr &call, const Target &)
{
    call->reply();
}

void MediaService::stop(const BusCallPtr &call, const Target &)
{
    call->reply();
    onStop();
}

} // namespace bridge
