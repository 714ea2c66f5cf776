#pragma once

#include "web/TokenTries.h"

/// Lets requests through that a page of ours, or a program of this person's, can have made: it
/// keeps out pages of other sites, names that were turned to this machine's address and, beyond
/// loopback, everybody without the token.
class RequestGuard
{
public:
    /// True; or false after it has refused the request, for what its headers say.
    bool admits(Exchange &exchange);

    /// Requests come over TLS, from other machines, and with a token, which this makes.
    void openToNetwork();
    const QByteArray &token() const { return m_token; }
    /// Answers somebody who says the token: {"token"} in the body. The browser keeps it as a
    /// cookie.
    void unlock(Exchange &exchange);

private:
    bool isOurName(const QByteArray &host) const;
    bool isFromOurPage(const Exchange &exchange) const;
    bool isRight(Exchange &exchange, const QList<QByteArray> &said);

    QByteArray m_token;
    TokenTries m_tries;
};
