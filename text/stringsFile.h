// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sonarin {

/// The entries `"key" = "text";` of a strings file in UTF-8, in file order, keys and texts in UTF-8. Comments
/// (/* … */ and //) and white space may stand anywhere between; in quotes, \n \r \t \" \\ and \Uxxxx (four
/// hexadecimal digits of a UTF-16 unit) are escapes. Reading ends before the first entry that is malformed.
[[nodiscard]] std::vector<std::pair<std::string, std::string>> parseStringsFile(std::string_view content);

} // namespace sonarin
