#pragma once

/// How many rows to ask a media server for at a time: few at first, then as many as it answers in a
/// few seconds. Media services give a slow server up after a while, and with it a whole page.
class PageSize
{
public:
    static constexpr int first = 100;
    /// Bounds what a page takes in memory.
    static constexpr int largest = 2000;

    explicit PageSize(int rows = first)
        : m_rows(rows)
    {
    }

    int rows() const { return m_rows; }
    /// An answer of `rows` rows took so long.
    void took(int rows, long long milliseconds);
    /// Makes smaller pages after one that failed. False where they have the least size already, or
    /// nothing has ever come.
    bool shrink();

private:
    int m_rows;
    int m_limit = largest;
    bool m_answered = false;
};
