#pragma once

#include "Dice.h"
#include "FakeMediaService.h"
#include "Ledger.h"
#include "LogProbe.h"
#include "WorkerThread.h"

#include <QTimer>

#include <functional>
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
    // Round.cpp
    /// Sends them from several threads, which are to be joined.
    std::vector<std::thread> send(int requests);
    void handleEvents(bool wait);
    void destroyInFlight();
    bool isAtRest();
    void comeToRest();
    void lookAfterwards();

    // Round_requests.cpp: for nodes that are there, that were, and that never were
    /// Enters one in the ledger and returns what sends it, from any thread.
    std::function<void()> randomRequest();
    std::function<void()> askRows();
    std::function<void()> askData();
    std::function<void()> askSearchText();
    std::function<void()> askToPrepare();
    std::function<void()> askToPrepareNothing();
    CMPath randomPath();
    QString randomPlayable();
    QStringList randomRoles();

    // Round_answers.cpp: mostly what the tree holds, else what a correct service would never say
    FakeReply answer(const FakeCall &call);
    FakeReply wrongSignature();
    FakeReply strangeValues(const FakeCall &call);
    FakeReply hugeListing(const FakeCall &call);
    QVariantMap strangeObject();

    // Round_disturbances.cpp
    void furnish();
    void takeRules();
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

    Dice m_dice;
    FakeMediaService &m_service;
    WorkerThread &m_worker;
    Tally &m_tally;
    LogProbe m_log;
    Ledger m_ledger;
    /// Encoded paths without their prefix: servers and objects of the service's tree.
    QStringList m_nodes;
    /// How many calls of a hundred get a faulty answer.
    int m_faultRate = 0;
    QTimer m_tick;
    bool m_isFrozen = false;
    bool m_isGone = false;
};
