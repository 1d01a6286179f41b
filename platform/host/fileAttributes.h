// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

/// What the host knows of a file besides its bytes. Paths are bytes, as POSIX has them.
namespace sonarin {

struct HostFileAttributes {
    bool isRegular = false; ///< false for folders, FIFOs, sockets, devices and for what is missing
    std::uint64_t size = 0; ///< bytes; 0 unless regular
};

/// The attributes of the item at `path`, a symbolic link followed.
[[nodiscard]] HostFileAttributes hostFileAttributes(const std::string& path) noexcept;

/// HFS type and creator: four-character codes as 32-bit values, 0 when the file has none.
struct HostTypeCodes {
    std::uint32_t type = 0;
    std::uint32_t creator = 0;
};

/// The type and creator codes that came with the file from a Macintosh disk: from the extended attributes
/// user.com.apple.FinderInfo or osx.com.apple.FinderInfo (32 bytes that begin with type and creator) or
/// hfs.type and hfs.creator, else from the Finder info entry of an AppleDouble file "._name" beside it
/// (RFC 1740). The first that holds a code counts.
[[nodiscard]] HostTypeCodes hostTypeCodes(const std::string& path) noexcept;

} // namespace sonarin
