#include "bus/ListAnswer.h"

#include "core/Limits.h"

namespace bridge {

namespace {

/// Bytes of all answers that are being written or wait for their turn.
size_t writtenBytes = 0;

} // namespace

/// What an answer has of them.
struct ListAnswer::Claim
{
    Claim() = default;
    ~Claim() { writtenBytes -= bytes; }
    Claim(const Claim &) = delete;
    Claim &operator=(const Claim &) = delete;

    size_t bytes = 0;
};

ListAnswer::ListAnswer(
    BusService &bus, BusCallPtr call, const PropertySet &wanted, const ServerContext &server)
    : m_bus(bus)
    , m_call(std::move(call))
    , m_message(m_call->newAnswer())
    , m_wanted(wanted)
    , m_server(server)
    , m_claim(std::make_shared<Claim>())
{
}

Failure ListAnswer::add(const MediaObject &object)
{
    {
        MessageWriter row(*m_rows, DBUS_TYPE_ARRAY, "{sv}");
        for (const Property &property : properties()) {
            if (m_wanted.contains(property))
                row.addEntry(property.name, propertyValue(object, property, m_server));
        }
    }
    return checkRoom();
}

Failure ListAnswer::add(const PropertyMap &row)
{
    m_rows->add(row);
    return checkRoom();
}

Failure ListAnswer::checkRoom()
{
    const size_t bytes = m_rows->bytes();
    writtenBytes += bytes - m_claim->bytes;
    m_claim->bytes = bytes;
    if (bytes > m_call->maxBytes())
        return tooLargeForBus(m_call->maxBytes());
    if (bytes <= limits::answerAtOnce || writtenBytes + m_bus.unsentBytes() <= limits::answersBytes)
        return {};
    return {errors::limitsExceeded,
        "Too many long lists are asked for at once. Try again when the others are answered, or ask "
        "for fewer objects at a time."};
}

void ListAnswer::send()
{
    m_rows.reset();
    m_call->sendInTurn(std::move(m_message), m_body.bytes(), m_claim);
}

void ListAnswer::send(uint32_t total)
{
    m_rows.reset();
    m_body.add(total);
    m_call->sendInTurn(std::move(m_message), m_body.bytes(), m_claim);
}

} // namespace bridge
