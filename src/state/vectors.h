// The vectors in memory: one aligned block of `count` vectors of `points` complex points in walking order, and the one
// loop over them.
#pragma once

#include <complex>
#include <cstddef>
#include <functional>
#include <span>
#include <type_traits>

#include "common/buffer.h"

namespace zolt {

/// A complex point: real then imaginary, two 32-bit floats.
using Complex = std::complex<float>;

class VectorStore {
public:
    /// Room for `count` vectors of `points` points, all zero; false, and the store as before, without memory.
    [[nodiscard]] bool allocate(size_t count, size_t points);
    /// The same without the zeros, for a caller who fills every point.
    [[nodiscard]] bool allocate_unset(size_t count, size_t points);

    size_t count() const { return count_; }
    size_t points() const { return points_; }
    bool empty() const { return count_ == 0; }

    std::span<Complex> vector(size_t i) {
        return i < count_ ? std::span(block_.data() + i * points_, points_) : std::span<Complex>();
    }
    std::span<const Complex> vector(size_t i) const {
        return i < count_ ? std::span(block_.data() + i * points_, points_) : std::span<const Complex>();
    }
    std::span<Complex> all() { return block_.span(); }
    std::span<const Complex> all() const { return block_.span(); }

private:
    Buffer<Complex> block_;
    size_t count_ = 0, points_ = 0;
};

/// Calls work(first, end) for all vectors at once, or, where there is much to do, part by part with progress. False when
/// it was cancelled, with the points of before put back.
bool for_each_part(VectorStore& store, const std::function<void(size_t first, size_t end)>& work);

/// Work on more bytes than this shows its progress and can be cancelled. It is done on one part after another, with the
/// points of before kept until it has ended.
extern size_t cancellable_bytes;

/// Applies a kernel to every vector of the store, as kernel(vector) or kernel(vector, index). Vectors are independent of
/// one another, so the loop runs in parallel where there are many; the result does not depend on the number of threads.
/// False, and every point as before, when the user has cancelled it.
template <class Kernel>
[[nodiscard]] bool for_each_vector(VectorStore& store, Kernel kernel) {
    return for_each_part(store, [&](size_t first, size_t end) {
#pragma omp parallel for schedule(static) if (end - first > 1)
        for (size_t i = first; i < end; ++i) {
            if constexpr (std::is_invocable_v<Kernel, std::span<Complex>, size_t>)
                kernel(store.vector(i), i);
            else
                kernel(store.vector(i));
        }
    });
}

}  // namespace zolt
