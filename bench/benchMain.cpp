// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

/// Prints each benchmark's best time and its ratio to the best time of its group's floor: in "group/case",
/// the floor is "group/floor". The best of all repetitions is what the machine's other work disturbs least.
class RatioReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& /*context*/) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) {
                continue;
            }
            const std::string name = run.run_name.function_name;
            const double time = run.real_accumulated_time / static_cast<double>(run.iterations);
            if (best_.find(name) == best_.end()) {
                names_.push_back(name);
                best_[name] = time;
            }
            best_[name] = std::min(best_[name], time);
            const auto files = run.counters.find("files");
            files_[name] = files == run.counters.end() ? 1.0 : files->second.value;
        }
    }

    void Finalize() override {
        std::printf("%-44s %14s %8s\n", "benchmark", "time", "ratio");
        for (const std::string& name : names_) {
            const auto floor = best_.find(name.substr(0, name.find('/')) + "/floor");
            std::printf("%-44s %11.2f us", name.c_str(), best_[name] / files_[name] * 1e6);
            if (floor != best_.end()) {
                std::printf(" %7.2fx", best_[name] / floor->second);
            }
            std::printf("\n");
        }
    }

private:
    std::vector<std::string> names_;
    std::map<std::string, double> best_;
    std::map<std::string, double> files_;
};

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
