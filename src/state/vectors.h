// The vectors in memory: one aligned block of `count` vectors of `points` complex points in walking order, and the one
// loop over them.
#pragma once

#include <complex>
#include <cstddef>
#include <span>

#include "common/buffer.h"

namespace zolt {

/// A complex point: real then imaginary, two 32-bit floats.
using Complex = std::complex<float>;

class VectorStore {
public:
    /// Room for `count` vectors of `points` points, all zero; false, and the store as before, without memory.
    [[nodiscard]] bool allocate(size_t count, size_t points);

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

/// Applies a kernel to every vector of the store. Vectors are independent of one another, so the loop runs in parallel
/// where there are many; the result does not depend on the number of threads.
template <class Kernel>
void for_each_vector(VectorStore& store, Kernel kernel) {
    const auto count = static_cast<std::ptrdiff_t>(store.count());
#pragma omp parallel for schedule(static) if (count > 1)
    for (std::ptrdiff_t i = 0; i < count; ++i) kernel(store.vector(static_cast<size_t>(i)));
}

}  // namespace zolt
