// SPDX-License-Identifier: MIT
#include "app/coverFile.h"

#include "app/outputBuffer.h"
#include "engine/fileEngine.h"
#include "platform/host/errorText.h"
#include "platform/host/fileDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sonarin {

namespace {

bool isSameFile(const std::string& one, const std::string& other) {
    struct stat first {};
    struct stat second {};
    return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

std::string writeAll(int descriptor, ByteView bytes) {
    const int error = FileSink(descriptor).write(asCharacters(bytes));
    return error == 0 ? std::string() : hostErrorText(error);
}

/// The bytes by which the formats that people embed are told apart; "?" stands for any.
struct Signature {
    std::string_view bytes;
    std::string_view extension;
};
using namespace std::string_view_literals;
constexpr auto signatures = std::to_array<Signature>({
    {"\xFF\xD8\xFF", "jpg"},
    {"\x89PNG\r\n\x1A\n", "png"},
    {"GIF8", "gif"},
    {"BM", "bmp"},
    {"RIFF????WEBP", "webp"},
    {"II*\0"sv, "tiff"},
    {"MM\0*"sv, "tiff"},
    {"????ftypavif", "avif"},
});

} // namespace

std::string_view pictureExtension(ByteView picture) noexcept {
    const std::string_view content = asCharacters(picture);
    for (const Signature& known : signatures) {
        const auto fits = [](char expected, char byte) { return expected == '?' || byte == expected; };
        if (content.size() >= known.bytes.size() &&
            std::equal(known.bytes.begin(), known.bytes.end(), content.begin(), fits)) {
            return known.extension;
        }
    }
    return "bin";
}

std::string writeCover(const SvxStringRef& path, ByteView cover, const std::string& target, bool force) {
    if (target == "-") {
        return writeAll(STDOUT_FILENO, cover);
    }
    FSRef audio;
    if (feMakeFSRefFromPath(path, &audio) == fileNoErr && isSameFile(target, audio.path)) {
        return "The cover would replace the audio file itself";
    }
    const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY | (force ? O_TRUNC : O_EXCL);
    const FileDescriptor out(uninterrupted([&] {
        return open(target.c_str(), flags, 0666); // NOLINT(cppcoreguidelines-pro-type-vararg)
    }));
    if (!out) {
        return target + ": " + hostErrorText(errno) + (errno == EEXIST ? " (--force replaces it)" : "");
    }
    std::string failure = writeAll(out.get(), cover);
    if (failure.empty()) {
        return failure;
    }
    if (!force) {
        unlink(target.c_str()); // made here, and half a picture is of no use
    }
    return target + ": " + failure;
}

} // namespace sonarin
