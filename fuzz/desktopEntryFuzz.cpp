// SPDX-License-Identifier: MIT
#include "platform/desktop/desktopPrograms.h"

#include <cstdint>
#include <gio/gdesktopappinfo.h>

namespace {

GAppInfo* installed = nullptr;

} // namespace

// In place of GIO's own, which look for the entries on the disk.
GList* g_app_info_get_all() {
    return g_list_prepend(nullptr, g_object_ref(installed));
}

const char* g_app_info_get_id(GAppInfo* /*program*/) {
    return "fuzz.desktop";
}

/// The search for tag editors where one program is installed; the bytes are the lines of its desktop entry
/// behind those that no entry lacks.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    std::string entry = "[Desktop Entry]\nType=Application\nName=A\n";
    entry.append(bytes, bytes + size);
    GKeyFile* file = g_key_file_new();
    if (g_key_file_load_from_data(file, entry.data(), entry.size(), G_KEY_FILE_NONE, nullptr) != 0) {
        installed = G_APP_INFO(g_desktop_app_info_new_from_keyfile(file));
        if (installed != nullptr) {
            (void)sonarin::installedEditors();
            g_object_unref(installed);
        }
    }
    g_key_file_free(file);
    return 0;
}
