// What commands share that work along any dimension: weights by place, and the refusals.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>

#include "common/buffer.h"
#include "platform/platform.h"
#include "state/columns.h"
#include "state/dataset.h"

namespace zolt {

/// Weights of the points of a vector, computed in blocks.
class Weights {
public:
    static constexpr size_t block = 64;

    virtual ~Weights() = default;
    /// The weights of the points from `first` on, computed in double and rounded once.
    virtual void fill(size_t first, std::array<float, block>& weights) const = 0;
    /// Those of n points; false without memory.
    bool table(Buffer<float>& weights, size_t n) const;
};

/// Multiplies both parts of every point by its weight.
void weigh(std::span<Complex> x, const Weights& weights);
void weigh(std::span<Complex> x, std::span<const float> weights);
void scale(std::span<Complex> x, float factor);
/// How the dimension stands in the current level; after its message nothing:
/// "<name> in 2nd dimension not supported in Arrayed mode level %d".
std::optional<Along> along_or_refuse(int dimension, const char* name);

/// Points along a dimension (1 to 4) of the vectors in memory; nothing after the same message.
std::optional<size_t> points_along(int dimension, const char* name);

/// Multiplies by the weights along a dimension (1 to 4). `name` is the command's, for its refusals; `memory` the message
/// when there is no room for the weights. 1 when done.
int weigh_dimension(int dimension, const Weights& weights, const char* name, const std::string& memory);

/// What a command says that the user has cancelled; returns 0.
int cancelled(const char* name);

/// Applies a kernel to every vector in memory. 1 when done; 0, with its message, when the user has cancelled.
template <class Kernel>
int apply_to_vectors(const char* name, Kernel kernel) {
    const WaitCursor wait;
    if (!for_each_vector(show.store, kernel)) return cancelled(name);
    mark_changed();
    return 1;
}

}  // namespace zolt
