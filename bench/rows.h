// The benchmarks as rows of one table: each is measured beside a limit of the same run.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

namespace zolt::bench {

struct Row {
    std::string group;  ///< what data it works on: a heading of the table
    std::string name;
    std::function<void(benchmark::State& state)> run;
    std::string limit;  ///< name of the row of its group that it is compared with, "" for a limit itself
};

std::vector<Row> processing_rows();
std::vector<Row> file_rows();

}  // namespace zolt::bench
