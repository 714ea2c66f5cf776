#pragma once

#include <api/core/CMPath.h>

#include <QDBusPendingCallWatcher>

#include <memory>

class Session;

/// Tells whether a media server's content has changed while it was read in pieces, by the number
/// that the server counts its changes with, or the server has moved.
class ContentWatch
{
public:
    /// Asks the server of this node, and doesn't wait for it.
    ContentWatch(const Session &session, const CMPath &path);

    /// A sentence where the content has changed since; empty where it hasn't, and where the server
    /// doesn't say. Waits in the event loop, a second at most.
    QString change() const;

private:
    QString m_server;
    QString m_location;
    std::unique_ptr<QDBusPendingCallWatcher> m_before;
};
