#pragma once

#include "GlobalOptions.h"
#include "chain/Diagnosis.h"
#include "chain/NetworkPublisher.h"
#include "chain/ServiceStarter.h"

#include <api/core/CMSyncWorker.h>

#include <QElapsedTimer>
#include <QHash>

#include <memory>

/// One run of the chain: addresses published, media service on the bus, worker loaded and mounted.
/// Sends requests and waits for their answers in the event loop, --timeout at most since the last
/// one that was no error.
///
/// A request throws Failure: NoAnswer where nothing came in time, Missing where the media service
/// has left the bus, AnsweredWithError for an error answer. Where that gives no reason, the media
/// service itself is asked about the node, so that the failure names what is the matter, with the
/// status of that. An error by which a server says that there is nothing is an empty answer.
class Session
{
public:
    enum Errors {
        Explained,
        /// As the worker gave them.
        Plain
    };
    /// Throws Failure (missing) where a part of the chain isn't there.
    explicit Session(const GlobalOptions &options, Errors errors = Explained);
    /// With a media service that is there already.
    Session(const GlobalOptions &options, std::unique_ptr<ServiceStarter> mediaService);

    const GlobalOptions &options() const { return m_options; }
    ServiceStarter &mediaService() { return *m_mediaService; }
    const ServiceStarter &mediaService() const { return *m_mediaService; }
    /// The node whose rows are the media servers.
    CMPath root() const { return path(QString()); }
    CMPath path(const QString &base) const { return CMPath(m_worker->prefix(), base); }

    /// Anew, when the worker has missed what the media service announced.
    void makeWorker();

    /// What sentences call the node, whatever the parameters of its path: a place as a person wrote
    /// it, a media server's title.
    void setName(const CMPath &path, const QString &name) { m_names.insert(path.base(), name); }
    /// That name between quotation marks; the path where it has none.
    QString nameOf(const CMPath &path) const;
    /// The media server "My NAS".
    QString serverNameOf(const CMPath &path) const;

    /// A rows request sent off, for rowsOf(); `last` is inclusive.
    static CMReply<OrkaRowsRoles> askRows(
        const CMPath &path, int first, int last, const QStringList &roles);
    /// The answer to a request from askRows(). `doing` is what a terminal shows meanwhile.
    OrkaRowsRoles rowsOf(
        const CMReply<OrkaRowsRoles> &reply, const CMPath &path, int first, const QString &doing);
    OrkaRowsRoles rows(const CMPath &path, int first, int last, const QStringList &roles);
    /// The record made of the values that came for `roles`.
    OrkaRoles data(const CMPath &path, const QStringList &roles);
    /// `doing` is what a terminal shows meanwhile.
    QVariant set(const CMPath &path, const QVariant &value, const QString &doing);

    /// The next request has the whole --timeout, whatever those before it came to.
    void renewTime() { m_failed = false; }
    /// Whether there is any for another try, behind one that came to nothing.
    bool hasTimeLeft() const;

    /// Asks the media service about a node of which an answer tells nothing, though it should, like
    /// a playlist without tracks. Throws Failure that says what is the matter; returns where the
    /// node answers, or its server has nothing there.
    void requireAnswerOf(const CMPath &path);
    /// The same where nothing answers in time; a node that is refused may be asked otherwise.
    void requireSignOfLifeOf(const CMPath &path);
    /// Whether the media service gives the row at `position` of a folder within a second.
    bool givesRow(const CMPath &path, int position);
    /// Of a node whose media server answers otherwise.
    Failure silenceOf(const CMPath &path) const;

private:
    void mount();
    void await(const CMVoidReply &reply, const CMPath &path, const QString &doing);
    /// Throws Failure for an error answer; returns how many rows the node has where all that it
    /// means is that there is none at `position`.
    int explain(const CMError &error, const CMPath &path, int position);
    void requireNoError(const CMError &error, const CMPath &path);
    Diagnosis diagnoseRow(const CMPath &path, int position) const;
    Patient patient(const CMPath &path) const;
    std::chrono::milliseconds remaining() const;

    const GlobalOptions m_options;
    Errors m_errors = Explained;
    /// Since the last answer that was no error.
    QElapsedTimer m_silence;
    bool m_failed = false;
    QElapsedTimer m_asked;
    QHash<QString, QString> m_names;
    NetworkPublisher m_network;
    std::unique_ptr<ServiceStarter> m_mediaService;
    std::unique_ptr<CMSyncWorker> m_worker;
};

/// The record that `values`, one per role, stand for; what the node lacks is left out.
OrkaRoles recordOf(const QStringList &roles, const QVariantList &values);
