// Strips of columns, gathered into a small buffer that is padded so that its columns do not share cache sets.
#include "state/columns.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "common/buffer.h"
#include "platform/platform.h"

#ifdef _OPENMP
#include <omp.h>
#endif

namespace zolt {

namespace {

// Columns at a time: eight cache lines of each vector, fewer where columns are so long that their buffer would be large.
constexpr size_t widest_strip = 64, narrowest_strip = 8, strip_bytes = size_t{16} << 20;
constexpr size_t padding = 16;

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

// Points moved whole, two in a register: from the rows (p0 p1) and (q0 q1) to the rows (p0 q0) and (p1 q1).
using Pair = double __attribute__((vector_size(16)));

void transpose(const Complex* p, const Complex* q, Complex* low, Complex* high) {
    Pair a, b;
    std::memcpy(&a, p, sizeof a);
    std::memcpy(&b, q, sizeof b);
    const Pair first = __builtin_shufflevector(a, b, 0, 2), second = __builtin_shufflevector(a, b, 1, 3);
    std::memcpy(static_cast<void*>(low), &first, sizeof first);
    std::memcpy(static_cast<void*>(high), &second, sizeof second);
}

// The columns [first, first + count) of one family of the store, on their way through `columns`.
struct Strip {
    VectorStore& store;
    const Along& along;
    size_t outer, inner, first, count;
    Complex* columns;

    size_t column_length() const { return along.length + padding; }
    Complex* in_store(size_t place) const { return store.vector(along.vector(outer, place, inner)).data() + first; }
    Complex* in_column(size_t c, size_t place) const { return columns + c * column_length() + place; }

    // Two places of two columns at a time, as long as there are two of each.
    void gather() const {
        size_t place = 0;
        for (; place + 2 <= along.length; place += 2) {
            const Complex *a = in_store(place), *b = in_store(place + 1);
            size_t c = 0;
            for (; c + 2 <= count; c += 2) transpose(a + c, b + c, in_column(c, place), in_column(c + 1, place));
            if (c < count) *in_column(c, place) = a[c], *in_column(c, place + 1) = b[c];
        }
        if (place < along.length)
            for (size_t c = 0; c < count; ++c) *in_column(c, place) = in_store(place)[c];
    }
    void scatter() const {
        size_t place = 0;
        for (; place + 2 <= along.length; place += 2) {
            Complex *a = in_store(place), *b = in_store(place + 1);
            size_t c = 0;
            for (; c + 2 <= count; c += 2) transpose(in_column(c, place), in_column(c + 1, place), a + c, b + c);
            if (c < count) a[c] = *in_column(c, place), b[c] = *in_column(c, place + 1);
        }
        if (place < along.length)
            for (size_t c = 0; c < count; ++c) in_store(place)[c] = *in_column(c, place);
    }
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
    if (!room.allocate(threads() * per_thread)) return ColumnWork::no_memory;
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
