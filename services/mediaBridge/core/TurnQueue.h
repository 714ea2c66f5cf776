#pragma once

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace bridge {

/// What waits, by whom it is for: each is served in the order it came, and those who wait take
/// turns, so that nobody waits for another's thousand.
template<typename T>
class TurnQueue
{
public:
    bool isEmpty() const { return m_waiting.empty(); }
    size_t size() const
    {
        size_t sum = 0;
        for (const auto &[whose, items] : m_waiting)
            sum += items.size();
        return sum;
    }
    bool holdsFor(const std::string &whose) const { return m_waiting.count(whose) != 0; }
    void push(const std::string &whose, T item) { m_waiting[whose].push_back(std::move(item)); }
    /// Before what waits for the same.
    void pushFirst(const std::string &whose, T item)
    {
        m_waiting[whose].push_front(std::move(item));
    }
    void drop(const std::string &whose) { m_waiting.erase(whose); }
    /// The oldest of whose turn it is. Not to be called where it is empty.
    T pop()
    {
        return *popWhere([](const std::string &) { return true; });
    }
    /// The same among those whose name `may` accepts. Nothing where it accepts none.
    template<typename May>
    std::optional<T> popWhere(const May &may)
    {
        auto turn = m_waiting.upper_bound(m_lastServed);
        for (size_t looked = 0;; ++turn, ++looked) {
            if (looked == m_waiting.size())
                return {};
            if (turn == m_waiting.end())
                turn = m_waiting.begin();
            if (may(turn->first))
                break;
        }
        m_lastServed = turn->first;
        T item = std::move(turn->second.front());
        turn->second.pop_front();
        if (turn->second.empty())
            m_waiting.erase(turn);
        return item;
    }

private:
    std::map<std::string, std::deque<T>> m_waiting;
    /// The next in the order of names comes next.
    std::string m_lastServed;
};

} // namespace bridge
