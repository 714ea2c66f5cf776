#pragma once

#include "Failure.h"

#include <QFile>
#include <QString>
#include <QVector>

#include <sys/types.h>

/// The private bus of this user, at a fixed place, for machines without a session bus. One at a
/// time: whoever starts it hands a lock on to the bus and to the bridge, so that the kernel tells
/// when neither is left, however they ended.
class UsersBus
{
public:
    /// Throws Failure (missing) where there can be none.
    UsersBus();
    ~UsersBus();
    UsersBus(const UsersBus &) = delete;
    UsersBus &operator=(const UsersBus &) = delete;

    const QString &address() const { return m_address; }
    /// Takes the lock, until this is destroyed. False where a bus or a bridge of an earlier command
    /// still runs, or one is being started.
    bool take();
    /// Its descriptor.
    int lock() const { return m_lock; }
    /// Whether something takes connections there.
    bool isListening() const;
    /// Removes the socket that a bus left which was killed. Only with the lock taken.
    void removeSocket() const { QFile::remove(m_socket); }
    /// Neither can the lock be taken, nor does whoever has it answer.
    Failure blocked() const;
    /// Processes of ours that hold the lock: the bus and the bridge, or a command that starts them.
    QVector<pid_t> holders() const;

private:
    QString m_socket;
    QString m_address;
    QString m_lockFile;
    int m_lock = -1;
};
