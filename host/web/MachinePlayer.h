#pragma once

#include "web/CarriedAddresses.h"
#include "web/EventStreams.h"
#include "web/HttpServer.h"
#include "web/Mpv.h"

#include <QVariantList>

/// /api/player: plays on this machine, with mpv. What plays is published as the event "player", so
/// that every page shows it; a page may be closed and the music goes on.
class MachinePlayer : public QObject
{
    Q_OBJECT

public:
    MachinePlayer(const CarriedAddresses &carried, EventStreams &events, HttpServer &server);

private:
    void command(const ExchangePointer &exchange);
    void play(const QVariantList &items, int position);
    /// Changes what comes before and after the track that plays.
    void requeue(const QVariantList &items, int position);
    void checkCarried(const QVariantList &items) const;
    void load(int position);
    void stop();
    void lose(const QString &sentence);
    void hear(const QJsonObject &event);
    void fileEnded(const QString &reason);
    void publish();

    const CarriedAddresses &m_carried;
    EventStreams &m_events;
    std::unique_ptr<Mpv> m_mpv;
    QVariantList m_items;
    int m_position = -1;
    int m_failures = 0;
    double m_time = 0;
    double m_duration = 0;
    double m_volume = 100;
    bool m_isPaused = true;
    QString m_message;
};
