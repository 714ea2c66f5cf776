#pragma once

#include "output/JsonOutput.h"
#include "output/TextOutput.h"
#include "tree/RowsReader.h"

#include <memory>

/// Prints the rows of a node as they come: as a table with number, kind, title, artist, album and
/// length, and what part of the whole they are, or as one JSON document. What is printed is not
/// kept. Throws Failure where it can't be written.
class RowsOutput
{
public:
    /// The number of the i-th row is `first` + i × `step`. `isLong`: the table tells genre, date,
    /// format, bit rate and path, too.
    RowsOutput(bool json, const CMPath &path, int first, int step = 1, bool isLong = false);

    void add(const Rows &page);
    /// `error` is why the rows aren't all; none where they are. `ofOtherKinds` counts those that
    /// were left out on purpose.
    void end(const CMError &error = CMError(), int ofOtherKinds = 0);

    /// So far.
    int rows() const { return m_rows; }
    int rowsCount() const { return m_rowsCount; }

private:
    void addToTable(const OrkaRoles &row, int number);
    QString whatPart(int ofOtherKinds) const;

    const bool m_json;
    const CMPath m_path;
    const int m_first;
    const int m_step;
    const bool m_isLong;
    int m_rows = 0;
    int m_rowsCount = 0;
    Table m_table;
    std::unique_ptr<JsonListDocument> m_document;
};
