#pragma once

#include "ArrivedObjects.h"
#include "ObjectMapping.h"

#include <functional>

/// Names of a preparation's calls in its barrier; `number` counts from 1.
namespace preparation {
/// The item properties of a track.
QString directItemCall(int number);
/// The object properties of a track.
QString directObjectCall(int number);
/// The search in a container or server.
QString searchCall(int number);
} // namespace preparation

/// Answers a preparation; start() when its barrier has all replies. Its tracks come first, then
/// what each search found. Where a search failed and nothing was found at all, `walk` gets the
/// request instead. Disposes of the barrier, and of itself, its child.
class PreparedItems : public SlicedWork
{
    Q_OBJECT

public:
    PreparedItems(DBusBarrier *barrier, const ObjectMapping &mapping,
        std::function<void(const CMSetDataRequest &)> walk);

private:
    Next step() override;
    void takeTrack();
    void openSearch();
    ObjectProperties takeProperties(const QString &callName);
    void append(const ObjectProperties &object);
    void answer();

    DBusBarrier *m_barrier;
    ArrivedObjects m_arrived;
    ObjectMapping m_mapping;
    std::function<void(const CMSetDataRequest &)> m_walk;
    int m_track = 1;
    int m_search = 1;
    bool m_searchFailed = false;
    ArrivedObjects::Objects m_found;
    QVariantList m_items;
};
