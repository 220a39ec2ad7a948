// Words of files in either byte order.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace zolt {

enum class ByteOrder { little, big };

constexpr ByteOrder machine_order = std::endian::native == std::endian::little ? ByteOrder::little : ByteOrder::big;

/// The 32-bit word T (int32_t, uint32_t or float) at `from`.
template <class T>
T load_word(const void* from, ByteOrder order) {
    static_assert(sizeof(T) == 4);
    uint32_t word = 0;
    std::memcpy(&word, from, 4);
    if (order != machine_order) word = __builtin_bswap32(word);
    return std::bit_cast<T>(word);
}

template <class T>
void store_word(void* to, T value, ByteOrder order) {
    static_assert(sizeof(T) == 4);
    uint32_t word = std::bit_cast<uint32_t>(value);
    if (order != machine_order) word = __builtin_bswap32(word);
    std::memcpy(to, &word, 4);
}

/// Reverses the bytes of `count` 32-bit words in place when `order` is not the machine's.
inline void to_machine_order(void* words, size_t count, ByteOrder order) {
    if (order == machine_order) return;
    char* at = static_cast<char*>(words);
    for (size_t i = 0; i < count; ++i, at += 4) store_word(at, load_word<uint32_t>(at, ByteOrder::little), ByteOrder::big);
}

}  // namespace zolt
