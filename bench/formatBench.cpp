// SPDX-License-Identifier: MIT
#include "bench/benchFiles.h"
#include "bench/printFiles.h"
#include "tools/sampleBytes.h"

namespace {

using namespace sonarin::bench;
using namespace sonarin::sample;

std::string repeated(const std::string& piece, std::size_t count) {
    std::string all;
    all.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        all += piece;
    }
    return all;
}

const bool registered = [] {
    benchmark::RegisterBenchmark("wave-40MB/5000000-empty-chunks", [](benchmark::State& state) {
        printFiles(state, {makeFile("chunks.wav", riffForm(repeated(riffChunk("junk", ""), 5000000), 0))});
    });
    benchmark::RegisterBenchmark("m4a-13MB/500000-items", [](benchmark::State& state) {
        const std::string items = repeated(item("\xA9nam", "ab"), 500000);
        printFiles(state, {makeFile("items.m4a", fileTypeAtom() + movieAtom(items))});
    });
    return true;
}();

} // namespace
