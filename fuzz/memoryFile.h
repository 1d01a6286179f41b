// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "text/SvxString.h"

#include <cstddef>
#include <cstdint>

namespace sonarin {

/// A file that lives in memory alone, since a fuzz target reads thousands a second.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* bytes, std::size_t size);
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile();

    /// A path under which it can be opened; its name says nothing about its type.
    [[nodiscard]] SvxStringRef path() const;

private:
    int descriptor_;
};

/// What the programs do at their start; once.
void startUp();

/// Writes the record as JSON to nowhere, so that everything in it is looked at.
void printRecord(const SvxStringRef& path, audioTags&& record);

/// Runs one reader on the bytes as a file, with tags read in both ways, and prints what it read. Answers what
/// a fuzz target does.
using Reader = void (*)(const SvxStringRef& path, audioTags* record, const ReadOptions& options);
int fuzzReader(const std::uint8_t* bytes, std::size_t size, Reader read);

} // namespace sonarin
