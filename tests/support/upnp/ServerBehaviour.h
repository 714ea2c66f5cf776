#pragma once

#include "Text.h"

#include <QMap>
#include <QStringList>

/// How a scripted server misbehaves. The default is a correct server that can search. Actions are
/// named as in SOAP
/// ("Browse", "Search", "GetSearchCapabilities" …); "description" is the fetch of the device
/// description.
struct ServerBehaviour
{
    /// What an answer without objects carries as its Result.
    enum EmptyResult {
        EmptyDidl, ///< a DIDL-Lite element without children
        NoResult, ///< an empty text
        EmptyWrapped, ///< a DIDL-Lite element of white space and a comment
        Uncounted, ///< without any number
    };

    /// What an answer says of how many there are.
    enum Total {
        Counted,
        Zero, ///< it can't count them
        Five,
        OneMore, ///< than have been sent
        Sent ///< only those that have been
    };

    bool beginsAnew = false; ///< behind its end, with the first page
    quint32 pageCap = 0; ///< objects in one answer at most, 0: no cap
    Total total = Counted;
    quint32 overlap = 0; ///< pages but the first begin so many rows too early
    EmptyResult emptyResult = EmptyDidl;
    bool xmlDeclaration = false; ///< the Result begins with an XML declaration
    bool cutResult = false; ///< the Result ends in the middle
    bool bareAmpersands = false; ///< description and Result have every "&" as it is
    QStringList hang; ///< actions that never get an answer
    QStringList drop; ///< actions whose connection is closed without an answer
    bool dropKept = false; ///< a connection takes one request; the next on it is dropped
    QMap<QString, int> fail; ///< actions that are refused with this UPnP error code
    quint32 refuseCountFrom = 0; ///< a RequestedCount from here on is refused (402), 0: none
    int delay = 0; ///< milliseconds before every answer
    int delayPerRow = 0; ///< more milliseconds for each row asked for
    QString searchCaps = "dc:title,upnp:artist,upnp:album,upnp:class,@id,@parentID";
    QString sortCaps = "dc:title";
};
