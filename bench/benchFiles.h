// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// Files made for a benchmark, in a folder that goes when the program ends.
namespace sonarin::bench {

/// The path of a file `name` with that content; written anew on every call.
std::string makeFile(const std::string& name, const std::string& content);

/// As above for large files: `fill` sets one piece of 1 MiB after the other.
std::string makeLargeFile(const std::string& name, std::size_t mebibytes,
                          const std::function<void(std::string& piece)>& fill);

/// `count` files with the same content.
std::vector<std::string> makeFiles(const std::string& name, const std::string& content, std::size_t count);

} // namespace sonarin::bench
