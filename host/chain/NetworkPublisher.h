#pragma once

#include <api/core/OrkaNetworkInfo.h>

#include <QObject>
#include <QTimer>

/// Publishes this machine's addresses in the value store at `OrkaNetworkInfoPath()`: when it is
/// made, and again half a second after the kernel has told of a change. Loopback and link-local
/// addresses are left out; IPv4 comes first.
class NetworkPublisher : public QObject
{
    Q_OBJECT

public:
    explicit NetworkPublisher(QObject *parent = nullptr);
    ~NetworkPublisher() override;

    /// The addresses as they are now.
    static OrkaNetworkInfo currentInfo();
    static QStringList currentAddresses();

private:
    void openNetlink();
    void drainNetlink() const;
    static void publish();

    int m_netlink = -1;
    QTimer m_settle;
};
