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

    /// What is being done from now on.
    void setDoing(const QString &doing);
    /// Takes the line away, if one is there, for what is to be printed; it is back within half a
    /// second.
    static void hide();

    /// The whole program's work began now; the line counts from here.
    static void startClock();

private:
    void show();

    QString m_doing;
    QTimer m_timer;
};
