#pragma once

#include <deque>
#include <map>
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
        auto turn = m_waiting.upper_bound(m_lastServed);
        if (turn == m_waiting.end())
            turn = m_waiting.begin();
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
