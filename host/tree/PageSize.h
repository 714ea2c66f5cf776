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
    /// Makes the next page the smallest, after one that failed, and keeps those that follow below a
    /// quarter of it. False where that was the smallest.
    bool shrink();

private:
    int m_rows;
    int m_limit = largest;
};
