// What the processing kernels cost on one vector of 65536 points, each beside a limit measured in the same run: the
// library's bare transform, or one multiplication of every point in place. Prints one table of ratios.
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "processing/baseline.h"
#include "processing/fft.h"
#include "processing/fourier.h"
#include "processing/phase.h"
#include "processing/window.h"
#include "state/vectors.h"

namespace zolt {

namespace {

constexpr size_t points = 65536;
constexpr double sweep_width = 8000, line_broadening = 0.3;

// Zeros stay zeros under every kernel, however often it runs: nothing overflows or becomes denormal and slow.
std::span<Complex> vector_of_zeros() {
    static VectorStore store;
    static const bool allocated = store.allocate(1, points);
    if (!allocated) std::abort();
    return store.vector(0);
}

void bare_transform(benchmark::State& state) {
    auto* data = reinterpret_cast<fftwf_complex*>(vector_of_zeros().data());
    auto* const plan = fftwf_plan_dft_1d(static_cast<int>(points), data, data, FFTW_FORWARD, FFTW_ESTIMATE);
    for (auto _ : state) {
        fftwf_execute(plan);
        benchmark::ClobberMemory();
    }
    fftwf_destroy_plan(plan);
}

void scale_in_place(benchmark::State& state) {
    const auto vector = vector_of_zeros();
    float factor = 0.5F;
    benchmark::DoNotOptimize(factor);
    for (auto _ : state) {
        for (Complex& point : vector) point *= factor;
        benchmark::ClobberMemory();
    }
}

void transform(benchmark::State& state) {
    const auto vector = vector_of_zeros();
    for (auto _ : state) benchmark::DoNotOptimize(float_fft_4_2(vector.data(), points, -1));
}

void sorted_transform(benchmark::State& state) {
    const auto vector = vector_of_zeros();
    for (auto _ : state) benchmark::DoNotOptimize(forward_complex_ft(vector, true));
}

template <WindowShape shape>
void weighting(benchmark::State& state) {
    const auto vector = vector_of_zeros();
    const Window window(shape, line_broadening, 1 / sweep_width, points);
    for (auto _ : state) {
        weigh(vector, window);
        benchmark::ClobberMemory();
    }
}

// Radians.
template <int first_order, int second_order>
void phasing(benchmark::State& state) {
    const auto vector = vector_of_zeros();
    const Rotation rotation(0.5, first_order, second_order, 0, points);
    for (auto _ : state) {
        rotate(vector, rotation);
        benchmark::ClobberMemory();
    }
}

void baseline(benchmark::State& state) {
    const auto vector = vector_of_zeros();
    for (auto _ : state) benchmark::DoNotOptimize(correct_linear_baseline(vector, points / 20, 0));
}

struct Row {
    const char* name;
    void (*run)(benchmark::State& state);
    const char* limit;  // name of the row it is compared with, "" for a limit itself
};

constexpr const char* bare = "bare transform of the library";
constexpr const char* scale = "one multiplication in place";

constexpr Row rows[] = {
    {bare, bare_transform, ""},
    {scale, scale_in_place, ""},
    {"FFT", transform, bare},
    {"FFT with first point and sorting", sorted_transform, bare},
    {"EM", weighting<WindowShape::exponential>, scale},
    {"GM", weighting<WindowShape::gaussian>, scale},
    {"PC of zero order", phasing<0, 0>, scale},
    {"PC of first order", phasing<2, 0>, scale},
    {"PC of second order", phasing<2, 1>, scale},
    {"BC", baseline, scale},
};

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
        std::printf("%-34s %10s   %s\n", "one vector of 65536 points", "us", "ratio to");
        for (const Row& row : rows) {
            const auto found = microseconds_.find(row.name);
            if (found == microseconds_.end()) continue;
            std::printf("%-34s %10.1f", row.name, found->second);
            const auto limit = microseconds_.find(row.limit);
            if (limit != microseconds_.end()) std::printf("   %5.2f  %s", found->second / limit->second, row.limit);
            std::printf("\n");
        }
    }

private:
    std::map<std::string, double> microseconds_;
};

}  // namespace

}  // namespace zolt

int main(int count, char** arguments) {
    constexpr int repetitions = 9;
    constexpr double seconds_each = 0.05;
    benchmark::Initialize(&count, arguments);
    for (const zolt::Row& row : zolt::rows)
        benchmark::RegisterBenchmark(row.name, row.run)
            ->Unit(benchmark::kMicrosecond)
            ->Repetitions(repetitions)
            ->MinTime(seconds_each);
    zolt::RatioTable table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return 0;
}
