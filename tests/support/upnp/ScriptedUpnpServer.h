#pragma once

#include "MediaTree.h"
#include "ServerBehaviour.h"
#include "Soap.h"

#include <QVector>

#include <memory>

/// A UPnP media server (MediaServer:1 with a ContentDirectory) whose contents
/// and faults a test writes. It lives in the event loop of the thread that made it, which needs
/// GLib's (Qt's is one on Linux); behaviour and contents may be changed at any time. Announces
/// itself on every network address the process sees at `start()`.
class ScriptedUpnpServer
{
public:
    explicit ScriptedUpnpServer(const QString &udn, const QString &friendlyName = "Scripted");
    ~ScriptedUpnpServer(); ///< leaves with a byebye where it is still there

    /// Opens a port and announces the server. A restart keeps the port it had. Returns an empty
    /// text, or what went wrong.
    QString start();
    /// Says byebye and closes the port.
    void leave();
    /// Closes the port without a word, as a server does that is killed or unplugged.
    void vanish();

    QString udn() const;
    quint16 port() const;

    MediaTree tree;
    ServerBehaviour behaviour;

    const QVector<SoapCall> &calls() const;
    int count(const QString &action) const;
    void forgetCalls();
    /// Requests that hang at the moment.
    int held() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
