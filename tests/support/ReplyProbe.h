#pragma once

#include <api/core/CMReply.h>

#include <QObject>

#include <memory>

/// A reply to hand to a request, watched the way a host watches it: what counts is how often the
/// answer is announced, from the event loop.
template<typename T>
class ReplyProbe
{
public:
    ReplyProbe()
        : m_state(std::make_shared<State>())
    {
        State *state = m_state.get();
        QObject::connect(&state->watcher, &CMReplyWatcherObject::finishedSignal, &state->watcher,
            [state] { ++state->announcements; });
    }

    const CMReply<T> &reply() const { return m_state->reply; }
    T value() const { return m_state->reply.value(); }
    CMError error() const { return m_state->reply.error(); }
    int announcements() const { return m_state->announcements; }

    /// "value" or "error NAME: MESSAGE"; without an answer "pending" while somebody keeps the
    /// request and "dropped" when nobody does; or what is wrong, such as an answered request that
    /// is still kept.
    QString outcome() const
    {
        // The probe's and its watcher's.
        const bool isKept = m_state->reply.handles() > 2;
        if (announcements() > 1)
            return QStringLiteral("announced %1 times").arg(announcements());
        if (announcements() == 0 && m_state->reply.isFinished())
            return QStringLiteral("not announced");
        if (announcements() == 0)
            return isKept ? QStringLiteral("pending") : QStringLiteral("dropped");
        if (isKept)
            return QStringLiteral("answered, but its request is still kept");
        return error().isError()
            ? QStringLiteral("error %1: %2").arg(error().name(), error().message().sourceString())
            : QStringLiteral("value");
    }

private:
    struct State
    {
        CMReply<T> reply;
        CMReplyWatcherObject watcher{reply};
        int announcements = 0;
    };

    std::shared_ptr<State> m_state;
};
