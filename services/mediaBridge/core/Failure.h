#pragma once

#include "MediaServiceNames.h"

#include <string>

namespace bridge {

namespace errors = mediaService::errors;

/// Why a call failed: a D-Bus error name and a sentence for people.
struct Failure
{
    std::string name;
    std::string text;
};

} // namespace bridge
