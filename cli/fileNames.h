// SPDX-License-Identifier: MIT
#pragma once

#include "cli/commandLine.h"
#include "platform/host/fileDescriptor.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sonarin {

/// A file to read or, with a problem, a name behind which no file could be looked for: one line in English
/// without a full stop.
struct FileName {
    std::string path; ///< bytes
    std::string problem;
};

/// Names that end with a zero byte each, as `find -print0` writes them; the last one need not. However many
/// and however long they are, a few hundred KiB of them are held.
class NameList {
public:
    /// "-" is standard input.
    explicit NameList(std::string list);

    [[nodiscard]] std::optional<FileName> next();
    /// Which part of the list was handed out, 0 to 1, where its size is known; any thread may ask.
    [[nodiscard]] std::optional<double> share() const;

private:
    bool fill();

    std::string list_;
    FileDescriptor file_;
    std::string buffer_;
    std::size_t start_ = 0; ///< of what the buffer still holds
    std::uint64_t size_ = 0;
    std::atomic<std::uint64_t> taken_ = 0; ///< bytes, up to the end of the last name
    std::uint64_t count_ = 0;
    int error_ = 0; ///< of opening or reading, until it is told
};

/// The audio files in a folder and the folders in it, by the bytes of their names. Symbolic links to folders
/// are not followed, and "._name" beside "name" is no file of its own (AppleDouble, RFC 1740).
class FolderWalk {
public:
    /// Begins with that folder, before going on with those that were entered before it.
    void enter(const std::string& folder);
    /// Nothing at the end. A folder that cannot be read is told and passed over.
    [[nodiscard]] std::optional<FileName> next();

private:
    struct Entry {
        std::size_t start;  ///< in Listing::names, where a zero byte ends it
        unsigned char kind; ///< as in dirent
    };
    struct Listing {
        std::string folder; ///< ends with a slash
        std::string names;
        std::vector<Entry> entries;
        std::size_t at = 0;

        [[nodiscard]] const char* name(const Entry& entry) const { return names.c_str() + entry.start; }
        [[nodiscard]] bool holds(const char* name) const;
    };

    std::vector<Listing> open_; ///< from the outermost folder to the innermost
    std::optional<FileName> problem_;
};

/// The files of a call, in the order in which their facts are printed.
class FileNames {
public:
    explicit FileNames(const CommandLine& call);

    /// Nothing at the end.
    [[nodiscard]] std::optional<FileName> next();
    /// Which part of them was handed out, 0 to 1, where that is known; any thread may ask.
    [[nodiscard]] std::optional<double> share() const;

private:
    [[nodiscard]] std::optional<FileName> nextNamed();

    const CommandLine& call_;
    std::unique_ptr<NameList> list_;
    FolderWalk walk_;
    std::atomic<std::size_t> named_ = 0;
};

} // namespace sonarin
