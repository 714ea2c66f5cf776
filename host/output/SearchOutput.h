#pragma once

#include "output/TextOutput.h"
#include "tree/RowsReader.h"

#include <functional>
#include <map>

/// Prints what a search found for people: tracks as they come, then folders, then the folders in
/// which those stand whose title is there more than once.
class SearchOutput
{
public:
    /// Gives the title of the folder that a node is in, empty where it can't be known.
    using FolderOf = std::function<QString(const CMPath &)>;

    SearchOutput(int first, FolderOf folderOf);

    void add(const Rows &page);
    void end();

    /// So far.
    int rows() const { return m_rows; }
    int rowsCount() const { return m_rowsCount; }

private:
    struct Found
    {
        int number;
        CMPath path;
    };

    void writeNamesakes() const;

    const int m_first;
    const FolderOf m_folderOf;
    int m_rows = 0;
    int m_rowsCount = 0;
    int m_folders = 0;
    Table m_trackTable;
    Table m_folderTable;
    std::map<QString, QVector<Found>> m_byTitle;
};
