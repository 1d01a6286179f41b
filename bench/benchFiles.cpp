// SPDX-License-Identifier: MIT
#include "bench/benchFiles.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <stdlib.h>

namespace sonarin::bench {

namespace {

namespace fs = std::filesystem;

class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = (fs::temp_directory_path() / "sonarin-bench-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        path_ = pattern;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    [[nodiscard]] std::string file(const std::string& name) const { return (path_ / name).string(); }

private:
    fs::path path_;
};

std::string pathFor(const std::string& name) {
    static const TemporaryFolder folder;
    return folder.file(name);
}

} // namespace

std::string makeFile(const std::string& name, const std::string& content) {
    const std::string path = pathFor(name);
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

std::string makeLargeFile(const std::string& name, std::size_t mebibytes,
                          const std::function<void(std::string& piece)>& fill) {
    const std::string path = pathFor(name);
    std::ofstream file(path, std::ios::binary);
    std::string piece(std::size_t{1} << 20U, '\0');
    for (std::size_t i = 0; i < mebibytes; ++i) {
        fill(piece);
        file << piece;
    }
    return path;
}

std::vector<std::string> makeFiles(const std::string& name, const std::string& content, std::size_t count) {
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < count; ++i) {
        paths.push_back(makeFile(std::to_string(i) + "-" + name, content));
    }
    return paths;
}

std::string bigEndian(std::uint32_t value) {
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        bytes += static_cast<char>((value >> shift) & 0xFFU);
    }
    return bytes;
}

std::string id3Frame(const std::string& id, const std::string& data) {
    return id + bigEndian(static_cast<std::uint32_t>(data.size())) + std::string(2, '\0') + data;
}

std::string id3Tag(const std::string& frames, std::size_t padding) {
    const std::size_t size = frames.size() + padding;
    std::string tag = std::string("ID3\3\0\0", 6);
    for (const unsigned shift : {21U, 14U, 7U, 0U}) {
        tag += static_cast<char>((size >> shift) & 0x7FU);
    }
    return tag + frames + std::string(padding, '\0');
}

std::string mpegAudio(std::size_t size) { return "\xFF\xFB\x90" + std::string(size - 3, '\0'); }

} // namespace sonarin::bench
