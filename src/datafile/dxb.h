// The JCAMP-DXB form of native files (header type 3): a JCAMP-DX text header, control-Z, then the points.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "datafile/header.h"
#include "state/dataset.h"

namespace zolt {

/// What the header's table description says of the points: first, last, smallest and largest parts.
struct DataSummary {
    Complex first, last, smallest, largest;
    bool empty = true;

    /// Takes further points, in the order of the file.
    void add(std::span<const Complex> points);
};

/// The header, control-Z included. `exported` is the form of a full export instead of a native save.
std::string encode_dxb_header(const DataRecord& data, const DataSummary& summary, bool exported);

/// The header of the same data set as JCAMP-DX text, up to its first page: no control-Z, no points. Points are written as
/// multiples of `factor`.
std::string encode_jcamp_header(const DataRecord& data, const DataSummary& summary, double factor);

/// Takes one label (without its "##") of such a header into the data set; unknown ones are passed over.
void read_dxb_label(std::string_view label, std::string_view value, DataRecord& data);

/// True when a file that begins so is of this form.
bool is_dxb_start(std::string_view start);

/// Takes a header (the text before control-Z and the byte behind it) into the data set and completes the layout. An
/// empty text on success, else what is wrong with it.
std::string decode_dxb_header(std::string_view text, uint64_t file_bytes, NativeLayout& layout, DataRecord& data);

constexpr char control_z = 0x1A;

}  // namespace zolt
