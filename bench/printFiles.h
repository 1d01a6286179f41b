// SPDX-License-Identifier: MIT
#pragma once

#include "engine/readOptions.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <vector>

namespace sonarin::bench {

/// Reads the files and prints them as JSON to nowhere, as sonarin-info does.
void printAsJson(const std::vector<std::string>& paths, TagReading tags = TagReading::usual);
void printFiles(benchmark::State& state, const std::vector<std::string>& paths);

} // namespace sonarin::bench
