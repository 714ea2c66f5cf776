#pragma once

#include "Dice.h"
#include "FakeMediaService.h"
#include "LogProbe.h"
#include "ReplyProbe.h"

#include <api/core/CMSyncWorker.h>

#include <QThread>

#include <thread>
#include <vector>

/// One round of the campaign: a worker is made on a thread of its own and asked from several
/// threads while the media service, its servers and the network misbehave; then it is brought to
/// rest, or destroyed in the middle. What breaks a promise is in `failures`.
class Round
{
public:
    Round(quint64 seed, FakeMediaService &service);
    ~Round();
    void run();

    QStringList failures;
    int requests() const { return int(m_asked.size()); }

private:
    using Send = std::function<void()>;
    /// A request as the host sees it, and what `ReplyProbe::outcome()` says of it.
    struct Asked
    {
        QString text;
        /// Of a preparation that names nothing preparable; of any other, an answer.
        QString wanted;
        std::function<QString()> outcome;
        bool isSettled() const;
    };

    void onWorkersThread(const std::function<void()> &work);
    int workLeft();
    std::vector<std::thread> send(int requests);
    void handleEvents(bool wait);
    bool isAtRest();
    void comeToRest();
    void lookAfterwards();

    // Round_requests.cpp: for nodes that are there, that were, and that never were
    template<typename T>
    CMReply<T> enter(const QString &text, const QString &wanted = QString());
    Send randomRequest();
    Send askRows();
    Send askSet();
    CMPath randomPath();

    // Round_faults.cpp
    void furnish();
    void takeRules();
    FakeReply answer(const FakeCall &call);
    QVariantMap strangeObject();
    void disturb();
    void revive();

    Dice m_dice;
    FakeMediaService &m_service;
    LogProbe m_log;
    QThread m_thread;
    QObject m_context;
    std::unique_ptr<CMSyncWorker> m_worker;
    std::vector<Asked> m_asked;
    /// Encoded paths without their prefix: servers and objects of the service's tree.
    QStringList m_nodes;
    /// How many calls of a hundred get a faulty answer.
    int m_faultRate = 0;
    bool m_isGone = false;
};
