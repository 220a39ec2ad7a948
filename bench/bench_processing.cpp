// What the processing commands cost, typed as lines at several levels, each beside a limit measured in the same run: the
// library's bare transforms of the same vectors on the same threads, one multiplication of every point in place, or a copy.
#include <fftw3.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

#include "app/command_line.h"
#include "app/dispatcher.h"
#include "platform/silent_platform.h"
#include "rows.h"
#include "state/columns.h"
#include "state/dataset.h"

namespace zolt::bench {

namespace {

struct Shape {
    const char* group;
    int level;
    std::array<int32_t, 4> points;

    size_t vectors() const {
        return static_cast<size_t>(points[1]) * static_cast<size_t>(points[2]) * static_cast<size_t>(points[3]);
    }
};

constexpr Shape shapes[] = {
    {"one vector of 65536 points", 0, {65536, 1, 1, 1}},
    {"2D, 2048 points x 512 pairs (16 MiB)", 2, {2048, 1024, 1, 1}},
    {"3D, 1024 x 128 x 128 points (128 MiB)", 3, {1024, 128, 128, 1}},
};

// Zeros stay zeros under every command, however often it runs: nothing overflows or becomes denormal and slow.
void set_up(const Shape& shape) {
    static SilentPlatform front_end;
    set_platform(&front_end);
    show = DataSet();
    show.loaded = true;
    show.level = shape.level;
    for (size_t d = 0; d < 4; ++d) {
        show.dims[d].points = shape.points[d];
        show.dims[d].sw = 8000;
        show.dims[d].sf = 400;
    }
    show.dims[0].frequency = true;
    if (!show.store.allocate(shape.vectors(), static_cast<size_t>(shape.points[0]))) std::abort();
}

void run_line(const Shape& shape, const char* line, bool grows, benchmark::State& state) {
    set_up(shape);
    for (auto _ : state) {
        SetCommandText(std::string(">") + line);
        if (DispatchCommand() != 1) state.SkipWithError(line);
        if (!grows) continue;
        state.PauseTiming();
        set_up(shape);
        state.ResumeTiming();
    }
}

void scale_in_place(const Shape& shape, benchmark::State& state) {
    set_up(shape);
    float factor = 0.5F;
    benchmark::DoNotOptimize(factor);
    for (auto _ : state) {
        const auto count = static_cast<std::ptrdiff_t>(show.store.count());
#pragma omp parallel for schedule(static) if (count > 1)
        for (std::ptrdiff_t i = 0; i < count; ++i)
            for (Complex& point : show.store.vector(static_cast<size_t>(i))) point *= factor;
        benchmark::ClobberMemory();
    }
}

void copy(const Shape& shape, benchmark::State& state) {
    set_up(shape);
    VectorStore to;
    if (!to.allocate(2 * show.store.count(), show.store.points())) std::abort();
    for (auto _ : state) {
        const auto count = static_cast<std::ptrdiff_t>(show.store.count());
#pragma omp parallel for schedule(static) if (count > 1)
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            // As zero filling does: the points, and as many zeros.
            std::ranges::copy(show.store.vector(static_cast<size_t>(i)), to.vector(2 * static_cast<size_t>(i)).begin());
            std::ranges::fill(to.vector(2 * static_cast<size_t>(i) + 1), Complex());
        }
        benchmark::ClobberMemory();
    }
}

// As many bare transforms of contiguous vectors as the data have columns along a dimension.
void bare_transforms(const Shape& shape, int dimension, benchmark::State& state) {
    set_up(shape);
    const size_t all = show.store.all().size();
    const size_t n = dimension == 1 ? show.store.points() : along_dimension(show, dimension)->length;
    auto* data = reinterpret_cast<fftwf_complex*>(show.store.all().data());
    auto* const plan = fftwf_plan_dft_1d(static_cast<int>(n), data, data, FFTW_FORWARD, FFTW_ESTIMATE);
    for (auto _ : state) {
        const auto count = static_cast<std::ptrdiff_t>(all / n);
#pragma omp parallel for schedule(static) if (count > 1)
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            auto* x = data + static_cast<size_t>(i) * n;
            fftwf_execute_dft(plan, x, x);
        }
        benchmark::ClobberMemory();
    }
    fftwf_destroy_plan(plan);
}

constexpr const char* scaling = "one multiplication in place";
constexpr const char* copying = "copy with as many zeros";

struct Line {
    const char* line;
    int dimension;  // of transforms, else 0
    const char* limit;
    bool grows = false;
};

constexpr Line lines[] = {
    {"FT complex", 1, nullptr},
    {"FT complex 2D", 2, nullptr},
    {"FT complex 3D", 3, nullptr},
    {"EM 0.3", 0, scaling},
    {"GM 0.3", 0, scaling},
    {"SineBell 0 1 2", 0, scaling},
    {"EM 2D 0.3", 2, scaling},
    {"PC 30", 0, scaling},
    {"PC 30 40", 0, scaling},
    {"PC 30 40 5", 0, scaling},
    {"PhaseDim 2D 30 40", 2, scaling},
    {"BC", 0, scaling},
    {"SR", 0, scaling},
    {"MC", 0, scaling},
    {"LS 10", 0, scaling},
    {"SwitchAB ArBr", -2, scaling},
    {"AlternateSign 2D", 2, scaling},
    {"ZeroFill", 0, copying, true},
};

std::string bare(int dimension) { return "bare transforms along dimension " + std::to_string(dimension); }

// SwitchAB is for pairs alone.
bool possible(const Line& line, int level) {
    return line.dimension >= 0 ? line.dimension < 2 || level >= line.dimension - (line.dimension == 2 ? 1 : 0) : level == 2;
}

}  // namespace

std::vector<Row> processing_rows() {
    std::vector<Row> rows;
    for (const Shape& shape : shapes) {
        const auto add = [&](std::string name, std::function<void(benchmark::State&)> run, std::string limit) {
            rows.push_back({shape.group, std::move(name), std::move(run), std::move(limit)});
        };
        add(
            scaling, [&](benchmark::State& state) { scale_in_place(shape, state); }, "");
        add(
            copying, [&](benchmark::State& state) { copy(shape, state); }, "");
        for (const int d : {1, 2, 3})
            if (d == 1 || (shape.level > 0 && d <= std::max(shape.level, 2)))
                add(
                    bare(d), [&, d](benchmark::State& state) { bare_transforms(shape, d, state); }, "");
        for (const Line& line : lines)
            if (possible(line, shape.level))
                add(
                    line.line, [&](benchmark::State& state) { run_line(shape, line.line, line.grows, state); },
                    line.limit != nullptr ? line.limit : bare(line.dimension));
    }
    return rows;
}

}  // namespace zolt::bench
