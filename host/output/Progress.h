#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QTimer>

/// One line on a terminal that says what is being done, for how long, and how to stop it; shown
/// after the first second and taken away when this is destroyed. Nothing where standard error is
/// no terminal or `doing` is empty.
class Progress
{
public:
    explicit Progress(const QString &doing);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// The whole program's work began now; the line counts from here.
    static void startClock();

private:
    void show();

    QString m_doing;
    QTimer m_timer;
    bool m_shown = false;
};
