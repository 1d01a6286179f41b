// SPDX-License-Identifier: MIT
#pragma once

#include "app/shownFile.h"
#include "text/CMMCoreFunctions.h"
#include "text/displayFormat.h"
#include "text/stringEngine.h"
#include "text/utf8Form.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

/// What every test of this program needs: files to read, and texts in a form that a test can compare.
namespace sonarin {

/// A folder that goes with its owner.
class TestFolder {
public:
    TestFolder() {
        if (mkdtemp(path_.data()) == nullptr) {
            std::abort();
        }
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    [[nodiscard]] std::string path(const std::string& name) const { return path_ + "/" + name; }
    /// Writes the file anew, in folders that it makes, and answers its path.
    std::string write(const std::string& name, const std::string& content) const {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        std::ofstream(path(name), std::ios::binary) << content;
        return path(name);
    }

private:
    std::string path_ = std::filesystem::temp_directory_path() / "sonarin-test-XXXXXX";
};

/// A text from UTF-8.
inline SvxStringRef text(const std::string& utf8) {
    return SvxStringFromUTF8(utf8);
}

/// A text in UTF-8, U+0000 included; "(absent)" for the absent value.
inline std::string plain(const SvxStringRef& text) {
    std::string utf8 = text ? "" : "(absent)";
    if (text) {
        text->visit([&utf8](auto units) {
            (void)writeUtf8(
                units, [&utf8](std::string_view bytes) { utf8 += bytes; }, replacementCharacter);
        });
    }
    return utf8;
}

/// The texts that a function makes of the values, with a bar behind each.
template <class Value, class MakeText>
std::string joined(const std::vector<Value>& values, MakeText makeText) {
    std::string texts;
    for (const Value& value : values) {
        texts += plain(makeText(value)) + '|';
    }
    return texts;
}

/// Runs the start-up of the number formats and localized strings for a user of that locale.
inline void startUpIn(const char* locale) {
    setenv("LC_ALL", locale, 1);
    initStringBundle(SvxStringFromCString(bundleIdentifier));
    svxStringInitString();
}

} // namespace sonarin
