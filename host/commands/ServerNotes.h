#pragma once

#include "chain/SignsOfLife.h"

#include <api/core/CMError.h>
#include <api/core/CMPath.h>

class ServerList;
class Session;
struct NetworkReport;

/// Sentences about the servers that a list of all lacks: those named that can't be reached, those
/// of which the media service doesn't tell all; that none can be reached without a network.
QStringList lackingServers(
    const Session &session, ServerList &servers, const NetworkReport &report);

/// What a list of the media servers doesn't say by itself: who should be in it and isn't, and who
/// is and can't be reached. Of any other node there is nothing to say.
class ServerNotes
{
public:
    /// Of a list of the rows at `path`. Asks the servers that are there for a sign of life, beside
    /// whatever comes next.
    ServerNotes(Session &session, const CMPath &path);
    ~ServerNotes();

    /// Once the list is read: that a server of it is missing, or none can be reached, for programs.
    CMError lacking();
    /// Tells people, once the list is printed. Returns the status: AnsweredWithError where it lacks
    /// something.
    int tell();

private:
    Session &m_session;
    std::unique_ptr<SignsOfLife> m_signs;
    std::unique_ptr<ServerList> m_servers;
    QStringList m_lacking;
    QStringList m_others;
};
