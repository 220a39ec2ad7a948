// Large aligned arrays whose allocation can fail without ending the program.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <span>
#include <type_traits>
#include <utility>

namespace zolt {

/// A block of at least so many bytes, aligned to 64; those of many pages are reused, large ones lie on huge pages. nullptr
/// without memory. `bytes` becomes what it holds.
void* allocate_block(size_t& bytes);
void free_block(void* data, size_t bytes);

/// A move-only array of plain values.
template <class T>
class Buffer {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    Buffer() = default;
    ~Buffer() { free_block(data_, bytes_); }
    Buffer(Buffer&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)),
          size_(std::exchange(other.size_, 0)),
          bytes_(std::exchange(other.bytes_, 0)) {}
    Buffer& operator=(Buffer&& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(bytes_, other.bytes_);
        return *this;
    }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    /// Room for `count` values, not initialised; false, and the old content kept, when there is no memory.
    [[nodiscard]] bool allocate(size_t count) {
        if (count > static_cast<size_t>(-1) / 4 / sizeof(T)) return false;
        size_t bytes = count * sizeof(T);
        void* fresh = bytes > 0 ? allocate_block(bytes) : nullptr;
        if (count > 0 && fresh == nullptr) return false;
        free_block(data_, bytes_);
        data_ = static_cast<T*>(fresh);
        size_ = count;
        bytes_ = bytes;
        return true;
    }
    [[nodiscard]] bool allocate_zeroed(size_t count) {
        if (!allocate(count)) return false;
        if (count > 0) std::memset(static_cast<void*>(data_), 0, count * sizeof(T));
        return true;
    }

    T* data() { return data_; }
    const T* data() const { return data_; }
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    T& operator[](size_t i) { return data_[i]; }
    const T& operator[](size_t i) const { return data_[i]; }
    std::span<T> span() { return {data_, size_}; }
    std::span<const T> span() const { return {data_, size_}; }

private:
    T* data_ = nullptr;
    size_t size_ = 0, bytes_ = 0;
};

}  // namespace zolt
