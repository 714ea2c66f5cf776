#pragma once

#include "output/JsonOutput.h"

#include <vector>

/// Prints a tree as it is gone through: titles indented by their depth, a slash behind a folder's,
/// or one JSON document of rows in which a folder has its own as "rows".
class TreeOutput
{
public:
    TreeOutput(bool json, const CMPath &path);

    void add(const OrkaRoles &row, int depth);
    /// `error` is why the tree isn't whole; none where it is.
    void end(const CMError &error);

private:
    void close(size_t depth);

    const bool m_json;
    const CMPath m_path;
    /// The rows of each depth that aren't closed yet.
    std::vector<QVariantList> m_open{QVariantList()};
    int m_folders = 0;
    int m_others = 0;
};
