#pragma once

#include "chain/ChildProcess.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QSocketNotifier>
#include <QTimer>

#include <memory>

/// A running mpv without a window, told what to do over one half of a socket pair.
class Mpv : public QObject
{
    Q_OBJECT

public:
    /// Whether this machine has one.
    static bool isInstalled();

    explicit Mpv(QObject *parent = nullptr);
    ~Mpv() override;

    void send(const QJsonArray &command);

signals:
    void said(const QJsonObject &event);
    void ended();
    /// It runs, and has answered nothing for some seconds.
    void silent();

private:
    void read();

    ChildProcess m_process;
    std::unique_ptr<QSocketNotifier> m_notifier;
    int m_socket = -1;
    QByteArray m_unread;
    /// Asks it something, so that there is an answer to wait for.
    QTimer m_pulse;
    QTimer m_patience;
};
