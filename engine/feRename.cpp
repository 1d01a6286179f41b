// SPDX-License-Identifier: MIT
#include "engine/fileEngine.h"
#include "platform/host/renameItem.h"
#include "text/CMMCoreFunctions.h"
#include "text/stringEngine.h"
#include "text/utf8Form.h"

#include <cerrno>
#include <exception>
#include <string>
#include <string_view>

namespace sonarin {

namespace {

/// The name in UTF-8, without U+0000, in which many titles end and which no name here can hold; empty when it
/// cannot be the name of an item.
std::string encodeName(std::u16string_view name) {
    std::string bytes;
    const bool isWhole = writeUtf8(
        name, [&bytes](std::string_view utf8) { bytes += utf8; }, noSubstitute);
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
        HFSUniStr255 name;
        utMakeHFSStringFromCFString(newName, &name);
        const std::string bytes = encodeName(name.view());
        const std::size_t end = ref.path.find_last_not_of('/');
        if (bytes.empty() || end == std::string::npos) {
            return feHostError(EINVAL);
        }
        const std::string path = ref.path.substr(0, end + 1);
        const std::size_t nameStart = path.rfind('/') + 1; // 0 without a slash
        const SvxStringRef oldName = feMakePathText(path.substr(nameStart));
        const std::string target = path.substr(0, nameStart) + bytes;
        const int error =
            renameItem(path, target, differInCaseAlone(oldName, SvxStringFromUTF16(name.view())));
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
