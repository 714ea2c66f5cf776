#include "PrettyFunction.h"

#include <cctype>
#include <string_view>

namespace {
constexpr std::string_view operatorWord = "operator";
// What GCC and Clang write in the place of an anonymous namespace's name.
constexpr std::string_view anonymousNames[] = {"{anonymous}::", "(anonymous namespace)::"};

bool isIdentifier(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

// The place behind the group that opens at `at`. Inside angles a ">" within round brackets is an
// operator, not an end.
size_t skipGroup(std::string_view text, size_t at)
{
    const bool round = text[at] == '(';
    const char open = text[at], close = round ? ')' : open == '<' ? '>' : ']';
    int depth = 0;
    while (at < text.size()) {
        if (!round && text[at] == '(') {
            at = skipGroup(text, at);
            continue;
        }
        depth += text[at] == open ? 1 : text[at] == close ? -1 : 0;
        ++at;
        if (depth == 0)
            break;
    }
    return at;
}

size_t anonymousNameAt(std::string_view text, size_t at)
{
    for (const std::string_view name : anonymousNames) {
        if (text.substr(at, name.size()) == name)
            return name.size();
    }
    return 0;
}

// Whether the word "operator" begins at `at`, alone.
bool isOperatorAt(std::string_view text, size_t at)
{
    const size_t end = at + operatorWord.size();
    return text.substr(at, operatorWord.size()) == operatorWord
        && (at == 0 || !isIdentifier(text[at - 1])) && end < text.size()
        && !isIdentifier(text[end]);
}

std::string_view operatorName(std::string_view text, size_t at)
{
    const size_t afterWord = at + operatorWord.size();
    const bool isCall = text.substr(afterWord, 2) == "()";
    const size_t end = text.find('(', afterWord + (isCall ? 2 : 0));
    return text.substr(at, end == std::string_view::npos ? end : end - at);
}

FunctionName split(const std::string &name)
{
    const size_t colons = name.rfind("::");
    if (colons == std::string::npos)
        return {std::string(), name};
    return {name.substr(0, colons), name.substr(colons + 2)};
}

FunctionName operatorOf(const std::string &prefix, std::string_view name)
{
    const size_t colons = prefix.rfind("::");
    return {
        colons == std::string::npos ? std::string() : prefix.substr(0, colons), std::string(name)};
}
} // namespace

FunctionName parsePrettyFunction(const char *prettyFunction)
{
    const std::string_view text = prettyFunction ? prettyFunction : "";
    std::string name;
    for (size_t at = 0; at < text.size();) {
        const char c = text[at];
        if (const size_t length = anonymousNameAt(text, at)) {
            at += length;
        } else if (isOperatorAt(text, at)) {
            return operatorOf(name, operatorName(text, at));
        } else if (c == '(' && !name.empty() && name != "decltype") {
            break;
        } else if (c == '(' && at + 1 < text.size() && text[at + 1] == '*') {
            ++at; // the name of a function that returns a function pointer stands inside
        } else if (c == '(' || c == '<' || c == '[') {
            at = skipGroup(text, at);
        } else {
            if (c == ' ' || c == '*' || c == '&') {
                name.clear();
            } else {
                name += c;
            }
            ++at;
        }
    }
    return split(name);
}
