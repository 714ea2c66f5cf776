#pragma once

#include "MediaTree.h"
#include "ServerBehaviour.h"
#include "Soap.h"

#include <QVector>

#include <functional>
#include <memory>

/// A UPnP media server (MediaServer:1 with ContentDirectory and ConnectionManager) whose contents
/// and faults a test writes. It lives in the event loop of the thread that made it, which needs
/// GLib's (Qt's is one on Linux); behaviour and contents may be changed at any time. Announces
/// itself on every network address the process sees at `start()`.
class ScriptedUpnpServer
{
public:
    explicit ScriptedUpnpServer(
        const QString &udn, const QString &friendlyName = QStringLiteral("Scripted"));
    ~ScriptedUpnpServer(); ///< leaves with a byebye where it is still there

    /// Opens a port and announces the server. A port of 0 is any free one; a restart keeps the port
    /// it had. Returns an empty text, or what went wrong.
    QString start(quint16 port = 0);
    /// Says byebye and closes the port.
    void leave();
    /// Closes the port without a word, as a server does that is killed or unplugged.
    void vanish();
    /// Announces only on these interfaces; to be called before `start()`. Empty: on all.
    void announceOn(const QStringList &interfaces);

    QString udn() const;
    quint16 port() const;

    MediaTree tree;
    ServerBehaviour behaviour;

    const QVector<SoapCall> &calls() const;
    int count(const QString &action) const;
    void forgetCalls();
    /// Requests that hang at the moment.
    int held() const;
    /// Called for every SOAP call before it is answered.
    void onCall(std::function<void(const SoapCall &)> listener);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
