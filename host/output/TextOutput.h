#pragma once

#include <api/core/OrkaRoles.h>

#include <QStringList>
#include <QVector>

/// What people read. Every text from outside is made safe for the terminal first.

/// Lines in which columns stand below each other, as wide as the first lines need; a cell wider
/// than that, or than 40 columns, pushes the rest of its line to the right instead of being cut.
class Table
{
public:
    explicit Table(const QStringList &heading);
    void add(const QStringList &cells);
    /// Writes the lines that are there, if they are enough to know the columns' widths by; numbers
    /// in the first column may become `firstColumn` digits long.
    void flush(int firstColumn);
    /// Writes the lines that are there, the heading alone too.
    void write();

private:
    QVector<QStringList> m_lines;
    /// Empty until lines have been written.
    QVector<int> m_widths;
    int m_least = 0;
};

/// "folder", "track" and so on, of an OrkaRolesType.
QString kindName(int type);

/// "3:05", "1:02:03"; empty for nothing.
QString lengthText(long long milliseconds);

/// Every role on a line of its own, records indented below their name.
void writeRoles(const OrkaHash &roles);

/// Any value: a text as it is, records and lists as lines.
void writeValue(const QVariant &value);
