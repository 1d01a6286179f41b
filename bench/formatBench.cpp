// SPDX-License-Identifier: MIT
#include "bench/benchFiles.h"
#include "bench/printFiles.h"
#include "tests/support/sampleBytes.h"

#include <map>

namespace {

using namespace sonarin::bench;
using namespace sonarin::sample;

constexpr std::size_t soundSize = 200000;

std::string ordinaryM4a() {
    const std::string items = item("\xA9nam", "The Title of a Song") +
                              item("\xA9"
                                   "ART",
                                   "The Artist Who Plays It") +
                              item("\xA9"
                                   "alb",
                                   "The Album It Is On") +
                              item("\xA9"
                                   "day",
                                   "1999") +
                              item("\xA9too", "An Encoder") +
                              item("\xA9"
                                   "cmt",
                                   "A comment of a few words.") +
                              item("gnre", bigEndian(18, 2)) + item("trkn", bytes("\0\0\0\3\0\14\0\0")) +
                              item("covr", "\xFF\xD8\xFF\xE0" + std::string(60000, 'j'));
    return fileTypeAtom() + movieAtom(items) + atom("mdat", std::string(soundSize, 's'));
}

std::string ordinaryWave() {
    return riffForm(formatChunk({}) + riffChunk("data", std::string(soundSize, 's')), soundSize + 36);
}

std::string ordinaryAiff() {
    const std::string common = commonChunk(2, 441000, 16, bytes("\x40\x0E\xAC\x44\0\0\0\0\0\0"), "");
    return iffForm("AIFF", common + iffChunk("SSND", std::string(soundSize, 's')), soundSize + 46);
}

std::string repeated(const std::string& piece, std::size_t count) {
    std::string all;
    all.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        all += piece;
    }
    return all;
}

void registerOrdinary(const std::string& name, const std::string& extension, std::string (*content)()) {
    benchmark::RegisterBenchmark(("file/" + name).c_str(), [=](benchmark::State& state) {
        static std::map<std::string, std::vector<std::string>> made;
        std::vector<std::string>& files = made[name];
        if (files.empty()) {
            files = makeFiles(name + extension, content(), fileCount);
        }
        printFiles(state, files);
    })->Repetitions(20);
}

const bool registered = [] {
    registerOrdinary("m4a-with-60KB-cover", ".m4a", ordinaryM4a);
    registerOrdinary("wave", ".wav", ordinaryWave);
    registerOrdinary("aiff", ".aiff", ordinaryAiff);
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
