// SPDX-License-Identifier: MIT
#include "engine/fileEngine.h"
#include "platform/host/renameItem.h"
#include "text/stringEngine.h"
#include "text/utf8Form.h"

#include <algorithm>
#include <cerrno>
#include <exception>

namespace sonarin {

namespace {

constexpr SvxIndex longestName = 255;

/// The name in UTF-8, without U+0000, in which many titles end and which no name here can hold; empty when it
/// cannot be the name of an item.
std::string encodeName(const SvxString& name) {
    std::string bytes;
    const bool isWhole = name.visit([&bytes](auto units) {
        return writeUtf8(
            units, [&bytes](std::string_view utf8) { bytes += utf8; }, noSubstitute);
    });
    std::erase(bytes, '\0');
    const bool isName = isWhole && bytes.find('/') == std::string::npos && bytes != "." && bytes != "..";
    return isName ? bytes : std::string();
}

bool differInCaseAlone(const SvxStringRef& a, const SvxStringRef& b) {
    return SvxStringGetLength(a) == SvxStringGetLength(b) && SvxStringBeginsWith(a, b, false);
}

} // namespace

std::int32_t feRenameFolder(const FSRef& ref, const SvxStringRef& newName, FSRef* renamed) noexcept {
    try {
        const SvxStringRef name =
            SvxStringCreateWithSubstring(newName, 0, std::min(SvxStringGetLength(newName), longestName));
        const std::string bytes = name ? encodeName(*name) : std::string();
        const std::size_t end = ref.path.find_last_not_of('/');
        if (bytes.empty() || end == std::string::npos) {
            return feHostError(EINVAL);
        }
        const std::string path = ref.path.substr(0, end + 1);
        const std::size_t nameStart = path.rfind('/') + 1; // 0 without a slash
        const SvxStringRef oldName = feMakePathText(path.substr(nameStart));
        const std::string target = path.substr(0, nameStart) + bytes;
        const int error = renameItem(path, target, differInCaseAlone(oldName, name));
        if (error != 0) {
            return feHostError(error);
        }
        renamed->path = target;
        return fileNoErr;
    } catch (const std::exception&) {
        return fileMemFullErr;
    }
}

} // namespace sonarin
