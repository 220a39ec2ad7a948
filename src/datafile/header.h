// The binary header of native files, types 1 and 2: its layout as bytes.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "common/bytes.h"
#include "state/dataset.h"

namespace zolt {

constexpr size_t short_header_bytes = 1032;
constexpr size_t full_header_bytes = 4104;

/// Where the slices of a native file stand.
struct NativeLayout {
    ByteOrder order = ByteOrder::little;
    int type = 2;           ///< 1 or 2
    int32_t data_type = 0;  ///< 0: floating point
    uint64_t header_bytes = 0;
    uint64_t slice_bytes = 0;  ///< with the count word of type 1
    uint64_t slices = 0;

    uint64_t slice_offset(uint64_t slice) const { return header_bytes + slice * slice_bytes; }
    uint64_t prefix_bytes() const { return type == 1 ? 4 : 0; }
    /// Whole slices in a file of `size` bytes, whatever its header promises.
    uint64_t slices_in(uint64_t size) const { return size > header_bytes ? (size - header_bytes) / slice_bytes : 0; }
};

/// The first 20 bytes say byte order and header type (outside 1 to 2: 1); false without the native marker.
bool decode_header_start(std::span<const unsigned char> bytes, NativeLayout& layout);

/// Takes a whole header (short_header_bytes or full_header_bytes by layout.type) into the data set and completes the
/// layout. An empty text on success, else what is wrong with the header.
std::string decode_header(std::span<const unsigned char> bytes, uint64_t file_bytes, NativeLayout& layout, DataRecord& data);

/// The bytes of a header of type 1 or 2.
std::vector<unsigned char> encode_header(const DataRecord& data, int type, ByteOrder order);

}  // namespace zolt
