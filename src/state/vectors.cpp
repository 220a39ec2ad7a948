// Allocation of the vector store, and work on it in parts.
#include "state/vectors.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "platform/platform.h"

namespace zolt {

namespace {

// The threads of a loop wait asleep for the next one: by default they would spin and take the time of whatever else the
// machine has to do. The runtime reads this once, before main; the user's own setting goes first.
[[gnu::constructor(101)]] void wait_asleep() { ::setenv("OMP_WAIT_POLICY", "passive", 0); }

}  // namespace

size_t cancellable_bytes = size_t{512} << 20;

bool VectorStore::allocate_unset(size_t count, size_t points) {
    if (points != 0 && count > static_cast<size_t>(-1) / 64 / points) return false;
    Buffer<Complex> fresh;
    if (!fresh.allocate(count * points)) return false;
    block_ = std::move(fresh);
    count_ = count;
    points_ = points;
    return true;
}

bool VectorStore::allocate(size_t count, size_t points) {
    VectorStore fresh;
    if (!fresh.allocate_unset(count, points)) return false;
    std::fill(fresh.all().begin(), fresh.all().end(), Complex());
    *this = std::move(fresh);
    return true;
}

bool for_each_part(VectorStore& store, const std::function<void(size_t first, size_t end)>& work) {
    constexpr size_t parts = 64;
    Buffer<Complex> before;
    // Without the memory to go back there is no way back: the work is done in one go.
    if (store.count() < 2 || store.all().size_bytes() < cancellable_bytes || !before.allocate(store.all().size())) {
        work(0, store.count());
        return true;
    }
    for (size_t part = 0; part < parts; ++part) {
        const size_t first = store.count() * part / parts, end = store.count() * (part + 1) / parts;
        if (first == end) continue;
        const auto points = store.all().subspan(first * store.points(), (end - first) * store.points());
        std::copy(points.begin(), points.end(), before.data() + first * store.points());
        work(first, end);
        if (end < store.count() && !platform().progress(static_cast<double>(end) / static_cast<double>(store.count()))) {
            std::copy_n(before.data(), end * store.points(), store.all().begin());
            return false;
        }
    }
    return true;
}

}  // namespace zolt
