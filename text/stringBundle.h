// SPDX-License-Identifier: MIT
#pragma once

#include "text/SvxString.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace sonarin {

/// A folder of resources named by its bundle identifier, with one folder of strings tables a language
/// ("de.lproj/Localizable.strings").
class StringBundle {
public:
    /// The bundle with that identifier: the folder "share/<identifier>" beside the program's executable or
    /// one folder up (the build tree, and an installation's bin and share). Null when there is none.
    static std::unique_ptr<StringBundle> find(const std::string& identifier) noexcept;

    /// A bundle in that folder, for a user of that language ("de"); texts come from English when the bundle
    /// does not know the language.
    StringBundle(std::string folder, const std::string& language);

    /// The text under `key` (ASCII) in the table, or `key` itself when the table lacks it. A table is read
    /// once. Threads may ask at the same time.
    [[nodiscard]] SvxStringRef localizedString(std::string_view key, std::string_view table) const noexcept;

    /// The same bundle for a user of English.
    [[nodiscard]] const StringBundle& english() const noexcept { return english_ ? *english_ : *this; }

    /// Where the bundle's other resources lie.
    [[nodiscard]] const std::string& folder() const noexcept { return folder_; }

private:
    using Table = std::map<std::string, SvxStringRef, std::less<>>;
    [[nodiscard]] const Table& tableNamed(std::string_view name) const;

    std::string folder_;
    std::string languageFolder_;
    std::unique_ptr<const StringBundle> english_; ///< null when this one is
    mutable std::mutex tablesMutex_;
    mutable std::map<std::string, Table, std::less<>> tables_; ///< a table that is there does not change
};

} // namespace sonarin
