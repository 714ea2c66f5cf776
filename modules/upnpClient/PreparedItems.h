#pragma once

#include "PropertyMapReader.h"
#include "ReplyContext.h"
#include "SlicedWork.h"
#include "sdk.h"

class CMUPnPWorker;
class DBusBarrier;

/// Names of a preparation's calls in its barrier; `number` counts from 1.
namespace preparation {
/// The item properties of a track.
QString directItemCall(int number);
/// The object properties of a track.
QString directObjectCall(int number);
/// The search in a container or server.
QString searchCall(int number);
} // namespace preparation

/// Answers a preparation whose calls have all finished: its tracks first, then what each search
/// found. Where a search failed and nothing was found at all, the containers are walked instead.
/// Disposes of the barrier. A child of the worker.
class PreparedItems : public SlicedWork
{
public:
    PreparedItems(CMUPnPWorker *worker, DBusBarrier *barrier);

private:
    bool step() override;
    void takeTrack();
    void openSearch();
    void append(const ObjectProperties &object);
    void answer();

    CMUPnPWorker *m_worker;
    DBusBarrier *m_barrier;
    std::unique_ptr<CMSetDataRequest> m_request;
    int m_track = 1;
    int m_search = 1;
    bool m_searchFailed = false;
    PropertyMapReader m_found;
    ReplyContext m_context;
    QVariantList m_items;
};
