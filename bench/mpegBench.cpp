// SPDX-License-Identifier: MIT
#include "bench/benchFiles.h"
#include "bench/printFiles.h"
#include "tools/sampleBytes.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace sonarin;
using namespace sonarin::bench;
using namespace sonarin::sample;

constexpr std::size_t readSize = 65536;
void readThrough(benchmark::State& state, const std::string& path) {
    const auto buffer = std::make_unique<char[]>(readSize);
    for (auto unused : state) {
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        while (read(file, buffer.get(), readSize) > 0) {
        }
        close(file);
    }
}

/// 1 GiB without an acceptable frame header.
std::string headerlessFile(const std::string& kind) {
    std::mt19937_64 random(1);
    return makeLargeFile(kind + ".mp3", 1024, [&](std::string& piece) {
        if (kind != "random") {
            piece.assign(piece.size(), kind == "zero" ? '\0' : '\xFF');
            return;
        }
        for (std::size_t i = 0; i < piece.size(); ++i) {
            piece[i] = static_cast<char>(random() >> 56U);
            if (i > 0 && piece[i - 1] == '\xFF' && static_cast<unsigned char>(piece[i]) >= 0xE0) {
                piece[i] = static_cast<char>(piece[i] & 0x1F); // no frame sync anywhere
            }
        }
        piece.front() = '\0';
    });
}

std::string joinedFramesFile() {
    std::string frames;
    const std::string frame = textFrame("TPE1", std::string(85, 'a'));
    for (int i = 0; i < 670000; ++i) {
        frames += frame;
    }
    return id3Tag(frames, 0) + mpegAudio(2000);
}

std::string longFrameFile(const std::string& id, const std::string& start, std::size_t size) {
    return id3Tag(id3Frame(id, start + std::string(size, 'y')), 16) + mpegAudio(2000);
}

void startProgram(benchmark::State& state, const std::string& command) {
    for (auto unused : state) {
        benchmark::DoNotOptimize(std::system(command.c_str()));
    }
}

void registerLargeOnes() {
    for (const std::string kind : {"zero", "ff", "random"}) {
        const std::string group = "search-1GiB-" + kind;
        benchmark::RegisterBenchmark((group + "/floor").c_str(), [kind](benchmark::State& state) {
            readThrough(state, headerlessFile(kind));
        });
        benchmark::RegisterBenchmark((group + "/search").c_str(), [kind](benchmark::State& state) {
            printFiles(state, {headerlessFile(kind)});
        });
    }
    benchmark::RegisterBenchmark("tag-64MB/670000-joined-frames", [](benchmark::State& state) {
        printFiles(state, {makeFile("joined.mp3", joinedFramesFile())});
    });
    benchmark::RegisterBenchmark("frame-200MB/lyrics", [](benchmark::State& state) {
        printFiles(state, {makeFile("lyrics.mp3", longFrameFile("USLT", bytes("\0eng\0"), 200000000))});
    });
    benchmark::RegisterBenchmark("frame-200MB/picture", [](benchmark::State& state) {
        printFiles(state,
                   {makeFile("picture.mp3", longFrameFile("APIC", bytes("\0image/png\0\3\0"), 200000000))});
    });
}

const bool registered = [] {
    benchmark::RegisterBenchmark("start/sonarin-info-json", [](benchmark::State& state) {
        startProgram(
            state, SONARIN_INFO " --json " +
                       makeFile("small.mp3", id3Tag(id3Frame("TIT2", bytes("\0A Title"))) + mpegAudio(2000)) +
                       " > /dev/null");
    });
    benchmark::RegisterBenchmark("start/floor",
                                 [](benchmark::State& state) { startProgram(state, "/bin/true"); });
    registerLargeOnes();
    return true;
}();

} // namespace
