#pragma once

#include <QStringList>
#include <QVariantMap>

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
    int below(int bound) { return int(m_engine() % quint64(bound)); }
    bool chance(int percent) { return below(100) < percent; }
    /// A text that breaks what isn't careful.
    QString text();
    /// A value of any type that D-Bus can carry.
    QVariant value(int depth = 2);

    template<typename List>
    auto pick(const List &list) -> typename List::value_type
    {
        return list.at(below(int(list.size())));
    }

private:
    std::mt19937_64 m_engine;
};
