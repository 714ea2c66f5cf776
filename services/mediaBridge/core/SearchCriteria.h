#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bridge {

/// Criteria as they travel to a server, or why they can't.
struct Criteria
{
    /// Ready for the server; meaningless where `problem` isn't empty.
    std::string text;
    /// A sentence for the caller; empty where all is well.
    std::string problem;
    /// The problem is what this server can't do, not how the criteria are written.
    bool isBeyondServer = false;

    bool isValid() const { return problem.empty(); }
};

/// Turns a query in the service's property names into one in a server's: names and classes are
/// mapped, object paths below `serverPath` become ids, everything else, escapes included, stays as
/// it was written. An empty query asks for everything. Unknown names, paths of another server and
/// whatever GUPnP's parser rejects are problems. Not thread-safe beyond one call at a time.
Criteria searchCriteria(const std::string &query, std::string_view serverPath);

/// Turns `+Date,-DisplayName` into `+dc:date,-dc:title`. A missing sign means ascending. A name
/// that is no property's is a problem, and so is one that isn't in `sortCaps` (UPnP names as the
/// server lists them, or "*"). Where these aren't known the server itself is to judge.
Criteria sortCriteria(
    const std::string &sort, const std::optional<std::vector<std::string>> &sortCaps);

/// The service's names of what a server can search or sort by, in the server's order, without what
/// has no name here. "*" stays "*".
std::vector<std::string> capabilityNames(const std::vector<std::string> &didlNames);

/// Of a server's list of what it can search or sort by, the names that have one here, and "*", each
/// once.
std::vector<std::string> knownCapabilities(std::string_view list);

/// Splits a comma-separated list; white space around the parts and empty parts are left out, and
/// what stands behind so many parts.
std::vector<std::string> splitList(std::string_view list, size_t most = std::string_view::npos);

} // namespace bridge
