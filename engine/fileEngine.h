// SPDX-License-Identifier: MIT
#pragma once

#include "text/SvxString.h"

#include <cstdint>
#include <string>
#include <string_view>

/// The file primitives of the program: paths, open, size, positioned read, close.
///
/// A path travels through the program as a text. POSIX paths are bytes that need not be valid UTF-8, so a
/// byte that is none becomes the lone surrogate U+DC00 + byte (U+DC80 to U+DCFF), and is made that byte again
/// before the file system sees it: every path comes back as it was.
namespace sonarin {

/// Results of the file and cache primitives: 0, one of these, or a host error.
enum FileResult : std::int32_t { // NOLINT(*-enum-size): results are passed as 32-bit numbers
    fileNoErr = 0,
    fileEofErr = -39,       ///< the bytes extend past what the file holds
    fileMemFullErr = -108,  ///< no buffer
    fileUnwantedErr = -128, ///< nobody wants the bytes any more
    fileShortReadErr = -192 ///< the host delivered fewer bytes than it has, without an error
};

/// A host's error number as a result: in 16 bits, and below all of the above, some of which are the negatives
/// of such numbers.
constexpr std::int32_t feHostError(int number) {
    return -1000 - number;
}
constexpr int feHostErrorNumber(std::int32_t hostError) {
    return -1000 - hostError;
}

/// A path in the host's own form.
struct FSRef {
    std::string path;
};

/// The text of a path given as bytes.
[[nodiscard]] SvxStringRef feMakePathText(std::string_view bytes) noexcept;

/// The last component of a path: what follows the last "/", trailing slashes aside; "/" for the root.
[[nodiscard]] SvxStringRef feLastPathComponent(const SvxStringRef& path) noexcept;

/// Makes the reference of the item at `path`, which ends before the first U+0000; the item need not exist.
/// fileMemFullErr, or the host error ENOENT for an absent or empty path.
[[nodiscard]] std::int32_t feMakeFSRefFromPath(const SvxStringRef& path, FSRef* ref) noexcept;

/// Opens an existing file, for reading and writing when `writeAccess` is 1, else for reading. Answers the
/// reference number (the host's descriptor, never 0), or 0 when it cannot be opened. Never waits; that the
/// item is a regular file is for feGetEOF to tell.
[[nodiscard]] std::int32_t feOpenExistingDataFile(const SvxStringRef& path,
                                                  std::int32_t writeAccess) noexcept;

/// The file's size in bytes. An item that is no regular file has none: the host error EINVAL.
[[nodiscard]] std::int32_t feGetEOF(std::int32_t refNum, std::uint64_t* size) noexcept;

/// Reads exactly `count` bytes at `position`.
[[nodiscard]] std::int32_t feReadFromFile(std::int32_t refNum, std::uint64_t position, std::uint64_t count,
                                          void* buffer) noexcept;

/// The first position at or behind `position` that holds written data, respectively that lies in a hole of a
/// sparse file or at its end. `position` itself, respectively the farthest position, where the host cannot
/// tell.
[[nodiscard]] std::uint64_t feNextData(std::int32_t refNum, std::uint64_t position) noexcept;
[[nodiscard]] std::uint64_t feNextHole(std::int32_t refNum, std::uint64_t position) noexcept;

/// Closes the file; 0 or an error.
std::int32_t feCloseFile(std::int32_t refNum) noexcept;

/// Gives the item, a file or a folder, a new name in its own folder, in one step and never over another item;
/// the name is taken up to its 255th unit and without U+0000, else exactly. `*renamed` gets the reference of
/// the renamed item. 0; the host error EINVAL for a name that is none (empty, ".", "..", or with a slash or a
/// lone surrogate), EEXIST when the folder holds an item of that name, or another one, all of which change
/// nothing; fileMemFullErr.
[[nodiscard]] std::int32_t feRenameFolder(const FSRef& ref, const SvxStringRef& newName,
                                          FSRef* renamed) noexcept;

} // namespace sonarin
