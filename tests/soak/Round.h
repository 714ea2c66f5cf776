#pragma once

#include "FaultyAnswers.h"
#include "Ledger.h"
#include "LogProbe.h"
#include "WorkerThread.h"

#include <QTimer>

#include <thread>
#include <vector>

/// One round of the campaign: a worker is made, asked from several threads while the media
/// service, its servers and the network misbehave, brought to rest or destroyed in the middle, and
/// looked at: every request answered once, nothing kept, nothing grown.
class Round
{
public:
    Round(quint64 seed, FakeMediaService &service, WorkerThread &worker, Tally &tally);
    void run();

private:
    void furnish();
    void takeRules();
    /// Sends them from several threads, which are to be joined.
    std::vector<std::thread> send(int requests);
    void handleEvents(bool wait);

    void disturb();
    void holdSome();
    void releaseSome();
    void freezeOrThaw();
    void kill();
    void revive();
    void replaceService();
    void announceServers();
    void announceOddities();
    void changeNetwork();

    void destroyInFlight();
    bool isAtRest();
    void comeToRest();
    void lookAfterwards();

    Dice m_dice;
    FakeMediaService &m_service;
    WorkerThread &m_worker;
    Tally &m_tally;
    FaultyAnswers m_answers;
    LogProbe m_log;
    Ledger m_ledger;
    QStringList m_nodes;
    QTimer m_tick;
    bool m_isFrozen = false;
    bool m_isGone = false;
};
