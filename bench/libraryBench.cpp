// SPDX-License-Identifier: MIT
// What reading a library of ordinary files costs, against what no program can do without (opening each file
// and reading its first 64 KiB) and against TagLib, the fastest of the common tag libraries.
#include "bench/benchFiles.h"
#include "bench/printFiles.h"
#include "tools/sampleBytes.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <fileref.h>
#include <limits>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <tag.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace sonarin::bench;
using namespace sonarin::sample;

constexpr std::size_t soundSize = 1500000;
constexpr std::size_t mediumCover = 57000;
constexpr std::size_t largeCover = 322000;

/// Constant bit rate, frame behind frame: a reader may look for the last one.
std::string mpegFrames() {
    const std::string frame = mpegAudio(417);
    std::string sound;
    while (sound.size() < soundSize) {
        sound.append(frame);
    }
    return sound;
}

std::string cover(std::size_t size) {
    return "\xFF\xD8\xFF\xE0" + std::string(size - 4, 'j');
}

/// Version 2.4 writes sizes with seven bits a byte (ID3v2.4, section 4).
std::string frameOfVersion(char version, const std::string& id, const std::string& data) {
    std::string frame = id3Frame(id, data);
    if (version == 4) {
        for (std::size_t i = 0; i < 4; ++i) {
            frame[4 + i] = static_cast<char>((data.size() >> (7 * (3 - i))) & 0x7FU);
        }
    }
    return frame;
}

std::string mp3(char version, std::size_t coverSize) {
    std::string frames;
    const auto add = [&](const std::string& id, const std::string& data) {
        frames += frameOfVersion(version, id, data);
    };
    add("TIT2", bytes("\0The Title of a Song"));
    add("TPE1", bytes("\0The Artist Who Plays It"));
    add("TALB", bytes("\0The Album It Is On"));
    add("TRCK", bytes("\0003/12"));
    add(version == 4 ? "TDRC" : "TYER", bytes("\0001999"));
    add("TCON", bytes("\0(17)"));
    add("COMM", bytes("\0eng\0A comment of a few words.\0"));
    add("TENC", bytes("\0An Encoder"));
    add("TXXX", bytes("\0key\0value"));
    if (coverSize != 0) {
        add("APIC", bytes("\0image/jpeg\0\3\0") + cover(coverSize));
    }
    return id3Tag(frames, 1024, version) + mpegFrames();
}

std::string m4a(std::size_t coverSize) {
    using namespace std::string_literals;
    std::string items = item("\xA9nam", "The Title of a Song") +
                        item("\xA9"s + "ART", "The Artist Who Plays It") +
                        item("\xA9"s + "alb", "The Album It Is On") + item("\xA9"s + "day", "1999") +
                        item("\xA9too", "An Encoder") + item("\xA9"s + "cmt", "A comment of a few words.") +
                        item("gnre", bigEndian(18, 2)) + item("trkn", bytes("\0\0\0\3\0\14\0\0"));
    if (coverSize != 0) {
        items += item("covr", cover(coverSize));
    }
    return fileTypeAtom() + movieAtom(items) + atom("mdat", std::string(soundSize, 's'));
}

std::string wave() {
    return riffForm(formatChunk({}) + riffChunk("data", std::string(soundSize, 's')), soundSize + 36);
}

std::string aiff(std::size_t coverSize) {
    const std::string common = commonChunk(2, 441000, 16, bytes("\x40\x0E\xAC\x44\0\0\0\0\0\0"), "");
    std::string frames = id3Frame("TIT2", bytes("\0The Title of a Song"));
    if (coverSize != 0) {
        frames += id3Frame("APIC", bytes("\0image/jpeg\0\3\0") + cover(coverSize));
    }
    std::string tag = id3Tag(frames, 10);
    tag += tag.size() % 2 != 0 ? std::string(1, '\0') : "";
    return iffForm("AIFF", common + iffChunk("SSND", std::string(soundSize, 's')) + iffChunk("ID3 ", tag));
}

/// Reads each file; a way to do so.
using Reader = void (*)(const std::vector<std::string>& paths);

void readFloor(const std::vector<std::string>& paths) {
    constexpr std::size_t readSize = 65536;
    static const auto buffer = std::make_unique<char[]>(readSize); // NOLINT(*-avoid-c-arrays)
    for (const std::string& path : paths) {
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC); // NOLINT(*-vararg)
        struct stat status {};
        fstat(file, &status);
        benchmark::DoNotOptimize(pread(file, buffer.get(), readSize, 0));
        close(file);
    }
}

/// Without printing anything: that much it is ahead.
void readWithTagLib(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        const TagLib::FileRef file(path.c_str(), true, TagLib::AudioProperties::Fast);
        benchmark::DoNotOptimize(file.audioProperties()->lengthInSeconds());
        if (const TagLib::Tag* tag = file.tag()) {
            benchmark::DoNotOptimize(tag->title().to8Bit(true));
            benchmark::DoNotOptimize(tag->artist().to8Bit(true));
            benchmark::DoNotOptimize(tag->album().to8Bit(true));
            benchmark::DoNotOptimize(tag->comment().to8Bit(true));
            benchmark::DoNotOptimize(tag->genre().to8Bit(true));
            benchmark::DoNotOptimize(tag->year() + tag->track());
        }
    }
}

void printUsual(const std::vector<std::string>& paths) {
    printAsJson(paths);
}

void printByStandard(const std::vector<std::string>& paths) {
    printAsJson(paths, sonarin::TagReading::byStandard);
}

constexpr std::array<Reader, 4> readers = {readFloor, readWithTagLib, printUsual, printByStandard};

/// Files of one kind, and the best time that each reader took for them.
struct FileClass {
    const char* name;
    std::vector<std::string> paths;
    std::array<double, readers.size()> best = {};

    /// In turns forwards and backwards: what one reader leaves in the caches helps or hinders the next.
    void measure(std::size_t round) {
        for (std::size_t turn = 0; turn < readers.size(); ++turn) {
            const std::size_t i = round % 2 == 0 ? turn : readers.size() - 1 - turn;
            const auto start = std::chrono::steady_clock::now();
            readers.at(i)(paths);
            const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
            best.at(i) = best.at(i) == 0.0 ? taken.count() : std::min(best.at(i), taken.count());
        }
    }

    void print() const {
        const auto files = static_cast<double>(paths.size());
        std::printf("%-22s %5.0f %9.2f us %9.2f us %9.2f us %8.2fx %8.2f %14.2f us %8.2fx\n", name, files,
                    best[0] / files * 1e6, best[1] / files * 1e6, best[2] / files * 1e6, best[2] / best[0],
                    best[2] / best[1], best[3] / files * 1e6, best[3] / best[2]);
    }
};

/// Four hundred files: 47% without a cover, 30% with a medium one, 23% with a large one.
std::vector<FileClass> makeLibrary() {
    std::vector<FileClass> library;
    const auto add = [&](const char* name, const std::string& fileName, const std::string& content,
                         std::size_t count) {
        library.push_back({name, makeFiles(fileName, content, count)});
    };
    add("mp3 2.3", "a.mp3", mp3(3, 0), 60);
    add("mp3 2.3, 57 KB", "b.mp3", mp3(3, mediumCover), 44);
    add("mp3 2.3, 322 KB", "c.mp3", mp3(3, largeCover), 34);
    add("mp3 2.4", "d.mp3", mp3(4, 0), 60);
    add("mp3 2.4, 57 KB", "e.mp3", mp3(4, mediumCover), 44);
    add("mp3 2.4, 322 KB", "f.mp3", mp3(4, largeCover), 34);
    add("m4a", "g.m4a", m4a(0), 28);
    add("m4a, 57 KB", "h.m4a", m4a(mediumCover), 22);
    add("m4a, 322 KB", "i.m4a", m4a(largeCover), 16);
    add("wave", "j.wav", wave(), 24);
    add("aiff", "k.aiff", aiff(0), 16);
    add("aiff, 57 KB", "l.aiff", aiff(mediumCover), 10);
    add("aiff, 322 KB", "m.aiff", aiff(largeCover), 8);
    return library;
}

} // namespace

int main() {
    constexpr std::size_t rounds = 40;
    std::vector<FileClass> classes = makeLibrary();
    FileClass whole{"whole library", {}};
    for (const FileClass& one : classes) {
        whole.paths.insert(whole.paths.end(), one.paths.begin(), one.paths.end());
    }
    classes.push_back(whole);
    for (std::size_t round = 0; round < rounds; ++round) {
        for (FileClass& one : classes) {
            one.measure(round);
        }
    }
    std::printf("%-22s %5s %12s %12s %12s %9s %8s %17s %9s\n", "files", "", "floor", "TagLib", "sonarin",
                "/ floor", "/ TagLib", "by standard", "/ usual");
    for (const FileClass& one : classes) {
        one.print();
    }
    return 0;
}
