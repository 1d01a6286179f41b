// SPDX-License-Identifier: MIT
#include "cli/fileNames.h"

#include "cli/complaint.h"
#include "engine/audioMetaData.h"
#include "engine/fileEngine.h"
#include "platform/host/errorText.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace sonarin {

namespace {

bool isAudioFile(const std::string& path) {
    const SvxStringRef text = feMakePathText(path);
    return amdAudioFileTypeOfName(feLastPathComponent(text)) != amdTypeNone ||
           amdAudioFileType(text) != amdTypeNone;
}

/// The kind of an item as dirent names it; DT_UNKNOWN for what is missing.
unsigned char kindOf(const std::string& path, bool followLink) {
    struct stat status {};
    if ((followLink ? stat(path.c_str(), &status) : lstat(path.c_str(), &status)) != 0) {
        return DT_UNKNOWN;
    }
    return static_cast<unsigned char>(IFTODT(status.st_mode));
}

/// For who gets EAGAIN, since the writer set its end of the pipe not to block; false for any other error.
bool waitForMore(int descriptor) {
    pollfd waiting{descriptor, POLLIN, 0};
    return (errno == EAGAIN || errno == EWOULDBLOCK) && poll(&waiting, 1, -1) > 0;
}

} // namespace

// --- names in a list --------------------------------------------------------------------------------

NameList::NameList(std::string list) : list_(std::move(list)) {
    const bool isStandardInput = list_ == "-";
    file_ = FileDescriptor(uninterrupted([&] {
        return isStandardInput ? dup(STDIN_FILENO)
                               : open(list_.c_str(), O_RDONLY | O_CLOEXEC); // NOLINT(*-vararg)
    }));
    struct stat status {};
    if (!file_) {
        error_ = errno;
    } else if (fstat(file_.get(), &status) == 0 && S_ISREG(status.st_mode)) {
        size_ = static_cast<std::uint64_t>(status.st_size);
    }
}

std::optional<FileName> NameList::next() {
    constexpr std::size_t longest = std::size_t{1} << 17U; // no file system knows longer names
    std::size_t end = buffer_.find('\0', start_);
    bool isCut = false;
    while (end == std::string::npos && fill()) {
        end = buffer_.find('\0');
        if (end == std::string::npos && buffer_.size() > 2 * longest) {
            buffer_.resize(longest);
            isCut = true;
        }
    }
    if (error_ != 0) {
        return FileName{list_, hostErrorText(std::exchange(error_, 0))};
    }
    if (end == std::string::npos && start_ == buffer_.size()) {
        return std::nullopt;
    }
    end = std::min(end, buffer_.size());
    FileName name{buffer_.substr(start_, end - start_), {}};
    start_ = std::min(end + 1, buffer_.size());
    taken_ += name.path.size() + 1;
    ++count_;
    if (name.path.empty()) {
        return FileName{list_, "Name " + std::to_string(count_) + " is empty"};
    }
    if (isCut) {
        name.problem = hostErrorText(ENAMETOOLONG);
    }
    return name;
}

/// Adds to what the buffer still holds; false at the end of the list.
bool NameList::fill() {
    constexpr std::size_t piece = 65536;
    buffer_.erase(0, std::exchange(start_, 0));
    if (!file_) {
        return false;
    }
    const std::size_t held = buffer_.size();
    buffer_.resize(held + piece);
    ssize_t got = 0;
    do {
        got = read(file_.get(), buffer_.data() + held, piece);
    } while (got < 0 && (errno == EINTR || waitForMore(file_.get())));
    error_ = got < 0 ? errno : 0;
    buffer_.resize(held + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    if (got <= 0) {
        file_ = FileDescriptor();
    }
    return got > 0;
}

std::optional<double> NameList::share() const {
    const auto taken = static_cast<double>(taken_);
    return size_ == 0 ? std::nullopt : std::optional(std::min(taken / static_cast<double>(size_), 1.0));
}

// --- files in folders -------------------------------------------------------------------------------

bool FolderWalk::Listing::holds(const char* name) const {
    const auto found =
        std::lower_bound(entries.begin(), entries.end(), name, [this](const Entry& entry, const char* other) {
            return std::strcmp(this->name(entry), other) < 0;
        });
    return found != entries.end() && std::strcmp(this->name(*found), name) == 0;
}

void FolderWalk::enter(const std::string& folder) {
    // A folder in a folder is no link: that it became one since it was listed changes nothing.
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK | (open_.empty() ? 0 : O_NOFOLLOW);
    FileDescriptor file(uninterrupted([&] { return open(folder.c_str(), flags); })); // NOLINT(*-vararg)
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(file ? fdopendir(file.get()) : nullptr, closedir);
    if (!stream) {
        problem_ = FileName{folder, hostErrorText(errno)};
        return;
    }
    (void)file.release(); // the stream closes it
    Listing listing;
    listing.folder = folder.ends_with('/') ? folder : folder + '/';
    errno = 0;
    while (const dirent* item = readdir(stream.get())) { // NOLINT(concurrency-mt-unsafe): a stream of its own
        const std::string_view name(item->d_name);       // NOLINT(*-array-to-pointer-decay)
        if (name != "." && name != "..") {
            listing.entries.push_back({listing.names.size(), item->d_type});
            listing.names.append(name).push_back('\0');
        }
        errno = 0;
    }
    if (errno != 0) {
        problem_ = FileName{folder, hostErrorText(errno)};
    }
    std::sort(listing.entries.begin(), listing.entries.end(), [&](const Entry& one, const Entry& other) {
        return std::strcmp(listing.name(one), listing.name(other)) < 0;
    });
    open_.push_back(std::move(listing));
}

std::optional<FileName> FolderWalk::next() {
    while (!problem_ && !open_.empty()) {
        Listing& listing = open_.back();
        if (listing.at == listing.entries.size()) {
            open_.pop_back();
            continue;
        }
        const Entry& entry = listing.entries[listing.at++];
        const char* name = listing.name(entry);
        std::string path = listing.folder + name;
        unsigned char kind = entry.kind == DT_UNKNOWN ? kindOf(path, false) : entry.kind;
        if (kind == DT_DIR) {
            enter(path);
            continue;
        }
        if (std::string_view(name).starts_with("._") &&
            listing.holds(name + 2)) { // NOLINT(*-pointer-arithmetic)
            continue;
        }
        // A link that leads nowhere is told of, as a missing file is.
        kind = kind == DT_LNK ? kindOf(path, true) : kind;
        if ((kind == DT_REG || kind == DT_UNKNOWN) && isAudioFile(path)) {
            return FileName{std::move(path), {}};
        }
    }
    return std::exchange(problem_, std::nullopt);
}

// --- both, and the names of a call ------------------------------------------------------------------

FileNames::FileNames(const CommandLine& call) : call_(call) {
    if (call.nameList) {
        list_ = std::make_unique<NameList>(*call.nameList);
    }
}

std::optional<FileName> FileNames::nextNamed() {
    if (list_) {
        return list_->next();
    }
    return named_ < call_.files.size() ? std::optional(FileName{call_.files[named_++], {}}) : std::nullopt;
}

std::optional<FileName> FileNames::next() {
    for (;;) {
        if (auto found = walk_.next()) {
            return found;
        }
        auto named = nextNamed();
        if (!named || !call_.recursive || !named->problem.empty() || kindOf(named->path, true) != DT_DIR) {
            return named;
        }
        walk_.enter(named->path);
    }
}

std::optional<double> FileNames::share() const {
    if (call_.recursive) {
        return std::nullopt; // who knows what the folders hold
    }
    return list_ ? list_->share()
                 : std::optional(static_cast<double>(named_) / static_cast<double>(call_.files.size()));
}

} // namespace sonarin
