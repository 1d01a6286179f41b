// SPDX-License-Identifier: MIT
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <vector>

namespace sonarin::bench {

/// How many files a benchmark of small files reads in one iteration.
inline constexpr std::size_t fileCount = 1000;

/// Reads the files and prints them as JSON to nowhere, as sonarin-info does.
void printFiles(benchmark::State& state, const std::vector<std::string>& paths);

} // namespace sonarin::bench
