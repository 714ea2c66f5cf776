#pragma once

#include "bus/ListAnswer.h"
#include "core/Timer.h"
#include "upnp/MediaServer.h"

namespace bridge {

/// Reads the objects of one BrowseObjects and answers with their rows in the order asked for. A few
/// are read at once; one that fails has its error in its row. Keeps itself alive until it has
/// answered, within 20 seconds.
class ObjectsReader : public std::enable_shared_from_this<ObjectsReader>
{
public:
    static void start(BusService &bus, const BusCallPtr &call, const MediaServerPtr &server,
        std::vector<std::string> paths, const PropertySet &wanted);

    ~ObjectsReader();
    ObjectsReader(const ObjectsReader &) = delete;
    ObjectsReader &operator=(const ObjectsReader &) = delete;

private:
    ObjectsReader(BusService &bus, const BusCallPtr &call, const MediaServerPtr &server,
        std::vector<std::string> paths, const PropertySet &wanted);
    void readMore();
    void read(size_t index);
    void got(size_t index, PropertyMap row);
    void end(const Failure &failure);

    size_t m_pathBytes;
    BusCallPtr m_call;
    MediaServerPtr m_server;
    std::vector<std::string> m_paths;
    PropertySet m_wanted;
    ListAnswer m_answer;
    /// First object that isn't asked for yet, first row that isn't written yet.
    size_t m_next = 0;
    size_t m_written = 0;
    /// Rows that came before their turn.
    std::map<size_t, PropertyMap> m_early;
    bool m_isReading = false;
    bool m_isOver = false;
    Timer m_nextSlice;
    Timer m_deadline;
};

} // namespace bridge
