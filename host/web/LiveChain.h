#pragma once

#include "chain/Session.h"

#include <api/core/CMPath.h>

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

/// The chain of a program that goes on: media service and worker, made anew where the media service
/// has left. Its answers are told from the event loop; nothing here waits for one.
class LiveChain : public QObject
{
    Q_OBJECT

public:
    /// Told once: without an error when the reply has its value, or there are no rows. "noAnswer"
    /// is the error's name where nothing came in time, "noMediaService" where the media service has
    /// left; other errors say what is the matter, as those of Session do.
    using Done = std::function<void(const CMError &)>;

    /// Throws Failure where there is no chain to begin with.
    explicit LiveChain(const GlobalOptions &options);

    const GlobalOptions &options() const { return m_options; }
    /// The node whose rows are the media servers.
    CMPath root() const { return CMPath(m_options.prefix, QString()); }
    bool isThere() const { return bool(m_session) && !m_isLost; }
    /// Why it isn't there, a sentence.
    QString trouble() const { return m_trouble; }
    /// The media service's objects of its servers.
    QStringList serviceObjects() const;
    /// That of a node's server; empty where it isn't listed.
    QString serviceObject(const CMPath &path) const;

    void rows(const CMPath &path, int first, int last, const QStringList &roles,
        std::function<void(const CMError &, const OrkaRowsRoles &)> done);
    void data(const CMPath &path, const QStringList &roles,
        std::function<void(const CMError &, const QVariantList &)> done);
    void set(const CMPath &path, const QVariant &value,
        std::function<void(const CMError &, const QVariant &)> done);

signals:
    /// isThere() has changed.
    void changed();

private:
    void begin();
    void lose();
    void tryAgain();
    /// Tells `done` of an error with its reason, about these rows.
    Done explained(const CMPath &path, int first, int count, Done done);
    void await(const CMVoidReply &reply, Done done);

    const GlobalOptions m_options;
    std::unique_ptr<Session> m_session;
    QString m_trouble;
    bool m_isLost = false;
    QTimer m_again;
};
