#pragma once

#include "chain/SignsOfLife.h"

class ServerList;
class Session;
struct NetworkReport;

/// Sentences about the servers that a list of all lacks: those named that can't be reached, those
/// of which the media service doesn't tell all; that none can be reached without a network.
QStringList lackingServers(
    const Session &session, ServerList &servers, const NetworkReport &report);

/// What a list of the media servers doesn't say by itself: who should be in it and isn't, and who
/// is and can't be reached.
class ServerNotes
{
public:
    /// Asks those that are there for a sign of life, beside whatever comes next.
    explicit ServerNotes(const Session &session);

    /// Tells people, once the list is printed. Returns the status: AnsweredWithError where a server
    /// of this list is missing, or none can be reached.
    int tell(ServerList &servers);

private:
    const Session &m_session;
    SignsOfLife m_signs;
};
