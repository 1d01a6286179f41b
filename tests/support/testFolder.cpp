// SPDX-License-Identifier: MIT
#include "tests/support/testFolder.h"

#include "app/shownFile.h"
#include "text/CMMCoreFunctions.h"
#include "text/displayFormat.h"
#include "text/stringEngine.h"
#include "text/utf8Form.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace sonarin {

TestFolder::TestFolder() : path_((std::filesystem::temp_directory_path() / "sonarin-test-XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) {
        throw std::runtime_error("no temporary folder");
    }
}

TestFolder::~TestFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TestFolder::write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
}

SvxStringRef text(const std::string& utf8) {
    return SvxStringFromUTF8(utf8);
}

std::string plain(const SvxStringRef& text) {
    if (!text) {
        return "(absent)";
    }
    std::string utf8;
    text->visit([&utf8](auto units) {
        (void)writeUtf8(
            units, [&utf8](std::string_view bytes) { utf8 += bytes; }, replacementCharacter);
    });
    return utf8;
}

void startUpIn(const char* locale) {
    setenv("LC_ALL", locale, 1);
    initStringBundle(SvxStringFromCString(bundleIdentifier));
    svxStringInitString();
}

} // namespace sonarin
