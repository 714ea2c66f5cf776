#include "PrettyFunction.h"

FunctionName parsePrettyFunction(const char *prettyFunction)
{
    std::string text = prettyFunction ? prettyFunction : "";
    // What GCC and Clang write in the place of an anonymous namespace's name.
    for (const std::string anonymous : {"{anonymous}::", "(anonymous namespace)::"}) {
        while (text.find(anonymous) != std::string::npos)
            text.erase(text.find(anonymous), anonymous.size());
    }
    std::string name;
    int angles = 0;
    for (const char c : text) {
        if (c == '<' || c == '>')
            angles += c == '<' ? 1 : -1;
        else if (angles <= 0 && c == '(')
            break;
        else if (c == ' ' || c == '*' || c == '&')
            name.clear();
        else if (angles <= 0)
            name += c;
    }
    const size_t colons = name.rfind("::");
    if (colons == std::string::npos)
        return {std::string(), name};
    return {name.substr(0, colons), name.substr(colons + 2)};
}
