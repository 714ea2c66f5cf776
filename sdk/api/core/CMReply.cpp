#include "CMReply.h"

#include <api/core/orka.h>

#include <QCoreApplication>
#include <QEvent>
#include <QVector>

#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <mutex>
#include <optional>

class CMReplyState
{
public:
    bool isFinished() const;
    CMError error() const;
    QVariant value() const;

    void setError(const CMError &error);
    void setValue(const QVariant &value);
    void setCheck(std::function<CMError(const QVariant &)> check) { m_check = std::move(check); }

    void watch(CMReplyWatcherObject *watcher);
    void forget(CMReplyWatcherObject *watcher);

private:
    void finish();

    mutable std::mutex m_mutex;
    bool m_isFinished = false;
    std::optional<CMError> m_error;
    std::optional<QVariant> m_value;
    std::function<CMError(const QVariant &)> m_check;
    QVector<CMReplyWatcherObject *> m_watchers;
};

namespace {
QEvent::Type finishedEvent()
{
    static const auto type = QEvent::Type(QEvent::registerEventType());
    return type;
}

void announce(CMReplyWatcherObject *watcher)
{
    QCoreApplication::postEvent(watcher, new QEvent(finishedEvent()));
}

void warnAnsweredTwice(const char *kind)
{
    static const auto logger = log4cplus::Logger::getInstance("CM");
    LOG4CPLUS_WARN(logger,
        "A request was answered with a second " << kind << "; the first one stands and this one "
                                                << "is dropped.");
}
} // namespace

bool CMReplyState::isFinished() const
{
    const std::lock_guard lock(m_mutex);
    return m_isFinished;
}

CMError CMReplyState::error() const
{
    const std::lock_guard lock(m_mutex);
    return m_error.value_or(CMError());
}

QVariant CMReplyState::value() const
{
    const std::lock_guard lock(m_mutex);
    return m_value.value_or(QVariant());
}

void CMReplyState::setError(const CMError &error)
{
    const CMError named = error.isError()
        ? error
        : createErrorInternal(QStringLiteral("The request failed with an error that has no name."));
    {
        const std::lock_guard lock(m_mutex);
        if (!m_error) {
            m_error = named;
            finish();
            return;
        }
    }
    warnAnsweredTwice("error");
}

void CMReplyState::setValue(const QVariant &value)
{
    const CMError refusal = m_check ? m_check(value) : CMError();
    if (refusal.isError()) {
        setError(refusal);
        return;
    }
    {
        const std::lock_guard lock(m_mutex);
        if (!m_value) {
            m_value = value;
            finish();
            return;
        }
    }
    warnAnsweredTwice("value");
}

// With the lock held, so that no watcher is destroyed between being found and being told.
void CMReplyState::finish()
{
    if (m_isFinished)
        return;
    m_isFinished = true;
    for (CMReplyWatcherObject *watcher : qAsConst(m_watchers))
        announce(watcher);
}

void CMReplyState::watch(CMReplyWatcherObject *watcher)
{
    const std::lock_guard lock(m_mutex);
    m_watchers.append(watcher);
    if (m_isFinished)
        announce(watcher);
}

void CMReplyState::forget(CMReplyWatcherObject *watcher)
{
    const std::lock_guard lock(m_mutex);
    m_watchers.removeOne(watcher);
}

CMVoidReply::CMVoidReply(std::shared_ptr<CMReplyState> state)
    : m_state(std::move(state))
{
}

std::shared_ptr<CMReplyState> CMVoidReply::newState()
{
    return std::make_shared<CMReplyState>();
}

bool CMVoidReply::isFinished() const
{
    return m_state && m_state->isFinished();
}

CMError CMVoidReply::error() const
{
    return m_state ? m_state->error() : CMError();
}

void CMVoidReply::setError(const CMError &error)
{
    ORKA_ASSERT(isValid());
    m_state->setError(error);
}

QVariant CMVoidReply::variant() const
{
    return m_state ? m_state->value() : QVariant();
}

void CMVoidReply::setVariant(const QVariant &value)
{
    ORKA_ASSERT(isValid());
    m_state->setValue(value);
}

void CMVoidReply::setCheck(std::function<CMError(const QVariant &)> check)
{
    ORKA_ASSERT(isValid());
    m_state->setCheck(std::move(check));
}

CMReplyWatcherObject::CMReplyWatcherObject(const CMVoidReply &reply, QObject *parent)
    : QObject(parent)
    , m_reply(reply)
{
    ORKA_ASSERT(reply.isValid());
    m_reply.m_state->watch(this);
}

CMReplyWatcherObject::~CMReplyWatcherObject()
{
    m_reply.m_state->forget(this);
}

bool CMReplyWatcherObject::event(QEvent *event)
{
    if (event->type() != finishedEvent())
        return QObject::event(event);
    // A slot may delete this object.
    const CMVoidReply reply = m_reply;
    emit finishedSignal(reply);
    return true;
}
