#pragma once

#include "chain/Diagnosis.h"

#include <api/core/CMError.h>
#include <api/core/CMPath.h>

#include <QDBusPendingCallWatcher>
#include <QObject>

#include <functional>
#include <memory>

/// What is the matter with a node of which a worker says only that it failed, as Session says it to
/// people: the media service is asked about the node, beside everything else. Ends itself when it
/// has told.
class ErrorReason : public QObject
{
public:
    struct Question
    {
        CMPath path;
        /// The rows that were asked for; what fails may be one of them alone.
        int first;
        int count;
        /// For how long the worker was waited for.
        std::chrono::milliseconds waited;
    };
    /// The error with its reason; no error where a media server means that there are no rows.
    using Done = std::function<void(const CMError &)>;

    /// `servers` are those of the media service, by their object paths.
    ErrorReason(const CMError &error, Question question, const QStringList &servers,
        std::chrono::milliseconds timeout, Done done, QObject *parent);

private:
    void ask(const QString &server, std::chrono::milliseconds limit);
    void lookAtAnswers();
    void tell(const Diagnosis &diagnosis, const QString &server);

    const CMError m_error;
    const Question m_question;
    Done m_done;
    std::unique_ptr<QDBusPendingCallWatcher> m_node;
    /// A container's number of rows, without which a worker gives none.
    std::unique_ptr<QDBusPendingCallWatcher> m_count;
    /// The media service knows this by itself: a sign of life.
    std::unique_ptr<QDBusPendingCallWatcher> m_name;
};
