#pragma once

#include "web/CarriedAddresses.h"
#include "web/EventStreams.h"
#include "web/HttpServer.h"
#include "web/LiveChain.h"
#include "web/Mpv.h"

#include <QVariantList>

/// /api/player: plays on this machine, with mpv. What plays is published as the event "player", so
/// that every page shows it; a page may be closed and the music goes on. Each track's address is
/// asked for when its turn comes, since its media server may have moved meanwhile.
class MachinePlayer : public QObject
{
    Q_OBJECT

public:
    MachinePlayer(
        LiveChain &chain, CarriedAddresses &carried, EventStreams &events, HttpServer &server);

private:
    void command(const ExchangePointer &exchange);
    void play(const QVariantList &items, int position);
    /// Changes what comes before and after the track that plays.
    void requeue(const QVariantList &items, int position);
    void append(const QVariantList &items);
    bool isCarried(const QVariant &item) const;
    void check(const QVariantList &items) const;
    void load(int position);
    void loadFile(const QString &url);
    void stop();
    void lose(const QString &sentence);
    void hear(const QJsonObject &event);
    void fileEnded(const QString &reason);
    void publish();

    LiveChain &m_chain;
    CarriedAddresses &m_carried;
    EventStreams &m_events;
    std::unique_ptr<Mpv> m_mpv;
    QVariantList m_items;
    int m_position = -1;
    int m_failures = 0;
    /// How many addresses were asked for: an answer about an earlier track comes too late.
    int m_questions = 0;
    bool m_isAsking = false;
    double m_time = 0;
    double m_duration = 0;
    double m_volume = 100;
    bool m_isPaused = true;
    QString m_message;
};
