// Integrals: their values, the ordered list, and the forms in which lists are written and read.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "state/dataset.h"

namespace zolt {

/// Sum of the real parts from start to end point, both included and in either order, times the distance between points
/// in ppm (in Hz without a spectrometer frequency). Limits outside the data count as their ends.
double integral_value(std::span<const Complex> points, const Axis& axis, int64_t start, int64_t end);

/// Adds a region (points, in either order) to one of the lists of `data`, kept in order of position, with the value that the
/// data have.
void add_integral(std::vector<Integral>& list, DataSet& data, int64_t start, int64_t end, int32_t label = 0);

/// Adds the region between two positions in the axis unit of dimension 1 to a list of the data set. False, after its
/// message, when it is outside the spectrum.
bool define_integral(std::vector<Integral>& list, DataSet& data, double from, double to, int32_t label = 0);

/// Computes every value again from the current vector, if the data have changed since. With another number of points the
/// limits move along, so that they stay at their frequencies; regions that have left the spectrum are dropped, and all of
/// them when dimension 1 has become another one or changed its domain.
void refresh_integrals(DataSet& data);

/// For commands that put the points of dimension 1 elsewhere: point p of the lists' limits is now sign * p + offset.
void move_integrals(DataSet& data, int sign, int64_t offset);

/// Two regions in place of one: up to the point before `point`, and from it. The label stays with the first.
void split_integral(std::vector<Integral>& list, DataSet& data, size_t index, int64_t point);

/// The region of the list that holds the point, the narrowest of several; nothing without one.
std::optional<size_t> integral_at(std::span<const Integral> list, int64_t point);

/// The two points between two positions in the axis unit of dimension 1, lower point first. False, after its message,
/// when one is outside the spectrum.
bool integral_range(const Dimension& dimension, double from, double to, int64_t& start, int64_t& end);

/// A point in the axis unit of dimension 1, with decimals enough for integral_range to find it again.
std::string integral_position(const Dimension& dimension, int64_t point);

/// The INTEGRALS section as the tailer has it, or with the prefixes of a JCAMP-DXB header; "" without regions.
std::string integrals_section(const DataRecord& data, bool prefixed);
/// Takes one line of the section, either form.
void read_integrals_line(std::string_view line, DataRecord& data);
/// When all are read: puts the list in order, and leaves out what would cover the spectrum hundreds of times over.
void order_integrals(DataRecord& data);

enum class ListForm { tabs, columns };
/// A list with its title, limits in the axis unit of dimension 1, values times `scale`.
std::string integral_listing(std::span<const Integral> list, const Dimension& dimension, double scale, ListForm form);

/// What the cursor readout says at a point: with the value where a region holds it.
std::string integral_readout(const DataRecord& data, int64_t point);

}  // namespace zolt
