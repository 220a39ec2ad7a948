// Runs every row and prints one table of ratios.
#include <algorithm>
#include <cstdio>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "rows.h"

namespace zolt::bench {
namespace {

std::vector<Row> all_rows() {
    std::vector<Row> rows = processing_rows();
    for (const Row& row : file_rows()) rows.push_back(row);
    return rows;
}

std::string key(const std::string& group, const std::string& name) { return group + ": " + name; }

// Keeps the fastest repetition of each row: what else the machine does only ever adds time.
class RatioTable : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& /*context*/) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            double& best = microseconds_.try_emplace(run.run_name.function_name, std::numeric_limits<double>::max()).first->second;
            best = std::min(best, run.GetAdjustedRealTime());
        }
    }
    void Finalize() override {
        std::string group;
        for (const Row& row : all_rows()) {
            const auto found = microseconds_.find(key(row.group, row.name));
            if (found == microseconds_.end()) continue;
            if (group != row.group) std::printf("\n%-40s %12s   %s\n", row.group.c_str(), "us", "ratio to");
            group = row.group;
            std::printf("%-40s %12.1f", row.name.c_str(), found->second);
            const auto limit = microseconds_.find(key(row.group, row.limit));
            if (limit != microseconds_.end()) std::printf("   %5.2f  %s", found->second / limit->second, row.limit.c_str());
            std::printf("\n");
        }
    }

private:
    std::map<std::string, double> microseconds_;
};

}  // namespace
}  // namespace zolt::bench

int main(int count, char** arguments) {
    constexpr int repetitions = 9;
    constexpr double seconds_each = 0.05;
    using namespace zolt::bench;
    benchmark::Initialize(&count, arguments);
    const auto rows = all_rows();
    for (const Row& row : rows)
        benchmark::RegisterBenchmark(key(row.group, row.name).c_str(), row.run)
            ->Unit(benchmark::kMicrosecond)
            ->UseRealTime()
            ->MinTime(seconds_each)
            ->Repetitions(repetitions);
    RatioTable table;
    benchmark::RunSpecifiedBenchmarks(&table);
    benchmark::Shutdown();
    return 0;
}
