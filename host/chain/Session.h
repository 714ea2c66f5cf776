#pragma once

#include "GlobalOptions.h"
#include "chain/NetworkPublisher.h"
#include "chain/ServiceOnBus.h"

#include <api/core/CMSyncWorker.h>

#include <memory>

/// One run of the chain: addresses published, media service on the bus, worker loaded and mounted.
/// Sends requests and waits for their answers in the event loop.
///
/// A request throws Failure with status AnsweredWithError for an error answer and NoAnswer where
/// none came in time, and Missing where the media service has left the bus.
class Session
{
public:
    /// Throws Failure (missing) where a part of the chain isn't there.
    explicit Session(const GlobalOptions &options);
    /// With a media service that is there already.
    Session(const GlobalOptions &options, std::unique_ptr<ServiceOnBus> mediaService);

    const GlobalOptions &options() const { return m_options; }
    ServiceOnBus &mediaService() { return *m_mediaService; }
    /// The node whose rows are the media servers.
    CMPath root() const { return path(QString()); }
    CMPath path(const QString &base) const { return CMPath(m_worker->prefix(), base); }

    /// `last` is inclusive.
    OrkaRowsRoles rows(const CMPath &path, int first, int last, const QStringList &roles);
    /// The record made of the values that came for `roles`.
    OrkaRoles data(const CMPath &path, const QStringList &roles);
    /// `doing` is what a terminal shows meanwhile.
    QVariant set(const CMPath &path, const QVariant &value, const QString &doing);

private:
    void mount();
    void await(const CMVoidReply &reply, const CMPath &path, const QString &doing);

    const GlobalOptions m_options;
    NetworkPublisher m_network;
    std::unique_ptr<ServiceOnBus> m_mediaService;
    std::unique_ptr<CMSyncWorker> m_worker;
};

/// The record that `values`, one per role, stand for; what the node lacks is left out.
OrkaRoles recordOf(const QStringList &roles, const QVariantList &values);
