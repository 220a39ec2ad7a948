// Large blocks of memory, kept for reuse: pages fresh from the system cost more than most of what is done with them.
#include "common/buffer.h"

#include <array>
#include <cstdint>
#include <mutex>

#include <sys/mman.h>

namespace zolt {

namespace {

constexpr size_t huge_page = size_t{1} << 21;
constexpr size_t least_kept = size_t{1} << 17;   // bytes; the allocator itself reuses smaller ones
constexpr size_t most_kept = size_t{512} << 20;  // bytes, all kept blocks together

struct Block {
    void* data = nullptr;
    size_t bytes = 0;
};

// Blocks that were given back. Never destroyed: the end of the program frees everything at once.
struct Kept {
    std::array<Block, 8> blocks{};
    size_t bytes = 0;
    std::mutex mutex;
};

Kept& kept() {
    static Kept& blocks = *new Kept;
    return blocks;
}

// The smallest kept block that holds so many bytes and wastes less than half of itself.
Block reused(size_t bytes) {
    Kept& all = kept();
    const std::lock_guard lock(all.mutex);
    Block* best = nullptr;
    for (Block& block : all.blocks)
        if (block.bytes >= bytes && block.bytes / 2 <= bytes && (best == nullptr || block.bytes < best->bytes)) best = &block;
    if (best == nullptr) return {};
    all.bytes -= best->bytes;
    return std::exchange(*best, Block());
}

// Fresh pages all at once cost half of what they do one by one as they are written. Where the system cannot, they come as
// ever.
void touch_at_once(void* data, size_t bytes) {
#ifdef MADV_POPULATE_WRITE
    constexpr uintptr_t page = 4096;
    const auto begin = (reinterpret_cast<uintptr_t>(data) + page - 1) / page * page;
    const auto end = (reinterpret_cast<uintptr_t>(data) + bytes) / page * page;
    if (begin < end) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_POPULATE_WRITE);
#else
    static_cast<void>(data), static_cast<void>(bytes);
#endif
}

}  // namespace

void* allocate_block(size_t& bytes) {
    if (bytes >= least_kept) {
        const Block block = reused(bytes);
        if (block.data != nullptr) {
            bytes = block.bytes;
            return block.data;
        }
    }
    const size_t alignment = bytes >= huge_page ? huge_page : 64;
    bytes = (bytes + alignment - 1) / alignment * alignment;
    void* data = std::aligned_alloc(alignment, bytes);
    if (data != nullptr && bytes >= huge_page)
        madvise(data, bytes, MADV_HUGEPAGE);
    else if (data != nullptr && bytes >= least_kept)
        touch_at_once(data, bytes);
    return data;
}

void free_block(void* data, size_t bytes) {
    if (data == nullptr) return;
    if (bytes >= least_kept && bytes <= most_kept) {
        Kept& all = kept();
        const std::lock_guard lock(all.mutex);
        for (Block& block : all.blocks)
            if (block.data == nullptr && all.bytes + bytes <= most_kept) {
                block = {data, bytes};
                all.bytes += bytes;
                return;
            }
    }
    std::free(data);
}

}  // namespace zolt
