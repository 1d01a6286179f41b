// SPDX-License-Identifier: MIT
#include "cli/commandLine.h"

#include <array>
#include <getopt.h>

namespace sonarin {

namespace {

enum Option : int { optionJson = 1, optionCover, optionForce, optionHelp, optionVersion };

constexpr std::array<option, 6> options = {{
    {"json", no_argument, nullptr, optionJson},
    {"cover", required_argument, nullptr, optionCover},
    {"force", no_argument, nullptr, optionForce},
    {"help", no_argument, nullptr, optionHelp},
    {"version", no_argument, nullptr, optionVersion},
    {nullptr, 0, nullptr, 0},
}};

std::string findProblem(const CommandLine& call, bool json, bool cover) {
    if (call.action == CommandLine::Action::help || call.action == CommandLine::Action::version) {
        return {};
    }
    if (json && cover) {
        return "--json and --cover do not go together";
    }
    if (call.force && !cover) {
        return "--force goes with --cover";
    }
    if (call.files.empty()) {
        return "no file is named";
    }
    return cover && call.files.size() != 1 ? "--cover takes one file" : std::string();
}

} // namespace

std::optional<CommandLine> parseCommandLine(int argc, char** argv, std::string* problem) {
    CommandLine call;
    bool json = false;
    bool cover = false;
    opterr = 0;
    for (;;) {
        // The program has no second thread.
        const int found =
            getopt_long(argc, argv, ":hj", options.data(), nullptr); // NOLINT(concurrency-mt-unsafe)
        if (found == -1) {
            break;
        }
        switch (found) {
        case 'j':
        case optionJson:
            json = true;
            call.action = CommandLine::Action::showJson;
            break;
        case optionCover:
            cover = true;
            call.action = CommandLine::Action::writeCover;
            call.coverTarget = optarg;
            break;
        case optionForce:
            call.force = true;
            break;
        case 'h':
        case optionHelp:
            call.action = CommandLine::Action::help;
            return call;
        case optionVersion:
            call.action = CommandLine::Action::version;
            return call;
        case ':':
            *problem = std::string(argv[optind - 1]) + " needs a value"; // NOLINT(*-pointer-arithmetic)
            return std::nullopt;
        default:
            // A short option is known by its letter, a long one by the word just passed.
            *problem = std::string("unknown option or value: ") +
                       (optopt > ' ' && optopt <= '~'
                            ? std::string{'-', static_cast<char>(optopt)}
                            : std::string(argv[optind - 1])); // NOLINT(*-pointer-arithmetic)
            return std::nullopt;
        }
    }
    call.files.assign(argv + optind, argv + argc); // NOLINT(*-pointer-arithmetic)
    *problem = findProblem(call, json, cover);
    return problem->empty() ? std::optional(std::move(call)) : std::nullopt;
}

const char* usageText() noexcept {
    return "Usage: sonarin-info FILE...\n"
           "       sonarin-info --json FILE...\n"
           "       sonarin-info --cover OUT [--force] FILE\n"
           "\n"
           "Shows the technical facts and tags of audio files.\n"
           "\n"
           "  -j, --json       print one JSON object per line per file\n"
           "      --cover OUT  write the file's cover picture to OUT (\"-\" is standard output)\n"
           "      --force      let --cover replace an existing file\n"
           "  -h, --help       show this text\n"
           "      --version    show the version\n"
           "\n"
           "Exit status: 0 when every file was read, 1 when one was not, 2 for wrong usage.\n";
}

} // namespace sonarin
