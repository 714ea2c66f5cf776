#include "bus/ObjectsReader.h"

#include "core/Limits.h"
#include "core/ObjectAddress.h"

#include <numeric>

namespace bridge {

namespace {

// Below the 25 s after which a D-Bus caller gives up.
constexpr unsigned deadlineMs = 20'000;
// Paths that aren't the server's take no time of its own.
constexpr size_t sliceObjects = 50;

/// Bytes of the paths of all that are under way.
size_t allPathBytes = 0;

size_t bytesOf(const std::vector<std::string> &paths)
{
    return std::accumulate(paths.begin(), paths.end(), size_t{0},
        [](size_t sum, const std::string &path) { return sum + sizeof path + path.size(); });
}

/// The failure's name is empty where there is room for so many.
Failure checkRoom(size_t bytes)
{
    const auto mebibytes = [](size_t most) {
        return std::to_string(most >> 20) + " MiB";
    };
    if (bytes > limits::pathsOfOneCall)
        return {errors::invalidArgs,
            "BrowseObjects takes " + mebibytes(limits::pathsOfOneCall)
                + " of paths at most. Ask for fewer objects at a time."};
    if (allPathBytes + bytes > limits::pathsOfAll)
        return {errors::limitsExceeded,
            "Too many objects are asked for at once. Try again when the other calls are answered."};
    return {};
}

/// Property map of an object that could not be read.
PropertyMap errorRow(const std::string &path, const Failure &failure)
{
    return {{"Path", ObjectPath{path}},
        {"Error", PropertyMap{{"ID", int32_t{0}}, {"Message", failure.text}}}};
}

} // namespace

void ObjectsReader::start(BusService &bus, const BusCallPtr &call, const MediaServerPtr &server,
    std::vector<std::string> paths, const PropertySet &wanted)
{
    const Failure refusal = checkRoom(bytesOf(paths));
    if (!refusal.name.empty()) {
        call->fail(refusal);
        return;
    }
    const std::shared_ptr<ObjectsReader> reader(
        new ObjectsReader(bus, call, server, std::move(paths), wanted));
    // Holds the reader until it is over.
    reader->m_deadline.start(deadlineMs, [reader] {
        reader->end({errors::operationFailed,
            "BrowseObjects operation failed: Only " + std::to_string(reader->m_written) + " of "
                + std::to_string(reader->m_paths.size())
                + " objects could be read in 20 seconds. Ask for fewer objects at a time."});
    });
    reader->readMore();
}

ObjectsReader::ObjectsReader(BusService &bus, const BusCallPtr &call, const MediaServerPtr &server,
    std::vector<std::string> paths, const PropertySet &wanted)
    : m_pathBytes(bytesOf(paths))
    , m_call(call)
    , m_server(server)
    , m_paths(std::move(paths))
    , m_wanted(wanted)
    , m_answer(bus, call, wanted, server->context())
{
    allPathBytes += m_pathBytes;
}

ObjectsReader::~ObjectsReader()
{
    allPathBytes -= m_pathBytes;
}

void ObjectsReader::readMore()
{
    // Rows that come at once lead back here.
    if (std::exchange(m_isReading, true))
        return;
    if (g_cancellable_is_cancelled(m_call->cancellable()) != FALSE) {
        end({errors::cancelled, "Operation cancelled."});
        return;
    }
    const size_t endOfSlice = m_next + sliceObjects;
    const auto mayRead = [this] {
        return !m_isOver && m_next < m_paths.size()
            && m_next - m_written < limits::requestsPerServer;
    };
    while (mayRead() && m_next < endOfSlice)
        read(m_next++);
    m_isReading = false;
    if (mayRead())
        m_nextSlice.start(0, [self = shared_from_this()] { self->readMore(); });
    else if (!m_isOver && m_written == m_paths.size())
        end({});
}

void ObjectsReader::read(size_t index)
{
    const std::string &path = m_paths[index];
    const auto address = parseObjectPath(path);
    if (!address || objectPath(m_server->context().path, address->objectId) != path) {
        const Failure failure{errors::badPath, "The path is not one of this server's objects."};
        got(index, errorRow(path, failure));
        return;
    }
    m_server->readObject(address->objectId, m_wanted, m_call->caller(),
        [self = shared_from_this(), index](const Failure &failure, const MediaObject &object) {
            self->got(index,
                failure.name.empty()
                    ? propertyMap(object, self->m_wanted, self->m_server->context())
                    : errorRow(self->m_paths[index], failure));
        });
}

void ObjectsReader::got(size_t index, PropertyMap row)
{
    if (m_isOver)
        return;
    m_early.emplace(index, std::move(row));
    while (!m_isOver && !m_early.empty() && m_early.begin()->first == m_written) {
        const Failure refusal = m_answer.add(m_early.begin()->second);
        m_early.erase(m_early.begin());
        ++m_written;
        if (!refusal.name.empty())
            end(refusal);
    }
    readMore();
}

void ObjectsReader::end(const Failure &failure)
{
    const auto self = shared_from_this();
    m_isOver = true;
    if (failure.name.empty()) {
        m_answer.send();
    } else {
        m_call->fail(failure);
        g_cancellable_cancel(m_call->cancellable());
    }
    m_deadline.stop();
}

} // namespace bridge
