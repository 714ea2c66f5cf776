#pragma once

#include <QProcess>

/// A program that we start and that never outlives us: the kernel ends it when we are gone,
/// however that came, and destroying this ends it. A service is put into a process group of its
/// own, so that Ctrl-C reaches us alone and we end it in order.
class ChildProcess : public QProcess
{
    Q_OBJECT

public:
    enum Kind { Service, Foreground };

    explicit ChildProcess(Kind kind, QObject *parent = nullptr);
    ~ChildProcess() override;

    /// Before start(): the program inherits this descriptor under its number.
    void inherit(int descriptor) { m_inherited = descriptor; }
    /// Before start(), with forwarded channels: its standard output becomes our standard error.
    void sendOutputToStderr() { m_outputToStderr = true; }

    /// Asks it to end (SIGTERM); kills it where it hasn't within `grace` milliseconds.
    void stop(int grace = 500);

protected:
    void setupChildProcess() override;

private:
    Kind m_kind;
    qint64 m_parent;
    int m_inherited = -1;
    bool m_outputToStderr = false;
};
