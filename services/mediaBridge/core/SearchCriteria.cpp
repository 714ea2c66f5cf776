#include "core/SearchCriteria.h"

#include "core/Glib.h"
#include "core/Limits.h"
#include "core/MediaClass.h"
#include "core/ObjectAddress.h"
#include "core/Properties.h"

#include <algorithm>
#include <libgupnp-av/gupnp-av.h>

namespace bridge {

namespace {

constexpr std::string_view space = " \t\r\n\v\f";

// GUPnP's parser descends into itself with every parenthesis and every "and".
constexpr size_t maxQueryBytes = 32768;
constexpr size_t maxNesting = 100;

size_t nestingDepth(std::string_view query)
{
    size_t depth = 0;
    size_t deepest = 0;
    for (const char c : query) {
        if (c == '(')
            deepest = std::max(deepest, ++depth);
        else if (c == ')' && depth > 0)
            --depth;
    }
    return deepest;
}

/// One pass over a query that copies it and replaces what has another name on the server.
class Rewriter
{
public:
    Rewriter(std::string_view query, std::string_view serverPath)
        : m_rest(query)
        , m_serverPath(serverPath)
    {
    }

    Criteria run()
    {
        while (m_problem.empty() && !m_rest.empty()) {
            if (m_rest.front() == '"')
                rewriteValue(takeQuoted());
            else if (isWordCharacter(m_rest.front()))
                rewriteWord(takeWhile(isWordCharacter));
            else
                m_text += takeWhile([](char c) { return c != '"' && !isWordCharacter(c); });
        }
        return {std::move(m_text), std::move(m_problem)};
    }

private:
    static bool isWordCharacter(char c)
    {
        return g_ascii_isalnum(c) || c == '@' || c == ':' || c == '_' || c == '.' || c == '-';
    }

    template<typename Predicate>
    std::string_view takeWhile(Predicate predicate)
    {
        const auto end = std::find_if_not(m_rest.begin(), m_rest.end(), predicate);
        return take(static_cast<size_t>(end - m_rest.begin()));
    }

    std::string_view take(size_t length)
    {
        const std::string_view taken = m_rest.substr(0, length);
        m_rest.remove_prefix(taken.size());
        return taken;
    }

    /// A quoted text with its quotes; without the closing one where it never comes.
    std::string_view takeQuoted()
    {
        size_t end = 1;
        while (end < m_rest.size() && m_rest[end] != '"')
            end += m_rest[end] == '\\' ? 2 : 1;
        return take(end + 1);
    }

    void rewriteWord(std::string_view word)
    {
        static constexpr std::string_view words[] = {"and", "or", "contains", "doesNotContain",
            "startsWith", "derivedfrom", "exists", "true", "false"};
        if (std::find(std::begin(words), std::end(words), word) != std::end(words)) {
            m_text += word;
            return;
        }
        m_property = findProperty(word);
        if (m_property && m_property->didlName)
            m_text += m_property->didlName;
        else
            m_problem = "There is no searchable property \"" + std::string(word) + "\".";
    }

    void rewriteValue(std::string_view quoted)
    {
        const std::string_view value =
            quoted.size() < 2 ? std::string_view() : quoted.substr(1, quoted.size() - 2);
        std::string mapped;
        if (m_property && m_property->didlName == std::string_view("upnp:class"))
            mapped = classOfMediaType(value);
        else if (m_property && m_property->signature[0] == 'o')
            mapped = objectId(value);
        m_text += mapped.empty() ? std::string(quoted) : '"' + mapped + '"';
    }

    std::string objectId(std::string_view path)
    {
        const auto address = parseObjectPath(path);
        const size_t nameStart = serverRootPath.size() + 1;
        if (!address || address->serverName != m_serverPath.substr(nameStart)) {
            m_problem =
                "\"" + std::string(path) + "\" is not the path of an object of this server.";
            return {};
        }
        std::string id;
        for (const char c : address->objectId) {
            if (c == '"' || c == '\\')
                id += '\\';
            id += c;
        }
        return id;
    }

    std::string_view m_rest;
    std::string_view m_serverPath;
    const Property *m_property = nullptr;
    std::string m_text;
    std::string m_problem;
};

/// Made once: every parser that goes leaves a few bytes behind.
GUPnPSearchCriteriaParser *parser()
{
    static GUPnPSearchCriteriaParser *const parser = [] {
        GUPnPSearchCriteriaParser *made = gupnp_search_criteria_parser_new();
        // Without a handler an expression counts as refused.
        g_signal_connect(made, "expression",
            G_CALLBACK(+[](GUPnPSearchCriteriaParser *, const char *, GUPnPSearchCriteriaOp,
                            const char *, GError **, void *) -> gboolean { return TRUE; }),
            nullptr);
        return made;
    }();
    return parser;
}

std::string parserProblem(const std::string &criteria)
{
    GError *error = nullptr;
    if (gupnp_search_criteria_parser_parse_text(parser(), criteria.c_str(), &error))
        return {};
    const std::string detail = takeMessage(error);
    return detail.empty() ? "It can't be parsed." : detail;
}

} // namespace

Criteria searchCriteria(const std::string &query, std::string_view serverPath)
{
    if (query.find_first_not_of(space) == std::string::npos)
        return {"*", {}};
    // D-Bus lets nothing else through; GUPnP's parser leaks over it.
    if (!g_utf8_validate(query.c_str(), static_cast<gssize>(query.size()), nullptr))
        return {{}, "It isn't UTF-8."};
    if (query.size() > maxQueryBytes || nestingDepth(query) > maxNesting)
        return {{}, "It is too long or nested too deeply."};
    Criteria criteria = Rewriter(query, serverPath).run();
    if (criteria.isValid())
        criteria.problem = parserProblem(criteria.text);
    return criteria;
}

Criteria sortCriteria(
    const std::string &sort, const std::optional<std::vector<std::string>> &sortCaps)
{
    const auto canSortBy = [&](std::string_view name) {
        return !sortCaps
            || std::any_of(sortCaps->begin(), sortCaps->end(),
                [&](const std::string &cap) { return cap == "*" || cap == name; });
    };
    Criteria criteria;
    if (sort.size() > limits::queryBytes) {
        criteria.problem = "A sort order of " + std::to_string(sort.size())
            + " bytes is too long: " + std::to_string(limits::queryBytes) + " are allowed.";
        return criteria;
    }
    for (const std::string &term : splitList(sort)) {
        const bool hasSign = term.front() == '+' || term.front() == '-';
        const std::string_view name = std::string_view(term).substr(hasSign ? 1 : 0);
        const Property *info = findProperty(name);
        if (!info || !info->didlName) {
            criteria.problem = "There is no property \"" + std::string(name) + "\" to sort by.";
            return criteria;
        }
        if (!canSortBy(info->didlName)) {
            criteria.problem = "The media server can't sort by \"" + std::string(name) + "\".";
            criteria.isBeyondServer = true;
            return criteria;
        }
        if (!criteria.text.empty())
            criteria.text += ',';
        criteria.text += hasSign ? term.front() : '+';
        criteria.text += info->didlName;
    }
    return criteria;
}

std::vector<std::string> capabilityNames(const std::vector<std::string> &didlNames)
{
    std::vector<std::string> names;
    for (const std::string &didlName : didlNames) {
        if (didlName == "*")
            return {"*"};
        for (const Property *info : propertiesOfDidlName(didlName))
            names.emplace_back(info->name);
    }
    return names;
}

std::vector<std::string> knownCapabilities(std::string_view list)
{
    std::vector<std::string> known;
    for (std::string &name : splitList(list, limits::capabilities)) {
        const bool isNew = std::find(known.begin(), known.end(), name) == known.end();
        if (isNew && (name == "*" || !propertiesOfDidlName(name).empty()))
            known.push_back(std::move(name));
    }
    return known;
}

std::vector<std::string> splitList(std::string_view list, size_t most)
{
    std::vector<std::string> parts;
    while (!list.empty() && parts.size() < most) {
        const size_t comma = std::min(list.find(','), list.size());
        std::string_view part = list.substr(0, comma);
        list.remove_prefix(std::min(comma + 1, list.size()));
        const size_t first = part.find_first_not_of(space);
        if (first == std::string_view::npos)
            continue;
        part = part.substr(first, part.find_last_not_of(space) - first + 1);
        parts.emplace_back(part);
    }
    return parts;
}

} // namespace bridge
