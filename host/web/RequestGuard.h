#pragma once

#include "web/Exchange.h"

#include <QStringList>

/// Lets requests through that a page of ours, or a program of this person's, can have made: it
/// keeps out pages of other sites, and names that were turned to this machine's address.
class RequestGuard
{
public:
    /// True; or false after it has refused the request.
    bool admits(Exchange &exchange) const;

    /// Requests come over TLS.
    void setSecure() { m_scheme = "https://"; }
    /// Beyond loopback any IP address may be what the client calls this machine by.
    void setBeyondLoopback() { m_isBeyondLoopback = true; }

private:
    bool isOurName(const QByteArray &host) const;
    bool isFromOurPage(const Exchange &exchange) const;

    QByteArray m_scheme = "http://";
    bool m_isBeyondLoopback = false;
};
