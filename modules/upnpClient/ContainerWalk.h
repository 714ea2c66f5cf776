#pragma once

#include "ArrivedObjects.h"
#include "ObjectMapping.h"

#include <QDBusObjectPath>
#include <QQueue>

/// Names of the calls of a walk for what its request names; a sub-container's name is its parent's
/// followed by its position.
namespace walk {
const QString &containerCall();
const QString &trackCall();
/// Children that are read of any one container.
constexpr uint maxChildren = 10000;
} // namespace walk

/// A walk over containers, for a request whose first calls are in `barrier`.
///
/// It goes in rounds. Each time the barrier has all replies, start() begins one: finished calls are
/// taken in the order of their names and their objects turned into playlist items. Where a call has
/// listed containers, their listings are asked for and the round ends; names and order make that a
/// walk in depth, although all listings of a round are on their way at once. A round that finds no
/// call left answers the request and disposes of the barrier, and of this, its child. What the
/// rounds share besides, the objects met and the items so far, is in the barrier.
class ContainerWalk : public SlicedWork
{
    Q_OBJECT

public:
    /// `filter`: the names of the properties that are asked for.
    ContainerWalk(DBusBarrier *barrier, const ObjectMapping &mapping, const QStringList &filter);

private:
    struct SubContainer
    {
        QString callName;
        QDBusObjectPath path;
    };

    Next step() override;
    Next takeCall();
    void visit(const ObjectProperties &object);
    Next listSubContainer();
    void answer();

    DBusBarrier *m_barrier;
    ArrivedObjects m_arrived;
    ObjectMapping m_mapping;
    QStringList m_filter;

    // Of the call that is being read.
    QString m_callName;
    ArrivedObjects::Objects m_objects;
    /// Of the object in its listing, from 1.
    int m_position = 0;
    QQueue<SubContainer> m_subContainers;
    /// Some of them have been asked for, some haven't.
    bool m_isSending = false;
};
