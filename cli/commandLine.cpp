// SPDX-License-Identifier: MIT
#include "cli/commandLine.h"

#include <array>
#include <charconv>
#include <getopt.h>
#include <string_view>
#include <system_error>

namespace sonarin {

namespace {

enum Option : int {
    optionJson = 1,
    optionCover,
    optionForce,
    optionNameList,
    optionRecursive,
    optionByStandard,
    optionJobs,
    optionHelp,
    optionVersion
};

constexpr auto options = std::to_array<option>({
    {"json", no_argument, nullptr, optionJson},
    {"cover", required_argument, nullptr, optionCover},
    {"force", no_argument, nullptr, optionForce},
    {"files0-from", required_argument, nullptr, optionNameList},
    {"recursive", no_argument, nullptr, optionRecursive},
    {"by-standard", no_argument, nullptr, optionByStandard},
    {"jobs", required_argument, nullptr, optionJobs},
    {"help", no_argument, nullptr, optionHelp},
    {"version", no_argument, nullptr, optionVersion},
    {nullptr, 0, nullptr, 0},
});

constexpr unsigned mostJobs = 1024;

/// The number of jobs that a text says; 0 for none that is allowed.
unsigned jobsFrom(std::string_view text) {
    unsigned jobs = 0;
    const auto [end, error] = std::from_chars(text.begin(), text.end(), jobs);
    return error == std::errc() && end == text.end() && jobs <= mostJobs ? jobs : 0;
}

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
    if (call.nameList && !call.files.empty()) {
        return "--files0-from takes no files besides";
    }
    if (call.files.empty() && !call.nameList) {
        return "no file is named";
    }
    const bool isOneFile = call.files.size() == 1 && !call.recursive && call.jobs == 0;
    return cover && !isOneFile ? "--cover takes one file" : std::string();
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
            getopt_long(argc, argv, ":hjr", options.data(), nullptr); // NOLINT(concurrency-mt-unsafe)
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
        case optionNameList:
            call.nameList = optarg;
            break;
        case 'r':
        case optionRecursive:
            call.recursive = true;
            break;
        case optionByStandard:
            call.byStandard = true;
            break;
        case optionJobs:
            call.jobs = jobsFrom(optarg);
            if (call.jobs == 0) {
                *problem = "--jobs takes a number from 1 to " + std::to_string(mostJobs);
                return std::nullopt;
            }
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

ReadOptions readOptions(const CommandLine& call, Pictures pictures) noexcept {
    return {pictures, nullptr, call.byStandard ? TagReading::byStandard : TagReading::usual};
}

const char* usageText() noexcept {
    return "Usage: sonarin-info [--json] [--recursive] [--by-standard] [--jobs N] FILE...\n"
           "       sonarin-info [--json] [--recursive] [--by-standard] [--jobs N] --files0-from LIST\n"
           "       sonarin-info --cover OUT [--force] [--by-standard] FILE\n"
           "\n"
           "Shows the technical facts and tags of audio files.\n"
           "\n"
           "  -j, --json       print one JSON object per line per file\n"
           "  -r, --recursive  take the audio files in folders, in the order of their names;\n"
           "                   links to folders are not followed\n"
           "      --files0-from LIST\n"
           "                   take the names in the file LIST (\"-\" is standard input), each\n"
           "                   ended by a zero byte, as find -print0 writes them\n"
           "      --by-standard\n"
           "                   read tags as the ID3 documents say, and MPEG durations by the\n"
           "                   encoder's header; without it texts are recognised by their bytes,\n"
           "                   as the window does\n"
           "      --jobs N     read N files at once (few: one; many: one per processor core)\n"
           "      --cover OUT  write the file's cover picture to OUT (\"-\" is standard output)\n"
           "      --force      let --cover replace an existing file\n"
           "  -h, --help       show this text\n"
           "      --version    show the version\n"
           "\n"
           "Exit status: 0 when every file was read, 1 when one was not, 2 for wrong usage.\n";
}

} // namespace sonarin
