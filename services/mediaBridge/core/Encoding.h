#pragma once

#include <string>
#include <string_view>

namespace bridge {

/// An XML document in UTF-8. It is read as it begins (UTF-16, a byte order mark), else in
/// `charset`, as which it was sent, else in the encoding that it declares. What isn't known stays
/// as it is; what isn't in its encoding becomes "�".
std::string decoded(std::string text, std::string_view charset);

} // namespace bridge
