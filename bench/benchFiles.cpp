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

} // namespace sonarin::bench
