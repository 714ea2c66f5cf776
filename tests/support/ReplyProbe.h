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
    QString message() const { return m_state->reply.error().message().sourceString(); }
    int announcements() const { return m_state->announcements; }

    /// "value", "error NAME: MESSAGE", "nothing" while there is no answer, or what is wrong. An
    /// answered request that somebody still keeps is wrong too.
    QString outcome() const
    {
        if (announcements() > 1)
            return QStringLiteral("announced %1 times").arg(announcements());
        if (announcements() == 0)
            return m_state->reply.isFinished() ? QStringLiteral("not announced")
                                               : QStringLiteral("nothing");
        if (m_state->reply.handles() > ownHandles)
            return QStringLiteral("answered, but its request is still kept");
        const CMError error = m_state->reply.error();
        return error.isError() ? QStringLiteral("error %1: %2").arg(error.name(), message())
                               : QStringLiteral("value");
    }

private:
    /// The probe's and its watcher's.
    static constexpr long ownHandles = 2;

    struct State
    {
        CMReply<T> reply;
        CMReplyWatcherObject watcher{reply};
        int announcements = 0;
    };

    std::shared_ptr<State> m_state;
};
