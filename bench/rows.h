// The benchmarks as rows of one table: each is measured beside a limit of the same run.
#pragma once

#include <benchmark/benchmark.h>

#include <span>

namespace zolt::bench {

struct Row {
    const char* group;  ///< what data it works on: a heading of the table
    const char* name;
    void (*run)(benchmark::State& state);
    const char* limit;  ///< name of the row of its group that it is compared with, "" for a limit itself
};

std::span<const Row> vector_rows();
std::span<const Row> file_rows();

}  // namespace zolt::bench
