#pragma once

#include <string>

/// The parts of a function's qualified name: `ns::Class` and `function`.
struct FunctionName
{
    std::string scope;
    std::string function;
};

/// Takes the name out of a compiler's pretty function text, of GCC or Clang. Template arguments and
/// anonymous namespaces are left out; a lambda gives the function that it is written in.
FunctionName parsePrettyFunction(const char *prettyFunction);
