#pragma once

#include "MediaTree.h"
#include "ServerBehaviour.h"
#include "Soap.h"

#include <QVector>

#include <memory>
#include <vector>

class Announcer;
struct HeldRequest;
struct _SoupServer;
struct _SoupServerMessage;

/// A UPnP media server (MediaServer:1 with a ContentDirectory) whose contents
/// and faults a test writes. It lives in the event loop of the thread that made it, which needs
/// GLib's (Qt's is one on Linux); behaviour and contents may be changed at any time. Announces
/// itself on every network address the process sees at `start()`.
class ScriptedUpnpServer
{
public:
    explicit ScriptedUpnpServer(const QString &udn, const QString &friendlyName = "Scripted");
    ~ScriptedUpnpServer(); ///< leaves with a byebye where it is still there
    ScriptedUpnpServer(const ScriptedUpnpServer &) = delete;
    ScriptedUpnpServer &operator=(const ScriptedUpnpServer &) = delete;

    /// Opens a port and announces the server. A restart keeps the port it had. Returns an empty
    /// text, or what went wrong.
    QString start();
    /// Says byebye and closes the port.
    void leave();
    /// Closes the port without a word, as a server does that is killed or unplugged.
    void vanish();

    QString udn() const { return m_udn; }
    quint16 port() const { return m_port; }

    MediaTree tree;
    ServerBehaviour behaviour;

    const QVector<SoapCall> &calls() const { return m_calls; }
    void forgetCalls() { m_calls.clear(); }
    int count(const QString &action) const;
    /// Requests that hang at the moment.
    int held() const { return int(m_held.size()); }

private:
    void close();
    void handle(_SoupServerMessage *message, const QString &path);
    void handleControl(_SoupServerMessage *message);
    void reply(_SoupServerMessage *message, const QString &action, const QByteArray &body,
        unsigned status, int delay);
    void hold(_SoupServerMessage *message, const QByteArray &body, unsigned status, int delay);
    void release(HeldRequest *request);

    QString m_udn, m_friendlyName;
    quint16 m_port = 0;
    _SoupServer *m_http = nullptr;
    std::unique_ptr<Announcer> m_announcer;
    QVector<SoapCall> m_calls;
    std::vector<std::unique_ptr<HeldRequest>> m_held;
};
