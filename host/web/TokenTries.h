#pragma once

#include "web/Exchange.h"

#include <QHash>
#include <QSet>

/// Who has said which wrong tokens: ten different ones a minute are all that one address has; of
/// IPv6, one network. What others do costs nobody a try.
class TokenTries
{
public:
    /// Whether this client has had its tries; it is refused whatever it says.
    bool areUsedUp(const Exchange &exchange) const;
    void note(const Exchange &exchange, const QByteArray &wrong);

private:
    struct Tries
    {
        qint64 since = 0;
        /// A page that was left open says its old one again and again, which is one.
        QSet<QByteArray> tokens = {};
    };

    void makeRoom();

    QHash<QByteArray, Tries> m_tries;
};
