// SPDX-License-Identifier: MIT
#include "platform/host/fileAttributes.h"

#include "platform/host/bytes.h"
#include "platform/host/fileDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <optional>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace sonarin {

namespace {

constexpr std::size_t finderInfoSize = 32;

bool holdsCode(const HostTypeCodes& codes) {
    return codes.type != 0 || codes.creator != 0;
}

/// The first `Size` bytes of an extended attribute; nothing when it is missing or shorter.
template <std::size_t Size>
std::optional<std::array<std::uint8_t, Size>> extendedAttribute(const std::string& path, const char* name) {
    constexpr std::size_t largest = 65536; // that Linux lets an attribute be
    std::array<std::uint8_t, Size> value{};
    ssize_t length = getxattr(path.c_str(), name, value.data(), value.size());
    if (length < 0 && errno == ERANGE) {
        std::vector<std::uint8_t> whole(largest);
        length = getxattr(path.c_str(), name, whole.data(), whole.size());
        std::copy_n(whole.begin(), value.size(), value.begin());
    }
    return length >= static_cast<ssize_t>(Size) ? std::optional(value) : std::nullopt;
}

HostTypeCodes codesFromExtendedAttributes(const std::string& path) {
    // One call tells for nearly every file that there is nothing to ask for.
    if (listxattr(path.c_str(), nullptr, 0) == 0) {
        return {};
    }
    for (const char* name : {"user.com.apple.FinderInfo", "osx.com.apple.FinderInfo"}) {
        const auto info = extendedAttribute<finderInfoSize>(path, name);
        const HostTypeCodes codes =
            info ? HostTypeCodes{bigEndian32(*info), bigEndian32(*info, 4)} : HostTypeCodes{};
        if (holdsCode(codes)) {
            return codes;
        }
    }
    const auto type = extendedAttribute<4>(path, "hfs.type");
    const auto creator = extendedAttribute<4>(path, "hfs.creator");
    return {type ? bigEndian32(*type) : 0, creator ? bigEndian32(*creator) : 0};
}

template <std::size_t Size>
bool readAt(const FileDescriptor& file, off_t position, std::array<std::uint8_t, Size>& bytes) {
    const ssize_t got =
        uninterrupted([&] { return pread(file.get(), bytes.data(), bytes.size(), position); });
    return got == static_cast<ssize_t>(Size);
}

/// AppleDouble: a 26-byte header, then one 12-byte descriptor (id, offset, length) an entry.
HostTypeCodes codesFromAppleDouble(const std::string& path) {
    constexpr std::uint32_t magic = 0x00051607;
    constexpr std::uint32_t finderInfoEntry = 9;
    const std::size_t nameStart = path.rfind('/') + 1;
    const std::string sidecar = path.substr(0, nameStart) + "._" + path.substr(nameStart);
    // As a rule there is none, which asking for its attributes tells sooner than opening it.
    const FileDescriptor file =
        hostFileAttributes(sidecar).isRegular ? openRegularFile(sidecar) : FileDescriptor();
    std::array<std::uint8_t, 26> header{};
    if (!file || !readAt(file, 0, header) || bigEndian32(header) != magic) {
        return {};
    }
    // A handful of entry kinds exist, each of which occurs once at the most.
    const std::uint32_t entries = std::min(bigEndian16(header, 24), 64U);
    for (std::uint32_t i = 0; i < entries; ++i) {
        std::array<std::uint8_t, 12> entry{};
        if (!readAt(file, static_cast<off_t>(header.size() + i * entry.size()), entry)) {
            return {};
        }
        std::array<std::uint8_t, 8> codes{};
        if (bigEndian32(entry) == finderInfoEntry && bigEndian32(entry, 8) >= codes.size() &&
            readAt(file, static_cast<off_t>(bigEndian32(entry, 4)), codes)) {
            return {bigEndian32(codes), bigEndian32(codes, 4)};
        }
    }
    return {};
}

} // namespace

HostFileAttributes hostFileAttributes(const std::string& path) noexcept {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return {};
    }
    return {true, static_cast<std::uint64_t>(status.st_size)};
}

HostTypeCodes hostTypeCodes(const std::string& path) noexcept {
    try {
        const HostTypeCodes codes = codesFromExtendedAttributes(path);
        return holdsCode(codes) ? codes : codesFromAppleDouble(path);
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace sonarin
