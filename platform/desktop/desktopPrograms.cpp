// SPDX-License-Identifier: MIT
// No header of Qt here: its keywords and GLib's names do not go together.
#include "platform/desktop/desktopPrograms.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>
#include <memory>
#include <optional>
#include <string_view>
#include <unistd.h>

namespace sonarin {

namespace {

template <auto free>
struct FreedBy {
    template <class Thing>
    void operator()(Thing* thing) const {
        free(thing);
    }
};
using Text = std::unique_ptr<char, FreedBy<g_free>>;
using TextList = std::unique_ptr<char*, FreedBy<g_strfreev>>;
template <class Thing>
using Object = std::unique_ptr<Thing, FreedBy<g_object_unref>>;

constexpr const char* creatorKey = "X-HFS-Creator";

/// The texts up to the null at the end; a list may be null itself.
std::vector<std::string_view> listed(const char* const* texts) {
    std::vector<std::string_view> all;
    for (; texts != nullptr && *texts != nullptr; ++texts) {
        all.emplace_back(*texts);
    }
    return all;
}

/// The code that one item of the key's list stands for: "Tagr" or "0x4D6564A8".
std::optional<std::uint32_t> creatorCode(std::string_view item) {
    std::uint32_t code = 0;
    if (item.size() == 10 && (item.substr(0, 2) == "0x" || item.substr(0, 2) == "0X")) {
        const auto parsed = std::from_chars(item.data() + 2, item.data() + item.size(), code, 16);
        return parsed.ec == std::errc() && parsed.ptr == item.data() + item.size() ? std::optional(code)
                                                                                   : std::nullopt;
    }
    if (item.size() != 4) {
        return std::nullopt;
    }
    for (const char character : item) {
        code = (code << 8U) | static_cast<unsigned char>(character);
    }
    return code;
}

std::vector<std::uint32_t> creatorCodes(GDesktopAppInfo* program) {
    std::vector<std::uint32_t> codes;
    const TextList items(g_desktop_app_info_get_string_list(program, creatorKey, nullptr));
    for (const std::string_view item : listed(items.get())) {
        if (const auto code = creatorCode(item)) {
            codes.push_back(*code);
        }
    }
    return codes;
}

/// Whether an entry without a creator code is that of a tag editor (by the categories that freedesktop.org
/// registers for menus).
bool editsTags(GDesktopAppInfo* program) {
    constexpr std::array<std::string_view, 6> tagKeywords = {"tag",        "tags", "tagger",
                                                             "tag editor", "id3",  "metadata"};
    const TextList categories(
        g_desktop_app_info_get_string_list(program, G_KEY_FILE_DESKTOP_KEY_CATEGORIES, nullptr));
    const auto isAudio = [](std::string_view type) { return type.starts_with("audio/"); };
    const auto isOfTags = [&](std::string_view keyword) {
        const Text folded(g_utf8_casefold(keyword.data(), -1));
        return std::ranges::find(tagKeywords, folded.get()) != tagKeywords.end();
    };
    return std::ranges::any_of(listed(g_app_info_get_supported_types(G_APP_INFO(program))), isAudio) &&
           (std::ranges::count(listed(categories.get()), "AudioVideoEditing") > 0 ||
            std::ranges::any_of(listed(g_desktop_app_info_get_keywords(program)), isOfTags));
}

/// The place of the folder that an entry comes from: the user's own folder before those of the system, in
/// their order.
std::size_t precedence(GDesktopAppInfo* program) {
    const char* file = g_desktop_app_info_get_filename(program);
    const auto isIn = [file](const char* folder) {
        return file != nullptr && g_str_has_prefix(file, folder) != 0;
    };
    if (isIn(g_get_user_data_dir())) {
        return 0;
    }
    std::size_t place = 1;
    for (const char* const* folder = g_get_system_data_dirs(); *folder != nullptr && !isIn(*folder);
         ++folder) {
        ++place;
    }
    return place;
}

/// Those that are neither hidden nor lack the program that they need, the user's own first.
std::vector<Object<GDesktopAppInfo>> installedPrograms() {
    std::vector<Object<GDesktopAppInfo>> programs;
    GList* all = g_app_info_get_all();
    for (GList* link = all; link != nullptr; link = link->next) {
        programs.emplace_back(G_DESKTOP_APP_INFO(link->data));
    }
    g_list_free(all);
    std::stable_sort(programs.begin(), programs.end(),
                     [](const auto& a, const auto& b) { return precedence(a.get()) < precedence(b.get()); });
    return programs;
}

/// Starts the program in a session of its own, so that it does not end with this one's terminal.
bool launch(GDesktopAppInfo* program, std::string uri) {
    GList uris{uri.data(), nullptr, nullptr};
    const auto startSession = [](void* /*unused*/) { setsid(); };
    return g_desktop_app_info_launch_uris_as_manager(program, &uris, nullptr, G_SPAWN_SEARCH_PATH,
                                                     startSession, nullptr, nullptr, nullptr, nullptr) != 0;
}

bool openFileWith(GDesktopAppInfo* program, const std::string& path) {
    const Object<GFile> file(g_file_new_for_path(path.c_str()));
    const Text uri(g_file_get_uri(file.get()));
    return launch(program, uri.get());
}

} // namespace

void openUrl(const std::string& url) {
    const Text scheme(g_uri_parse_scheme(url.c_str()));
    const Object<GAppInfo> program(scheme ? g_app_info_get_default_for_uri_scheme(scheme.get()) : nullptr);
    if (program) {
        (void)launch(G_DESKTOP_APP_INFO(program.get()), url);
    }
}

std::vector<DesktopEditor> installedEditors() {
    std::vector<DesktopEditor> editors;
    for (const auto& program : installedPrograms()) {
        const char* id = g_app_info_get_id(G_APP_INFO(program.get()));
        const bool isForMenus = g_app_info_should_show(G_APP_INFO(program.get())) != 0;
        if (id != nullptr && isForMenus &&
            (!creatorCodes(program.get()).empty() || editsTags(program.get()))) {
            editors.push_back({id, g_app_info_get_display_name(G_APP_INFO(program.get()))});
        }
    }
    std::sort(editors.begin(), editors.end(),
              [](const DesktopEditor& a, const DesktopEditor& b) { return a.name < b.name; });
    return editors;
}

bool openFileWithCreator(const std::string& path, std::uint32_t creator) {
    for (const auto& program : installedPrograms()) {
        const std::vector<std::uint32_t> codes = creatorCodes(program.get());
        if (std::find(codes.begin(), codes.end(), creator) != codes.end()) {
            return openFileWith(program.get(), path);
        }
    }
    return false;
}

std::string desktopLibraryVersion() {
    return std::to_string(glib_major_version) + '.' + std::to_string(glib_minor_version) + '.' +
           std::to_string(glib_micro_version);
}

bool openFileWithProgram(const std::string& path, const std::string& desktopId) {
    const Object<GDesktopAppInfo> program(g_desktop_app_info_new(desktopId.c_str()));
    return program && openFileWith(program.get(), path);
}

} // namespace sonarin
