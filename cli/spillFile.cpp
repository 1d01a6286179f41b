// SPDX-License-Identifier: MIT
#include "cli/spillFile.h"

#include "app/outputBuffer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>

namespace sonarin {

namespace {

FileDescriptor makeNamelessFile() {
    std::error_code failed;
    std::string name = (std::filesystem::temp_directory_path(failed) / "sonarin-info-XXXXXX").string();
    FileDescriptor file(failed ? -1 : mkostemp(name.data(), O_CLOEXEC));
    if (file) {
        unlink(name.c_str());
    }
    return file;
}

} // namespace

std::optional<SpillFile::Place> SpillFile::keep(std::string_view bytes) {
    if (!file_ && !isImpossible_) {
        file_ = makeNamelessFile();
        isImpossible_ = !file_;
    }
    if (!file_ || lseek(file_.get(), static_cast<off_t>(end_), SEEK_SET) < 0 ||
        FileSink(file_.get()).write(bytes) != 0) {
        return std::nullopt;
    }
    const Place place{end_, bytes.size()};
    end_ += bytes.size();
    return place;
}

int SpillFile::copyTo(OutputBuffer& out, Place place) const {
    std::array<char, 65536> piece; // NOLINT(*-member-init): set before it is read
    while (place.size > 0) {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(place.size, piece.size()));
        const ssize_t got = uninterrupted(
            [&] { return pread(file_.get(), piece.data(), wanted, static_cast<off_t>(place.position)); });
        if (got <= 0) {
            return got < 0 ? errno : EIO;
        }
        out.append({piece.data(), static_cast<std::size_t>(got)});
        place.position += static_cast<std::uint64_t>(got);
        place.size -= static_cast<std::uint64_t>(got);
    }
    return 0;
}

void SpillFile::clear() {
    if (end_ > 0) {
        [[maybe_unused]] const int ignored = ftruncate(file_.get(), 0);
        end_ = 0;
    }
}

} // namespace sonarin
