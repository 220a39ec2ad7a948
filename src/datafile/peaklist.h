// The peak list: its section in native files of every type, and the short listing.
#pragma once

#include <string>
#include <string_view>

#include "state/dataset.h"

namespace zolt {

/// The PEAKLIST section as the tailer has it, or with the prefixes of a JCAMP-DXB header; "" without peaks. Frequencies
/// and shifts follow from the peaks' points.
std::string peaklist_section(const DataRecord& data, bool prefixed);
/// Takes one line of the section, either form. The title line and marked lines say whether the columns are those of 2D
/// peaks; `two_dimensions` remembers it from line to line.
void read_peaklist_line(std::string_view line, DataRecord& data, bool& two_dimensions);

/// The short listing: number, shifts, intensity relative to the tallest (100), label.
std::string peak_listing(const DataRecord& data);

}  // namespace zolt
