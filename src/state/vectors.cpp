// Allocation of the vector store.
#include "state/vectors.h"

#include <utility>

namespace zolt {

bool VectorStore::allocate(size_t count, size_t points) {
    if (points != 0 && count > static_cast<size_t>(-1) / 64 / points) return false;
    Buffer<Complex> fresh;
    if (!fresh.allocate_zeroed(count * points)) return false;
    block_ = std::move(fresh);
    count_ = count;
    points_ = points;
    return true;
}

}  // namespace zolt
