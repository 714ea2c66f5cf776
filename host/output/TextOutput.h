#pragma once

#include "output/Terminal.h"

#include <api/core/OrkaRoles.h>

#include <QStringList>
#include <QVector>

/// What people read. Every text from outside is made safe for the terminal first.

/// Lines in which columns stand below each other, as wide as the first lines need. On a terminal a
/// line is at most as wide as that: what doesn't fit is shortened in the middle. Elsewhere nothing
/// is cut: a cell wider than its column, or than 40, pushes the rest of its line to the right.
class Table
{
public:
    /// Columns that are made narrower where the terminal is too narrow, by number, the least useful
    /// first.
    Table(const QStringList &heading, const QVector<int> &leastUseful);
    /// `isStrong`: the line stands out where there are colours.
    void add(const QStringList &cells, bool isStrong = false);
    /// Writes the lines that are there, if they are enough to know the columns' widths by; numbers
    /// in the first column may become `firstColumn` digits long.
    void flush(int firstColumn);
    /// Writes the lines that are there, the heading alone too.
    void write();

private:
    struct Line
    {
        QStringList cells;
        Terminal::Style style;
    };

    void measure();
    /// Takes `tooWide` from the least useful columns, of which each keeps `least`; gives what is
    /// still too much.
    int narrow(int tooWide, int least);
    QString textOf(const Line &line) const;

    QVector<Line> m_lines;
    QVector<int> m_leastUseful;
    /// Empty until lines have been written.
    QVector<int> m_widths;
    int m_least = 0;
    /// What the first lines leave of the terminal's width.
    int m_spare = 0;
    /// The terminal's; 0 for none.
    int m_columns;
};

/// "folder", "track" and so on, of an OrkaRolesType.
QString kindName(int type);

/// "3:05", "1:02:03"; empty for nothing.
QString lengthText(long long milliseconds);

/// The day, with the time where it isn't midnight; empty for 0, which a worker makes of what is no
/// date.
QString dateText(long long milliseconds);

/// "20 of 1200 rows."; a server that doesn't know how many there are says 0.
QString rowsOfAll(int rows, int count);

/// Every role on a line of its own, records indented below their name.
void writeRoles(const OrkaHash &roles);

/// Any value: a text as it is, records and lists as lines.
void writeValue(const QVariant &value);
