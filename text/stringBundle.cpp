// SPDX-License-Identifier: MIT
#include "text/stringBundle.h"

#include "text/stringEngine.h"
#include "text/stringsFile.h"
#include "text/userLocale.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace sonarin {

namespace {

namespace fs = std::filesystem;

bool isFolder(const fs::path& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

} // namespace

std::unique_ptr<StringBundle> StringBundle::find(const std::string& identifier) noexcept {
    try {
        std::error_code failed;
        const fs::path programFolder = fs::read_symlink("/proc/self/exe", failed).parent_path();
        for (const fs::path& parent : {programFolder, programFolder.parent_path()}) {
            const fs::path folder = parent / "share" / identifier;
            if (!failed && !identifier.empty() && isFolder(folder)) {
                return std::make_unique<StringBundle>(folder.string(), userLanguage());
            }
        }
    } catch (const std::exception&) {
        // Out of memory: as if there were no bundle.
    }
    return nullptr;
}

StringBundle::StringBundle(std::string folder, const std::string& language) : folder_(std::move(folder)) {
    const fs::path wanted = fs::path(folder_) / (language + ".lproj");
    const bool isForeign = language != "en" && isFolder(wanted);
    languageFolder_ = isForeign ? wanted.string() : (fs::path(folder_) / "en.lproj").string();
    english_ = isForeign ? std::make_unique<const StringBundle>(folder_, "en") : nullptr;
}

SvxStringRef StringBundle::localizedString(std::string_view key, std::string_view table) const noexcept {
    try {
        const Table& texts = tableNamed(table);
        const auto found = texts.find(key);
        return found != texts.end() ? found->second : SvxStringFromCString(key);
    } catch (const std::exception&) {
        return SvxStringFromCString(key);
    }
}

const StringBundle::Table& StringBundle::tableNamed(std::string_view name) const {
    const std::lock_guard lock(tablesMutex_);
    const auto known = tables_.find(name);
    if (known != tables_.end()) {
        return known->second;
    }
    std::ifstream file(fs::path(languageFolder_) / (std::string(name) + ".strings"), std::ios::binary);
    const std::string content((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    Table texts;
    for (const auto& [key, text] : parseStringsFile(content)) {
        texts.insert_or_assign(key, SvxStringFromUTF8(text));
    }
    return tables_.emplace(name, std::move(texts)).first->second;
}

} // namespace sonarin
