#pragma once

#include <QByteArray>
#include <QObject>

/// Hears from a running mpv which entry of its playlist plays, over one half of a socket pair.
class MpvWatch : public QObject
{
    Q_OBJECT

public:
    explicit MpvWatch(QObject *parent = nullptr);
    ~MpvWatch() override;

    /// The half that mpv inherits; -1 where no pair could be made.
    int playerDescriptor() const { return m_playerEnd; }
    /// Once mpv has inherited its half.
    void start();

signals:
    /// The entry's position, from 0.
    void playing(int position);

private:
    void readAll();
    void takeLine(const QByteArray &line);

    int m_ownEnd = -1;
    int m_playerEnd = -1;
    QByteArray m_unread;
};
