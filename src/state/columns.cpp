// Strips of columns, gathered into a small buffer that is padded so that its columns do not share cache sets.
#include "state/columns.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "common/buffer.h"
#include "common/vectorised.h"
#include "platform/platform.h"

#ifdef _OPENMP
#include <omp.h>
#endif

namespace zolt {

namespace {

// Columns at a time: eight cache lines of each vector, fewer where columns are so long that their buffer would be large.
constexpr size_t widest_strip = 64, narrowest_strip = 8, strip_bytes = size_t{16} << 20;
constexpr size_t padding = 16;
constexpr size_t least_room = (size_t{2} << 20) / sizeof(Complex);

size_t threads() {
#ifdef _OPENMP
    return static_cast<size_t>(omp_get_max_threads());
#else
    return 1;
#endif
}

size_t thread() {
#ifdef _OPENMP
    return static_cast<size_t>(omp_get_thread_num());
#else
    return 0;
#endif
}

// A square of points, moved whole, one row in a register.
constexpr size_t side = 4;
using Row = double __attribute__((vector_size(side * sizeof(double))));
static_assert(sizeof(Complex) == sizeof(double));

// Point k of row i becomes point i of row k.
inline __attribute__((always_inline)) void transpose_square(const Complex* from, size_t from_step, Complex* to, size_t to_step) {
    Row a, b, c, d;
    std::memcpy(&a, from, sizeof a);
    std::memcpy(&b, from + from_step, sizeof b);
    std::memcpy(&c, from + 2 * from_step, sizeof c);
    std::memcpy(&d, from + 3 * from_step, sizeof d);
    const Row ab_even = __builtin_shufflevector(a, b, 0, 4, 2, 6), ab_odd = __builtin_shufflevector(a, b, 1, 5, 3, 7);
    const Row cd_even = __builtin_shufflevector(c, d, 0, 4, 2, 6), cd_odd = __builtin_shufflevector(c, d, 1, 5, 3, 7);
    a = __builtin_shufflevector(ab_even, cd_even, 0, 1, 4, 5);
    b = __builtin_shufflevector(ab_odd, cd_odd, 0, 1, 4, 5);
    c = __builtin_shufflevector(ab_even, cd_even, 2, 3, 6, 7);
    d = __builtin_shufflevector(ab_odd, cd_odd, 2, 3, 6, 7);
    std::memcpy(static_cast<void*>(to), &a, sizeof a);
    std::memcpy(static_cast<void*>(to + to_step), &b, sizeof b);
    std::memcpy(static_cast<void*>(to + 2 * to_step), &c, sizeof c);
    std::memcpy(static_cast<void*>(to + 3 * to_step), &d, sizeof d);
}

enum class Way { rows_to_columns, columns_to_rows };

// Points r, c of `rows` rows and `count` columns: rows lie row_step apart, columns column_step. Both ways go row by row, since
// rows are what lies far apart.
template <Way way>
inline __attribute__((always_inline)) void transpose(const Complex* from, Complex* to, size_t row_step, size_t column_step,
                                                     size_t rows, size_t count) {
    const size_t from_step = way == Way::rows_to_columns ? row_step : column_step;
    const size_t to_step = way == Way::rows_to_columns ? column_step : row_step;
    const auto place = [](size_t r, size_t c, size_t step) { return way == Way::rows_to_columns ? r * step + c : c * step + r; };
    const auto target = [](size_t r, size_t c, size_t step) { return way == Way::rows_to_columns ? c * step + r : r * step + c; };
    size_t r = 0;
    for (; r + side <= rows; r += side) {
        size_t c = 0;
        for (; c + side <= count; c += side)
            transpose_square(from + place(r, c, from_step), from_step, to + target(r, c, to_step), to_step);
        for (; c < count; ++c)
            for (size_t i = r; i < r + side; ++i) to[target(i, c, to_step)] = from[place(i, c, from_step)];
    }
    for (; r < rows; ++r)
        for (size_t c = 0; c < count; ++c) to[target(r, c, to_step)] = from[place(r, c, from_step)];
}

ZOLT_VECTORISED void rows_to_columns(const Complex* from, size_t row_step, size_t rows, size_t count, Complex* to,
                                     size_t column_step) {
    transpose<Way::rows_to_columns>(from, to, row_step, column_step, rows, count);
}

ZOLT_VECTORISED void columns_to_rows(const Complex* from, size_t column_step, size_t rows, size_t count, Complex* to,
                                     size_t row_step) {
    transpose<Way::columns_to_rows>(from, to, row_step, column_step, rows, count);
}

// The columns [first, first + count) of one family of the store, on their way through `columns`.
struct Strip {
    VectorStore& store;
    const Along& along;
    size_t outer, inner, first, count;
    Complex* columns;

    size_t column_length() const { return along.length + padding; }
    Complex* in_store() const { return store.vector(along.vector(outer, 0, inner)).data() + first; }
    size_t row_step() const { return along.inner * store.points(); }

    void gather() const { rows_to_columns(in_store(), row_step(), along.length, count, columns, column_length()); }
    void scatter() const { columns_to_rows(columns, column_length(), along.length, count, in_store(), row_step()); }
};

}  // namespace

std::optional<Along> along_dimension(const DataRecord& data, int dimension) {
    const auto count = [&](int d) { return static_cast<size_t>(std::max(data.dims[static_cast<size_t>(d - 1)].points, 0)); };
    const size_t n2 = count(2), n3 = count(3), n4 = count(4);
    if (dimension == 2 && data.level == 1) return Along{1, n2, 1};
    if (dimension == 2 && data.level == 2) return Along{1, n2 / 2, 2};
    if (dimension == 2 && data.level == 3) return Along{n3, n2, 1};
    if (dimension == 2 && data.level == 4) return Along{n4 * n3, n2, 1};
    if (dimension == 3 && data.level == 3) return Along{1, n3, n2};
    if (dimension == 3 && data.level == 4) return Along{n4, n3, n2};
    if (dimension == 4 && data.level == 4) return Along{1, n4, n3 * n2};
    return std::nullopt;
}

ColumnWork for_each_column(VectorStore& store, const Along& along, const std::function<void(std::span<Complex>)>& kernel) {
    const size_t strip = std::clamp(strip_bytes / (sizeof(Complex) * (along.length + padding)), narrowest_strip, widest_strip);
    const size_t strips = (store.points() + strip - 1) / strip, families = along.outer * along.inner;
    const size_t per_thread = strip * (along.length + padding);
    Buffer<Complex> room, before;
    // No less than one huge page: the columns of a strip lie on pages of their own otherwise.
    if (!room.allocate(std::max(threads() * per_thread, least_room))) return ColumnWork::no_memory;
    const auto work = [&](size_t task) {
        const size_t family = task / strips, first = task % strips * strip;
        const Strip one{store,
                        along,
                        family / along.inner,
                        family % along.inner,
                        first,
                        std::min(strip, store.points() - first),
                        room.data() + thread() * per_thread};
        one.gather();
        for (size_t c = 0; c < one.count; ++c) kernel({one.columns + c * one.column_length(), along.length});
        one.scatter();
    };
    const size_t tasks = families * strips;
    const bool cancellable = store.all().size_bytes() >= cancellable_bytes && before.allocate(store.all().size());
    if (cancellable) std::copy(store.all().begin(), store.all().end(), before.data());
    const size_t parts = cancellable ? 64 : 1;
    for (size_t part = 0; part < parts; ++part) {
        const size_t end = tasks * (part + 1) / parts;
#pragma omp parallel for schedule(static)
        for (size_t task = tasks * part / parts; task < end; ++task) work(task);
        if (end < tasks && !platform().progress(static_cast<double>(end) / static_cast<double>(tasks))) {
            std::copy_n(before.data(), before.size(), store.all().begin());
            return ColumnWork::cancelled;
        }
    }
    return ColumnWork::done;
}

}  // namespace zolt
