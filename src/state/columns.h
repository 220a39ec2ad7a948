// The other dimensions of the vectors in memory: how they stand in the store, and the one loop over their columns.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>

#include "state/dataset.h"

namespace zolt {

/// The vectors of a level as an array [outer][length][inner], of which `length` counts along a dimension.
struct Along {
    size_t outer = 1, length = 1, inner = 1;

    /// Place along the dimension of a vector of the store.
    size_t place(size_t vector) const { return vector / inner % length; }
    size_t vector(size_t o, size_t place, size_t i) const { return (o * length + place) * inner + i; }
};

/// How dimension 2, 3 or 4 stands in the vectors of the current level; nothing where the level does not hold it. At level
/// 2 the A vectors of all pairs are one family along dimension 2 and the B vectors another.
std::optional<Along> along_dimension(const DataRecord& data, int dimension);

/// How work on columns ended. Cancelled or without memory, every point is as before.
enum class ColumnWork { done, cancelled, no_memory };

/// Gathers the columns along a dimension, some at a time, and applies kernel(column) to each, whose `length` points lie side
/// by side; then puts them back. In parallel, with the same result for any number of threads.
ColumnWork for_each_column(VectorStore& store, const Along& along, const std::function<void(std::span<Complex>)>& kernel);

}  // namespace zolt
