#pragma once

#include "Dice.h"
#include "Ledger.h"

#include <functional>

/// Requests of every kind for nodes that are there, that were, and that never were.
class RandomRequest
{
public:
    /// `nodes` are encoded paths without their prefix: servers and objects of the service's tree.
    RandomRequest(Dice &dice, Ledger &ledger, const QStringList &nodes)
        : m_dice(dice)
        , m_ledger(ledger)
        , m_nodes(nodes)
    {
    }

    /// Enters one in the ledger and returns what sends it, from any thread.
    std::function<void()> make();

private:
    std::function<void()> rows();
    std::function<void()> data();
    std::function<void()> searchText();
    std::function<void()> prepare();
    std::function<void()> prepareNothing();
    CMPath path();
    QString playable();
    QStringList roles();

    Dice &m_dice;
    Ledger &m_ledger;
    const QStringList &m_nodes;
};
