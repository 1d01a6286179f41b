// SPDX-License-Identifier: MIT
#pragma once

#include "text/SvxString.h"

#include <string>

/// What every test of this program needs: files to read, and texts in a form that a test can compare.
namespace sonarin {

/// A folder that goes with its owner.
class TestFolder {
public:
    TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder();

    [[nodiscard]] std::string path(const std::string& name) const { return path_ + "/" + name; }
    /// Writes the file anew and answers its path.
    std::string write(const std::string& name, const std::string& content) const;

private:
    std::string path_;
};

/// A text from UTF-8.
SvxStringRef text(const std::string& utf8);

/// A text in UTF-8, U+0000 included; "(absent)" for the absent value.
std::string plain(const SvxStringRef& text);

/// Runs the start-up of the number formats and localized strings for a user of that locale.
void startUpIn(const char* locale);

} // namespace sonarin
