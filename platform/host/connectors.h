// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

/// The connectors: small plug-ins that file managers and players load from the user's own folders, so that
/// Sonarin can follow what is selected in them. Paths are bytes, as POSIX has them.
namespace sonarin {

/// Where things are; a test has folders of its own.
struct ConnectorFolders {
    std::string root;       ///< stands before every folder of the system; empty but in tests
    std::string sources;    ///< what is installed from
    std::string plugins;    ///< Qt 5 plug-ins that came with Sonarin
    std::string programs;   ///< where Sonarin's own programs are
    std::string data;       ///< the user's data folder
    std::string config;     ///< the user's configuration folder
    std::string quodLibet;  ///< where Quod Libet keeps what is the user's
    std::string searchPath; ///< of commands, as in PATH

    /// Those of the user who runs this program, and of the installation that it belongs to.
    static ConnectorFolders ofThisUser();
};

struct Connector {
    enum class State {
        lacksPackages, ///< the program is there, and what lets it load plug-ins is not
        available,
        connected,       ///< for this user
        connectedForAll, ///< by the system's package
    };

    std::string id;   ///< the program's command
    std::string name; ///< as people know the program
    State state = State::available;
    std::vector<std::string> missing; ///< names of Debian packages, and what else is lacking
    std::string restart;              ///< what makes the program notice, as a sentence
    bool isMenuOnly = false;          ///< the program cannot be followed, but can show a file in Sonarin
};

/// The connectors of the programs that are installed, and those that are left of one that was.
[[nodiscard]] std::vector<Connector> findConnectors(const ConnectorFolders& folders);

/// Puts the connector's files into the user's folders, over older ones of the same name.
[[nodiscard]] std::error_code addConnector(const ConnectorFolders& folders, std::string_view id);

/// Takes them away again; what is not there need not be.
[[nodiscard]] std::error_code removeConnector(const ConnectorFolders& folders, std::string_view id);

} // namespace sonarin
