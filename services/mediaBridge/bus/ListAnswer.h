#pragma once

#include "bus/BusService.h"
#include "core/MediaObject.h"
#include "core/Properties.h"

#include <optional>

namespace bridge {

/// The answer to a listing, written row by row, so that no second copy of a long list is needed.
class ListAnswer
{
public:
    ListAnswer(
        BusService &bus, BusCallPtr call, const PropertySet &wanted, const ServerContext &server);
    ~ListAnswer() = default;
    ListAnswer(const ListAnswer &) = delete;
    ListAnswer &operator=(const ListAnswer &) = delete;

    /// The failure's name is empty where there was room for the row.
    Failure add(const MediaObject &object);
    Failure add(const PropertyMap &row);

    void send();
    void send(uint32_t total);

private:
    struct Claim;
    Failure checkRoom();

    BusService &m_bus;
    BusCallPtr m_call;
    Message m_message;
    PropertySet m_wanted;
    ServerContext m_server;
    MessageWriter m_body{m_message.get()};
    std::optional<MessageWriter> m_rows{std::in_place, m_body, DBUS_TYPE_ARRAY, "a{sv}"};
    std::shared_ptr<Claim> m_claim;
};

} // namespace bridge
