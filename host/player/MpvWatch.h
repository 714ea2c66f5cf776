#pragma once

#include <QByteArray>
#include <QObject>

/// Hears from a running mpv which address it plays, over one half of a socket pair.
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
    /// Not the position in its list, which mpv can shuffle.
    void playing(const QString &url);

private:
    void readAll();
    void takeLine(const QByteArray &line);

    int m_ownEnd = -1;
    int m_playerEnd = -1;
    QByteArray m_unread;
};
