// SPDX-License-Identifier: MIT
#include "platform/host/mountPoints.h"

#include <charconv>
#include <cstdint>
#include <fstream>
#include <sstream>

namespace sonarin {

namespace {

/// Blanks, line ends and backslashes are written as a backslash and three octal digits.
std::string unescaped(const std::string& field) {
    std::string text;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size()) {
            std::uint8_t code = 0;
            (void)std::from_chars(&field[i + 1], &field[i + 4], code, 8);
            text += static_cast<char>(code);
            i += 3;
        } else {
            text += field[i];
        }
    }
    return text;
}

bool isBelow(const std::string& path, const std::string& folder) {
    return path.starts_with(folder) &&
           (folder.ends_with('/') || path.size() == folder.size() || path[folder.size()] == '/');
}

} // namespace

std::vector<std::string> hostMountPoints(const char* table) {
    std::vector<std::string> points;
    std::ifstream mounts(table);
    for (std::string line; std::getline(mounts, line);) {
        std::istringstream fields(line);
        std::string number;
        std::string parent;
        std::string device;
        std::string root;
        std::string point;
        if (fields >> number >> parent >> device >> root >> point) {
            points.push_back(unescaped(point));
        }
    }
    return points;
}

std::string mountPointOf(const std::string& path, const std::vector<std::string>& mountPoints) {
    std::string innermost;
    for (const std::string& point : mountPoints) {
        if (point.size() >= innermost.size() && isBelow(path, point)) {
            innermost = point;
        }
    }
    return innermost;
}

} // namespace sonarin
