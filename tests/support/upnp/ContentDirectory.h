#pragma once

#include "MediaTree.h"
#include "ServerBehaviour.h"
#include "Soap.h"

/// Answers one ContentDirectory call as the behaviour wants it; the SOAP body
/// of an answer or of a fault. `base` is the address the request came to.
struct SoapAnswer
{
    QByteArray body;
    bool fault = false;
};

SoapAnswer answerCall(const SoapCall &call, const MediaTree &tree, const ServerBehaviour &behaviour,
    const QString &base);
