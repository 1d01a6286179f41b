// SPDX-License-Identifier: MIT
#include "bench/benchFiles.h"
#include "bench/printFiles.h"
#include "tests/support/sampleBytes.h"

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
/// open + fstat + pread of 64 KiB + close.
void touch(const std::string& path, char* buffer) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    fstat(file, &status);
    benchmark::DoNotOptimize(pread(file, buffer, readSize, 0));
    close(file);
}

std::string ordinaryFrames() {
    return id3Frame("TIT2", bytes("\0The Title of a Song")) +
           id3Frame("TPE1", bytes("\0The Artist Who Plays It")) +
           id3Frame("TALB", bytes("\0The Album It Is On")) + id3Frame("TRCK", bytes("\0003/12")) +
           id3Frame("TYER", bytes("\0001999")) + id3Frame("TCON", bytes("\0(17)")) +
           id3Frame("COMM", bytes("\0eng\0A comment of a few words.\0")) +
           id3Frame("TENC", bytes("\0An Encoder")) + id3Frame("TXXX", bytes("\0key\0value"));
}

std::string ordinaryFile(std::size_t coverSize) {
    std::string frames = ordinaryFrames();
    if (coverSize != 0) {
        frames += id3Frame("APIC", bytes("\0image/jpeg\0\3\0\xFF\xD8\xFF\xE0") + std::string(coverSize, 'j'));
    }
    return id3Tag(frames, 1024) + mpegAudio(200000);
}

const std::vector<std::string>& ordinaryFiles() {
    static const auto files = makeFiles("plain.mp3", ordinaryFile(0), fileCount);
    return files;
}

void touchFiles(benchmark::State& state) {
    const auto buffer = std::make_unique<char[]>(readSize);
    for (auto unused : state) {
        for (const std::string& path : ordinaryFiles()) {
            touch(path, buffer.get());
        }
    }
    state.counters["files"] = fileCount;
}

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
    const std::string frame = id3Frame("TPE1", std::string(1, '\0') + std::string(85, 'a'));
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
    benchmark::RegisterBenchmark("file/floor", touchFiles)->Repetitions(20);
    benchmark::RegisterBenchmark("file/mp3-without-cover", [](benchmark::State& state) {
        printFiles(state, ordinaryFiles());
    })->Repetitions(20);
    benchmark::RegisterBenchmark("file/mp3-with-60KB-cover", [](benchmark::State& state) {
        static const auto files = makeFiles("cover.mp3", ordinaryFile(60000), fileCount);
        printFiles(state, files);
    })->Repetitions(20);
    benchmark::RegisterBenchmark("start/sonarin-info-json", [](benchmark::State& state) {
        startProgram(state, SONARIN_INFO " --json " + ordinaryFiles().front() + " > /dev/null");
    });
    benchmark::RegisterBenchmark("start/floor",
                                 [](benchmark::State& state) { startProgram(state, "/bin/true"); });
    registerLargeOnes();
    return true;
}();

} // namespace
