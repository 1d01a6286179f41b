// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>

namespace sonarin {

/// What a reader does with the picture that it finds: a picture may be larger than all else that is read, and
/// who prints its size does not need its bytes.
enum class Pictures : std::uint8_t {
    load,
    find ///< sets its type and place only
};

/// How ID3 tags are read, and how long an MPEG stream lasts.
enum class TagReading : std::uint8_t {
    usual,     ///< texts by their bytes, sizes of version 2.4 as plain numbers
    byStandard ///< as the documents of each version say
};

/// What the one who reads a file and the one who waits for it share; it must outlive the reading.
struct ReadProgress {
    /// Cleared by who waits: looked at before every read of the file, all of which then fail.
    std::atomic<bool> isWanted = true;
    /// Set by who reads, as far as it is known: the file's size, and, where reading takes many reads, the
    /// byte that it has come to.
    std::atomic<std::uint64_t> size = 0;
    std::atomic<std::uint64_t> position = 0;
};

/// How a file is read.
struct ReadOptions {
    Pictures pictures = Pictures::load;
    ReadProgress* progress = nullptr; ///< null where nobody would call the reading off
    TagReading tags = TagReading::usual;
};

} // namespace sonarin
