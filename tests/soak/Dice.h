#pragma once

#include "ArbitraryValue.h"

#include <QList>

#include <random>

/// Every choice of a round comes from one of these, so a seed replays the round.
class Dice
{
public:
    explicit Dice(quint64 seed)
        : m_engine(seed)
    {
    }

    /// From 0 to `bound`, which is at least 1, exclusive. The same on every machine.
    quint32 below(quint32 bound) { return quint32(m_engine() % bound); }
    bool chance(int percent) { return int(below(100)) < percent; }
    QString text() { return pick(hostileTexts()); }

    template<typename List>
    auto pick(const List &list) -> typename List::value_type
    {
        return list.at(int(below(quint32(list.size()))));
    }

private:
    std::mt19937_64 m_engine;
};
