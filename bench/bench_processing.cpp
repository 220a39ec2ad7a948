// What the processing kernels cost on one vector of 65536 points, each beside a limit measured in the same run: the
// library's bare transform, or one multiplication of every point in place.
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <cstdlib>
#include <span>

#include "processing/baseline.h"
#include "processing/fft.h"
#include "processing/fourier.h"
#include "processing/phase.h"
#include "processing/window.h"
#include "rows.h"
#include "state/vectors.h"

namespace zolt::bench {

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

constexpr const char* bare = "bare transform of the library";
constexpr const char* scale = "one multiplication in place";

constexpr const char* group = "one vector of 65536 points";

constexpr Row rows[] = {
    {group, bare, bare_transform, ""},
    {group, scale, scale_in_place, ""},
    {group, "FFT", transform, bare},
    {group, "FFT with first point and sorting", sorted_transform, bare},
    {group, "EM", weighting<WindowShape::exponential>, scale},
    {group, "GM", weighting<WindowShape::gaussian>, scale},
    {group, "PC of zero order", phasing<0, 0>, scale},
    {group, "PC of first order", phasing<2, 0>, scale},
    {group, "PC of second order", phasing<2, 1>, scale},
    {group, "BC", baseline, scale},
};

}  // namespace

std::span<const Row> vector_rows() { return rows; }

}  // namespace zolt::bench
