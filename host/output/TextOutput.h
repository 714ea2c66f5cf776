#pragma once

#include "tree/RowsReader.h"

#include <api/core/OrkaPlayListItem.h>

#include <QStringList>
#include <QVector>

/// What people read. Every text from outside is made safe for the terminal first.

/// Lines in which columns stand below each other; a cell wider than 40 columns pushes the rest of
/// its line to the right instead of being cut.
class Table
{
public:
    explicit Table(const QStringList &heading);
    void add(const QStringList &cells);
    void write() const;

private:
    QVector<QStringList> m_lines;
};

/// "3:05", "1:02:03"; empty for nothing.
QString lengthText(long long milliseconds);

/// The rows with number, kind, title, artist, album and length, then what part of the whole they
/// are. The number of the i-th row is `first` + i × `step`.
void writeRows(const Rows &rows, int first, int step = 1);

/// Every role on a line of its own, records indented below their name.
void writeRoles(const OrkaHash &roles);

/// Any value: a text as it is, records and lists as lines.
void writeValue(const QVariant &value);

/// Number, title, artist, album and length of each item, then the total length.
void writeQueue(const QVector<OrkaPlayListItem> &items);
