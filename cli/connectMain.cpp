// SPDX-License-Identifier: MIT
// sonarin-connect: puts the connectors into the folders of the user, tells what is there, and takes them
// away.
#include "platform/host/connectors.h"

#include <algorithm>
#include <exception>
#include <iomanip>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace sonarin {

namespace {

enum ExitStatus : int { exitDone = 0, exitNotDone = 1, exitUsage = 2 };

constexpr const char* usage =
    "Usage: sonarin-connect [--remove] [PROGRAM... | --all]\n"
    "Lets Sonarin follow what is selected in a file manager or player. Without arguments it lists the\n"
    "programs that are installed here and can be followed.\n"
    "  --all       every one of them\n"
    "  --remove    takes the connectors away again\n"
    "  -h, --help  shows this\n"
    "  --version   shows the version\n";

struct Call {
    bool all = false;
    bool remove = false;
    std::vector<std::string> programs;
};

std::string stateText(const Connector& connector) {
    switch (connector.state) {
    case Connector::State::lacksPackages: {
        std::string text;
        for (const std::string& package : connector.missing) {
            text += (text.empty() ? "first needs " : ", ") + package;
        }
        return text;
    }
    case Connector::State::available:
        return "not connected";
    case Connector::State::connected:
        return "connected";
    case Connector::State::connectedForAll:
        return "connected for all users";
    }
    return {};
}

int list(const std::vector<Connector>& connectors) {
    if (connectors.empty()) {
        std::cout << "No program is installed here that Sonarin could follow.\n";
    }
    constexpr int column = 14;
    std::cout << std::left;
    for (const Connector& connector : connectors) {
        std::cout << std::setw(column) << connector.id << std::setw(column) << connector.name
                  << stateText(connector) << '\n';
    }
    return exitDone;
}

bool complain(const std::string& about, const std::string& why) {
    std::cerr << "sonarin-connect: " << about << ": " << why << '\n';
    return false;
}

bool add(const ConnectorFolders& folders, const Connector& connector) {
    if (connector.state == Connector::State::lacksPackages) {
        return complain(connector.name, stateText(connector));
    }
    if (connector.state != Connector::State::available) {
        std::cout << connector.name << " is " << stateText(connector) << ".\n";
        return true;
    }
    if (const std::error_code failed = addConnector(folders, connector.id)) {
        return complain(connector.name, failed.message());
    }
    std::cout << connector.name << " is connected. " << connector.restart << '\n';
    return true;
}

bool remove(const ConnectorFolders& folders, const Connector& connector) {
    if (const std::error_code failed = removeConnector(folders, connector.id)) {
        return complain(connector.name, failed.message());
    }
    if (connector.state == Connector::State::connectedForAll) {
        return complain(connector.name, "stays connected for all users, by the system's package");
    }
    std::cout << connector.name << " is no longer connected. " << connector.restart << '\n';
    return true;
}

int refuse(const std::string& why) {
    std::cerr << "sonarin-connect: " << why << '\n' << usage;
    return exitUsage;
}

int carryOut(const Call& call) {
    const ConnectorFolders folders = ConnectorFolders::ofThisUser();
    const std::vector<Connector> connectors = findConnectors(folders);
    if (call.programs.empty() && !call.all) {
        return list(connectors);
    }
    int status = exitDone;
    for (const std::string& program : call.programs) {
        if (std::none_of(connectors.begin(), connectors.end(),
                         [&](const Connector& c) { return c.id == program; })) {
            complain(program, "not installed here, or not known");
            status = exitNotDone;
        }
    }
    for (const Connector& connector : connectors) {
        const bool isNamed =
            std::find(call.programs.begin(), call.programs.end(), connector.id) != call.programs.end();
        if ((call.all || isNamed) && !(call.remove ? remove : add)(folders, connector)) {
            status = exitNotDone;
        }
    }
    return status;
}

int run(int argc, char** argv) {
    Call call;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (word == "--help" || word == "-h") {
            std::cout << usage;
            return exitDone;
        }
        if (word == "--version") {
            std::cout << "sonarin-connect " SONARIN_VERSION "\n";
            return exitDone;
        }
        if (word == "--all") {
            call.all = true;
        } else if (word == "--remove") {
            call.remove = true;
        } else if (word.substr(0, 1) == "-") {
            return refuse("unknown option " + std::string(word));
        } else {
            call.programs.emplace_back(word);
        }
    }
    if (call.remove && call.programs.empty() && !call.all) {
        return refuse("--remove needs a program, or --all");
    }
    const int status = carryOut(call);
    return std::cout.flush() ? status : exitNotDone;
}

} // namespace

} // namespace sonarin

int main(int argc, char** argv) {
    try {
        return sonarin::run(argc, argv);
    } catch (const std::exception& failure) {
        std::cerr << "sonarin-connect: " << failure.what() << '\n';
        return 1;
    }
}
