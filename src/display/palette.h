// The colours of the two appearances. Texts keep a contrast of at least 4.5 to 1 to their ground.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "display/picture.h"

namespace zolt {

/// One colour, 0xRRGGBB, for every ink in the order of the enumeration.
struct Palette {
    std::array<uint32_t, ink_count> colours;
    constexpr uint32_t operator[](Ink ink) const { return colours[static_cast<size_t>(ink)]; }
};

inline constexpr Palette light_palette{{0xffffff, 0x3c4450, 0xe8ebee, 0x15467f, 0xb7791f, 0x2f7d4f, 0x7a3e6e, 0xb3392f,
                                        0x1c232c, 0xd55e00, 0x009e73, 0xcc79a7, 0x56b4e9, 0xe69f00, 0x15467f}};
inline constexpr Palette dark_palette{{0x14171b, 0xa9b3bf, 0x262c33, 0x7fb8f5, 0xd9a84e, 0x6fcf97, 0xd39ac8, 0xff8a7a,
                                       0xe6ebf0, 0xff9a4d, 0x3fd9ad, 0xe8a8cb, 0x8fd0f7, 0xf5c04a, 0x7fb8f5}};

}  // namespace zolt
