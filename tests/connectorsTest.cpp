// SPDX-License-Identifier: MIT
#include "platform/host/connectors.h"

#include "platform/host/userHome.h"
#include "tools/testFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <pwd.h>
#include <sstream>
#include <unistd.h>
#include <vector>

namespace sonarin {

namespace {

namespace fs = std::filesystem;

/// A machine with one or more programs on it, and a user without anything.
class Connectors : public testing::Test {
protected:
    void put(const std::string& name, const std::string& content = "") {
        fs::create_directories(fs::path(folder.path(name)).parent_path());
        folder.write(name, content);
    }

    void install(const std::string& command) {
        put("bin/" + command);
        fs::permissions(folder.path("bin/" + command), fs::perms::owner_all);
    }

    std::optional<Connector> find(const std::string& id) {
        const std::vector<Connector> found = findConnectors(folders);
        const auto connector = std::ranges::find(found, id, &Connector::id);
        return connector == found.end() ? std::nullopt : std::optional(*connector);
    }

    TestFolder folder;
    ConnectorFolders folders{.root = folder.path("root"),
                             .sources = SONARIN_CONNECTORS,
                             .plugins = folder.path("plug 'ins$(false)"),
                             .programs = "/100% \"of\" $s\\b",
                             .data = folder.path("data"),
                             .config = folder.path("config"),
                             .quodLibet = folder.path("config/quodlibet"),
                             .searchPath = "/nowhere::" + folder.path("bin")};
};

using State = Connector::State;

TEST_F(Connectors, KnowWhatAProgramLacks) {
    EXPECT_TRUE(findConnectors(folders).empty());
    put("bin/thunar"); // nobody may run it
    EXPECT_FALSE(find("thunar"));
    install("thunar");
    EXPECT_EQ(find("thunar")->missing, (std::vector<std::string>{"thunarx-python", "gir1.2-thunarx-3.0"}));
    put("root/usr/lib/some-arch/thunarx-3/thunarx-python.so");
    EXPECT_EQ(find("thunar")->state, State::lacksPackages);
    EXPECT_EQ(find("thunar")->missing, std::vector<std::string>{"gir1.2-thunarx-3.0"});
    put("root/usr/lib/some-arch/girepository-1.0/Thunarx-3.0.typelib");
    EXPECT_EQ(find("thunar")->state, State::available);
    install("pcmanfm-qt");
    EXPECT_TRUE(find("pcmanfm-qt")->isMenuOnly && !find("thunar")->isMenuOnly);
    install("nautilus");
    put("root/usr/lib/some-arch/nautilus/extensions-4/libnautilus-python.so");
    EXPECT_EQ(find("nautilus")->missing, std::vector<std::string>{"gir1.2-gtk-4.0"});
    put("root/usr/share/thunarx-python/extensions/sonarin_filemanagers.py");
    fs::remove(folder.path("root/usr/lib/some-arch/thunarx-3/thunarx-python.so"));
    EXPECT_EQ(find("thunar")->state, State::connectedForAll);
}

TEST_F(Connectors, ComeAndGoWithoutATrace) {
    install("caja");
    put("root/usr/lib/a/caja/extensions-2.0/libcaja-python.so");
    put("data/caja-python/extensions/of-others.py", "kept");
    put("data/caja-python/extensions/__pycache__/of-others.cpython-311.pyc", "kept");
    const std::string ours = "data/caja-python/extensions/sonarin_filemanagers.py";
    for (int round = 0; round < 2; ++round) {
        ASSERT_FALSE(addConnector(folders, "caja"));
        EXPECT_EQ(find("caja")->state, State::connected);
        EXPECT_EQ(fs::file_size(folder.path(ours)),
                  fs::file_size(folders.sources + "/filemanagers/sonarin_filemanagers.py"));
        put(ours, "of an older version");
        EXPECT_EQ(find("caja")->state, State::available);
    }
    put("data/caja-python/extensions/__pycache__/sonarin_filemanagers.cpython-311.pyc");
    ASSERT_FALSE(removeConnector(folders, "caja"));
    EXPECT_EQ(find("caja")->state, State::available);
    EXPECT_EQ(std::count_if(fs::recursive_directory_iterator(folders.data),
                            fs::recursive_directory_iterator(),
                            [](const auto& entry) { return entry.is_regular_file(); }),
              2);
    EXPECT_FALSE(removeConnector(folders, "caja")); // once more is no failure

    ASSERT_FALSE(addConnector(folders, "quodlibet")); // and left behind, but known, when the program goes
    EXPECT_EQ(find("quodlibet")->state, State::connected);
    ASSERT_FALSE(removeConnector(folders, "quodlibet"));
    EXPECT_FALSE(fs::exists(folders.quodLibet + "/plugins/sonarin"));
    EXPECT_FALSE(find("quodlibet"));
}

/// What has the places of this installation in it, and a menu that must be executable.
TEST_F(Connectors, NameTheInstallationThatTheyBelongTo) {
    install("dolphin");
    EXPECT_EQ(find("dolphin")->missing, std::vector<std::string>{"a Sonarin built with libkf5kio-dev"});
    put("plug 'ins$(false)/kf5/overlayicon/sonarin_dolphin.so");
    ASSERT_FALSE(addConnector(folders, "dolphin"));
    EXPECT_EQ(find("dolphin")->state, State::connected);
    EXPECT_TRUE(find("dolphin")->missing.empty());
    const std::string menu = folders.data + "/kio/servicemenus/sonarin.desktop";
    EXPECT_EQ(access(menu.c_str(), X_OK), 0);
    EXPECT_NE(access((folders.config + "/plasma-workspace/env/sonarin.sh").c_str(), X_OK), 0);
    std::stringstream text;
    text << std::ifstream(menu).rdbuf();
    EXPECT_NE(text.str().find(R"("/100%% \\"of\\" \\$s\\\\b/)"), std::string::npos) << text.str();
    setenv("SONARIN_PLUGINS", folders.plugins.c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    const std::string command =
        "QT_PLUGIN_PATH=/before; . '" + folders.config +
        "/plasma-workspace/env/sonarin.sh'; test \"$QT_PLUGIN_PATH\" = \"$SONARIN_PLUGINS:/before\"";
    EXPECT_EQ(std::system(command.c_str()), 0); // NOLINT
}

TEST(UserHome, IsKnownWithoutTheEnvironment) {
    const std::string before = userHome();
    const std::string known = getpwuid(getuid())->pw_dir;
    for (const auto& [home, expected] : {std::pair("", known), {"relative", known}, {"/chosen", "/chosen"}}) {
        setenv("HOME", home, 1);
        EXPECT_EQ(userHome(), expected) << home;
    }
    setenv("HOME", before.c_str(), 1);
}

TEST_F(Connectors, SayWhatCannotBeDone) {
    install("nemo");
    put("root/usr/lib/a/nemo/extensions-3.0/libnemo-python.so");
    EXPECT_EQ(addConnector(folders, "another"), std::errc::invalid_argument);
    EXPECT_EQ(removeConnector(folders, "another"), std::errc::invalid_argument);
    put("data", "no folder");
    EXPECT_TRUE(addConnector(folders, "nemo"));
    fs::remove(folders.data);
    fs::create_symlink("data", folders.data); // which leads nowhere
    EXPECT_TRUE(removeConnector(folders, "nemo"));
    folders.sources = "/nowhere";
    EXPECT_EQ(addConnector(folders, "nemo"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(find("nemo")->state, State::available);
    folders.config.clear();
    EXPECT_EQ(addConnector(folders, "nemo"), std::errc::not_a_directory);
}

} // namespace

} // namespace sonarin
