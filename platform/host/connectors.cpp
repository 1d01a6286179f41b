// SPDX-License-Identifier: MIT
#include "platform/host/connectors.h"

#include "platform/host/userHome.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <glob.h>
#include <iterator>
#include <sstream>
#include <unistd.h>

namespace sonarin {

namespace {

namespace fs = std::filesystem;

enum class Folder { data, config, quodLibet };

struct ConnectorFile {
    const char* source = nullptr; ///< in the folder of the connectors
    Folder folder = Folder::data;
    const char* target = nullptr; ///< in that folder of the user
    bool isExecutable = false;
};

/// A file of the system, or one that came with Sonarin, as a glob pattern, and what brings it.
struct Requirement {
    const char* pattern = nullptr;
    const char* package = nullptr;
};

struct Host {
    const char* id = nullptr;
    const char* name = nullptr;
    const char* restart = nullptr;
    const char* systemFile = nullptr; ///< a glob pattern for what the connector for all users consists of
    std::array<ConnectorFile, 3> files;
    std::array<Requirement, 2> requirements;
    bool isMenuOnly = false;
};

// clang-format off
constexpr std::array hosts = {
    Host{"nautilus", "Files", "Restart it with: nautilus -q",
         "/usr/share/nautilus-python/extensions/sonarin_filemanagers.py",
         {{{"sonarin_selection.py", Folder::data, "nautilus-python/extensions/sonarin_selection.py"},
           {"filemanagers/sonarin_filemanagers.py", Folder::data, "nautilus-python/extensions/sonarin_filemanagers.py"}}},
         {{{"/usr/lib/*/nautilus/extensions-4/libnautilus-python.so", "python3-nautilus"},
           {"/usr/lib/*/girepository-1.0/Gtk-4.0.typelib", "gir1.2-gtk-4.0"}}}},
    Host{"caja", "Caja", "Restart it with: caja -q",
         "/usr/share/caja-python/extensions/sonarin_filemanagers.py",
         {{{"sonarin_selection.py", Folder::data, "caja-python/extensions/sonarin_selection.py"},
           {"filemanagers/sonarin_filemanagers.py", Folder::data, "caja-python/extensions/sonarin_filemanagers.py"}}},
         {{{"/usr/lib/*/caja/extensions-2.0/libcaja-python.so", "python3-caja"}}}},
    Host{"nemo", "Nemo", "Restart it with: nemo -q",
         "/usr/share/nemo-python/extensions/sonarin_filemanagers.py",
         {{{"sonarin_selection.py", Folder::data, "nemo-python/extensions/sonarin_selection.py"},
           {"filemanagers/sonarin_filemanagers.py", Folder::data, "nemo-python/extensions/sonarin_filemanagers.py"}}},
         {{{"/usr/lib/*/nemo/extensions-3.0/libnemo-python.so", "nemo-python"}}}},
    Host{"thunar", "Thunar", "Restart it with: thunar -q",
         "/usr/share/thunarx-python/extensions/sonarin_filemanagers.py",
         {{{"sonarin_selection.py", Folder::data, "thunarx-python/extensions/sonarin_selection.py"},
           {"filemanagers/sonarin_filemanagers.py", Folder::data, "thunarx-python/extensions/sonarin_filemanagers.py"}}},
         // Without its type library the Python bindings take Thunar down at its start.
         {{{"/usr/lib/*/thunarx-3/thunarx-python.so", "thunarx-python"},
           {"/usr/lib/*/girepository-1.0/Thunarx-3.0.typelib", "gir1.2-thunarx-3.0"}}}},
    Host{"dolphin", "Dolphin", "Log out of Plasma and in again; on another desktop, set QT_PLUGIN_PATH as ~/.config/plasma-workspace/env/sonarin.sh does.",
         "/usr/lib/*/qt5/plugins/kf5/overlayicon/sonarin_dolphin.so",
         {{{"dolphin/sonarin.sh", Folder::config, "plasma-workspace/env/sonarin.sh"},
           // A menu that is not the system's must be executable to count.
           {"dolphin/sonarin.desktop", Folder::data, "kio/servicemenus/sonarin.desktop", true}}},
         {{{"@SONARIN_PLUGINS@/kf5/overlayicon/sonarin_dolphin.so", "a Sonarin built with libkf5kio-dev"}}}},
    Host{"pcmanfm-qt", "PCManFM-Qt", "Start it anew.", nullptr,
         {{{"pcmanfm-qt/sonarin.desktop", Folder::data, "file-manager/actions/sonarin.desktop"}}},
         {}, true},
    Host{"quodlibet", "Quod Libet", "Start it anew.", nullptr,
         {{{"sonarin_selection.py", Folder::quodLibet, "plugins/sonarin/sonarin_selection.py"},
           {"quodlibet/__init__.py", Folder::quodLibet, "plugins/sonarin/__init__.py"}}},
         {}},
    Host{"rhythmbox", "Rhythmbox", "Start it anew.",
         "/usr/lib/*/rhythmbox/plugins/sonarin/sonarin.plugin",
         {{{"sonarin_selection.py", Folder::data, "rhythmbox/plugins/sonarin/sonarin_selection.py"},
           {"rhythmbox/sonarin_rhythmbox.py", Folder::data, "rhythmbox/plugins/sonarin/sonarin_rhythmbox.py"},
           {"rhythmbox/sonarin.plugin", Folder::data, "rhythmbox/plugins/sonarin/sonarin.plugin"}}},
         {{{"/usr/lib/*/girepository-1.0/RB-3.0.typelib", "rhythmbox-plugins"}}}},
};
// clang-format on

const Host* hostWithId(std::string_view id) {
    const auto* found =
        std::find_if(hosts.begin(), hosts.end(), [id](const Host& host) { return host.id == id; });
    return found != hosts.end() ? found : nullptr;
}

std::string environment(const char* name) {
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): the environment is not changed
    return value != nullptr ? value : "";
}

/// A folder as XDG's base directories have them, which must be absolute to count; empty when the user has
/// none.
std::string xdgFolder(const char* name, const char* inHome) {
    std::string folder = environment(name);
    if (!folder.empty() && folder.front() == '/') {
        return folder;
    }
    const std::string home = userHome();
    return home.empty() ? "" : home + inHome;
}

/// As Quod Libet chooses it: the folder of older versions counts while there is no newer one.
std::string quodLibetFolder(const std::string& config) {
    std::string chosen = environment("QUODLIBET_USERDIR");
    if (!chosen.empty()) {
        return chosen;
    }
    std::string older = userHome() + "/.quodlibet";
    std::error_code unknown;
    const std::string newer = config + "/quodlibet";
    return !fs::exists(newer, unknown) && fs::is_directory(older, unknown) ? older : newer;
}

bool hasCommand(const ConnectorFolders& folders, const std::string& command) {
    std::istringstream path(folders.searchPath);
    for (std::string folder; std::getline(path, folder, ':');) {
        if (!folder.empty() && access(folder.append("/").append(command).c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

constexpr std::string_view pluginsMark = "@SONARIN_PLUGINS@";
constexpr std::string_view programsMark = "@SONARIN_PROGRAMS@";

bool hasFile(const ConnectorFolders& folders, std::string_view pattern) {
    if (pattern.substr(0, pluginsMark.size()) == pluginsMark) {
        const std::string path = folders.plugins + std::string(pattern.substr(pluginsMark.size()));
        return access(path.c_str(), F_OK) == 0;
    }
    const std::string path = folders.root + std::string(pattern);
    glob_t found{};
    // Nobody changes the locale meanwhile.
    const bool isThere = glob(path.c_str(), 0, nullptr, &found) == 0; // NOLINT(concurrency-mt-unsafe)
    globfree(&found);
    return isThere;
}

const std::string& userFolder(const ConnectorFolders& folders, Folder folder) {
    return folder == Folder::data     ? folders.data
           : folder == Folder::config ? folders.config
                                      : folders.quodLibet;
}

std::string targetOf(const ConnectorFolders& folders, const ConnectorFile& file) {
    return userFolder(folders, file.folder) + '/' + file.target;
}

std::optional<std::string> contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
}

void replaceAll(std::string& text, std::string_view what, const std::string& with) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
        text.replace(at, what.size(), with);
    }
}

/// A path as the shell takes it between two single quotes.
std::string forShell(std::string path) {
    replaceAll(path, "'", "'\\''");
    return path;
}

/// A path as the key Exec of a desktop entry takes it between two double quotes: quoted for the command, and
/// that once more for the text.
std::string forDesktopEntry(const std::string& path) {
    std::string quoted;
    for (const char character : path) {
        if (std::string_view("\"`$\\").find(character) != std::string_view::npos) {
            quoted.append(character == '\\' ? 3 : 2, '\\');
        }
        quoted += character;
        if (character == '%') {
            quoted += '%';
        }
    }
    return quoted;
}

/// What the file is to hold, with the places of this installation put in.
std::optional<std::string> wantedContent(const ConnectorFolders& folders, const ConnectorFile& file) {
    auto content = contentOf(folders.sources + '/' + file.source);
    if (content) {
        replaceAll(*content, pluginsMark, forShell(folders.plugins));
        replaceAll(*content, programsMark, forDesktopEntry(folders.programs));
    }
    return content;
}

bool isAdded(const ConnectorFolders& folders, const Host& host) {
    return std::all_of(host.files.begin(), host.files.end(), [&](const ConnectorFile& file) {
        if (file.source == nullptr) {
            return true;
        }
        const auto wanted = wantedContent(folders, file);
        return wanted && contentOf(targetOf(folders, file)) == wanted;
    });
}

Connector describe(const ConnectorFolders& folders, const Host& host) {
    Connector connector{host.id, host.name, Connector::State::available, {}, host.restart, host.isMenuOnly};
    for (const Requirement& requirement : host.requirements) {
        if (requirement.pattern != nullptr && !hasFile(folders, requirement.pattern)) {
            connector.missing.emplace_back(requirement.package);
        }
    }
    if (host.systemFile != nullptr && hasFile(folders, host.systemFile)) {
        connector.state = Connector::State::connectedForAll;
    } else if (isAdded(folders, host)) {
        connector.state = Connector::State::connected;
    } else if (!connector.missing.empty()) {
        connector.state = Connector::State::lacksPackages;
    }
    return connector;
}

/// Written beside its place and then put there, so that nobody ever loads half a file.
std::error_code writeFile(const std::string& path, const std::string& content, bool isExecutable) {
    std::error_code failed;
    fs::create_directories(fs::path(path).parent_path(), failed);
    if (failed) {
        return failed;
    }
    const std::string beside = path + ".new";
    {
        std::ofstream file(beside, std::ios::binary | std::ios::trunc);
        file << content;
        file.close();
        if (!file) {
            const std::error_code cause(errno, std::generic_category());
            fs::remove(beside, failed);
            return cause;
        }
    }
    if (isExecutable) {
        fs::permissions(beside, fs::perms::owner_exec, fs::perm_options::add, failed);
    }
    fs::rename(beside, path, failed);
    return failed;
}

/// What Python has left beside one of its files.
void removeCompiled(const fs::path& file) {
    const fs::path cache = file.parent_path() / "__pycache__";
    const std::string start = file.stem().string() + '.';
    std::error_code ignored;
    std::vector<fs::path> compiled;
    for (const fs::directory_entry& entry : fs::directory_iterator(cache, ignored)) {
        if (entry.path().filename().string().compare(0, start.size(), start) == 0) {
            compiled.push_back(entry.path());
        }
    }
    for (const fs::path& old : compiled) {
        fs::remove(old, ignored);
    }
    fs::remove(cache, ignored); // unless others have something in it
    fs::remove(file.parent_path(), ignored);
}

} // namespace

ConnectorFolders ConnectorFolders::ofThisUser() {
    std::error_code unknown;
    const fs::path programs = fs::read_symlink("/proc/self/exe", unknown).parent_path();
    ConnectorFolders folders;
    folders.programs = programs.string();
    for (const fs::path& parent : {programs, programs.parent_path()}) {
        const fs::path sources = parent / "share/sonarin/connectors";
        if (fs::is_directory(sources, unknown)) {
            folders.sources = sources.string();
            folders.plugins = (parent / SONARIN_QT5_PLUGINS).string();
        }
    }
    folders.data = xdgFolder("XDG_DATA_HOME", "/.local/share");
    folders.config = xdgFolder("XDG_CONFIG_HOME", "/.config");
    folders.quodLibet = quodLibetFolder(folders.config);
    folders.searchPath = environment("PATH");
    return folders;
}

std::vector<Connector> findConnectors(const ConnectorFolders& folders) {
    std::vector<Connector> found;
    for (const Host& host : hosts) {
        if (hasCommand(folders, host.id) || isAdded(folders, host)) {
            found.push_back(describe(folders, host));
        }
    }
    return found;
}

std::error_code addConnector(const ConnectorFolders& folders, std::string_view id) {
    const Host* host = hostWithId(id);
    if (host == nullptr) {
        return std::make_error_code(std::errc::invalid_argument);
    }
    if (folders.data.empty() || folders.config.empty()) {
        return std::make_error_code(std::errc::not_a_directory);
    }
    for (const ConnectorFile& file : host->files) {
        if (file.source == nullptr) {
            continue;
        }
        const auto content = wantedContent(folders, file);
        if (!content) {
            return std::make_error_code(std::errc::no_such_file_or_directory);
        }
        if (const std::error_code failed = writeFile(targetOf(folders, file), *content, file.isExecutable)) {
            return failed;
        }
    }
    return {};
}

std::error_code removeConnector(const ConnectorFolders& folders, std::string_view id) {
    const Host* host = hostWithId(id);
    if (host == nullptr) {
        return std::make_error_code(std::errc::invalid_argument);
    }
    if (folders.data.empty() || folders.config.empty()) {
        return std::make_error_code(std::errc::not_a_directory);
    }
    std::error_code failed;
    for (const ConnectorFile& file : host->files) {
        if (file.source != nullptr) {
            const std::string target = targetOf(folders, file);
            std::error_code thisFailed;
            fs::remove(target, thisFailed);
            failed = thisFailed ? thisFailed : failed;
            removeCompiled(target);
        }
    }
    return failed;
}

} // namespace sonarin
