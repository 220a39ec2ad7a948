// The integral list: values from the data, section lines, listings, readouts.
#include "datafile/integrals.h"

#include <algorithm>
#include <cmath>

#include "common/numbers.h"
#include "common/text.h"
#include "platform/platform.h"

namespace zolt {

namespace {

constexpr const char* column_line = "START_PT  START_PPM END_PT  END_PPM         VALUE  LABEL POSITION\r\n";

double spacing(const Axis& axis) { return std::abs(axis.ppm(0) - axis.ppm(1)); }

void compute(Integral& region, const DataSet& data) {
    region.value = static_cast<float>(integral_value(data.cvNMRdata(), data.dims[0].axis(), region.start, region.end));
}

bool by_position(const Integral& a, const Integral& b) { return a.start < b.start; }

// New limits for the regions of both lists. What has left the spectrum altogether is dropped.
template <class Place>
void move_limits(DataSet& data, Place place) {
    const double last = data.pts1d() - 1;
    for (std::vector<Integral>* list : {&data.integrals, &data.sub_integrals}) {
        std::vector<Integral> moved;
        for (Integral region : *list) {
            const auto [low, high] = std::minmax({place(region.start), place(region.end)});
            if (!(high >= -0.5 && low <= last + 0.5)) continue;
            region.start = static_cast<int32_t>(std::lround(std::clamp(low, 0.0, last)));
            region.end = static_cast<int32_t>(std::lround(std::clamp(high, 0.0, last)));
            moved.push_back(region);
        }
        std::stable_sort(moved.begin(), moved.end(), by_position);
        *list = std::move(moved);
    }
}

bool in_points(const Dimension& dimension) { return dimension.axis_unit == unit_points || dimension.axis_unit == unit_none; }

// A new number of points: a spectrum keeps its frequencies (of points that were added or cut away, too).
void follow_grid(DataSet& data) {
    const Dimension &from = data.integral_grid, &to = data.dims[0];
    if (from.points < 1 || (from.points == to.points && from.frequency == to.frequency && from.order == to.order)) return;
    if (from.frequency != to.frequency || from.order != to.order || from.points < 2 || to.points < 2) {
        data.integrals.clear();
        data.sub_integrals.clear();
        return;
    }
    const Axis before = from.axis(), now = to.axis();
    const bool known = from.sw > 0 && to.sw > 0;
    const double ratio = (now.points - 1) / (before.points - 1);
    move_limits(data, [&](double p) { return known ? now.point_of_hz(before.hz(p)) : p * ratio; });
}

}  // namespace

double integral_value(std::span<const Complex> points, const Axis& axis, int64_t start, int64_t end) {
    const auto last = static_cast<int64_t>(points.size()) - 1;
    if (last < 0) return 0;
    const auto [low, high] = std::minmax({std::clamp<int64_t>(start, 0, last), std::clamp<int64_t>(end, 0, last)});
    double sum = 0;
    for (int64_t p = low; p <= high; ++p) sum += double{points[static_cast<size_t>(p)].real()};
    return sum * spacing(axis);
}

void add_integral(std::vector<Integral>& list, DataSet& data, int64_t start, int64_t end, int32_t label) {
    data.integral_grid = data.dims[0];
    const int64_t last = std::max(data.pts1d() - 1, 0);
    Integral region;
    region.start = static_cast<int32_t>(std::clamp<int64_t>(std::min(start, end), 0, last));
    region.end = static_cast<int32_t>(std::clamp<int64_t>(std::max(start, end), 0, last));
    region.label = label;
    compute(region, data);
    list.insert(std::upper_bound(list.begin(), list.end(), region, by_position), region);
}

void refresh_integrals(DataSet& data) {
    if (data.integrals.empty() && data.sub_integrals.empty()) return;
    follow_grid(data);
    if (data.integrals_stale)
        for (std::vector<Integral>* list : {&data.integrals, &data.sub_integrals})
            for (Integral& region : *list) compute(region, data);
    data.integral_grid = data.dims[0];
    data.integrals_stale = false;
}

void move_integrals(DataSet& data, int sign, int64_t offset) {
    move_limits(data, [=](double p) { return sign * p + static_cast<double>(offset); });
}

void split_integral(std::vector<Integral>& list, DataSet& data, size_t index, int64_t point) {
    const Integral whole = list[index];
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(index));
    add_integral(list, data, whole.start, point - 1, whole.label);
    add_integral(list, data, point, whole.end);
}

std::optional<size_t> integral_at(std::span<const Integral> list, int64_t point) {
    std::optional<size_t> found;
    int64_t narrowest = INT64_MAX;
    for (size_t i = 0; i < list.size(); ++i) {
        // A file may have the limits in either order.
        const auto [low, high] = std::minmax({int64_t{list[i].start}, int64_t{list[i].end}});
        if (point < low || point > high || high - low >= narrowest) continue;
        found = i;
        narrowest = high - low;
    }
    return found;
}

bool integral_range(const Dimension& dimension, double from, double to, int64_t& start, int64_t& end) {
    const Axis axis = dimension.axis();
    const auto point_of = [&](double position) {
        return in_points(dimension)             ? position
               : dimension.axis_unit == unit_hz ? axis.point_of_hz(position)
                                                : axis.point_of_ppm(position);
    };
    const double limits[] = {point_of(from), point_of(to)};
    const auto outside = [&](double p) { return !(p >= -0.5 && p < axis.points - 0.5); };
    if (outside(limits[0]) || outside(limits[1])) {
        refuse(format_text("Attempted to set integral range outside of spectrum\nStart = % 9.3f\nEnd   = % 9.3f\n", from, to));
        return false;
    }
    start = std::llround(std::min(limits[0], limits[1]));
    end = std::llround(std::max(limits[0], limits[1]));
    return true;
}

bool define_integral(std::vector<Integral>& list, DataSet& data, double from, double to, int32_t label) {
    int64_t start = 0, end = 0;
    if (!integral_range(data.dims[0], from, to, start, end)) return false;
    add_integral(list, data, start, end, label);
    return true;
}

std::string integral_position(const Dimension& dimension, int64_t point) {
    if (in_points(dimension)) return std::to_string(point);
    const Axis axis = dimension.axis();
    const auto value = [&](double p) { return dimension.axis_unit == unit_hz ? axis.hz(p) : axis.ppm(p); };
    const double step = std::abs(value(0) - value(1));
    const int decimals = step > 0 ? std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)) + 1, 0, 12) : 0;
    return format_text("%.*f", decimals, value(static_cast<double>(point)));
}

std::string integrals_section(const DataRecord& data, bool prefixed) {
    if (data.integrals.empty()) return {};
    const std::string prefix = prefixed ? "##$" : "";
    const Axis axis = data.dims[0].axis();
    std::string text = prefix + "INTEGRALS\r\n" + prefix + format_text("REL_VALUE = %e\r\n", double{data.rel_value});
    text += prefix + column_line;
    int number = 0;
    for (const Integral& region : data.integrals) {
        const double from = axis.ppm(region.start), to = axis.ppm(region.end);
        const double value = double{region.value} * double{data.rel_value};
        ++number;
        if (prefixed)
            text += format_text("##$ID\t%6d\t%9.3f\t%6d\t%9.3f\t%15.6f\t%3d\t%d\r\n", number, from, region.end, to, value,
                                region.label, region.start);
        else
            text += format_text("% 6d% 9.3f% 6d% 9.3f% 15.6f% 3d\r\n", region.start, from, region.end, to, value, region.label);
    }
    return text + prefix + "END_INTEGRALS\r\n";
}

namespace {

// The fields of a region line: at blanks, and by their widths where they have run together.
std::vector<std::string_view> region_fields(std::string_view line) {
    const auto fields = split_fields(line, " \t\r\n=");
    constexpr size_t widths[] = {6, 9, 6, 9, 15};
    if (fields.size() >= 6 || line.size() < 45) return fields;
    std::vector<std::string_view> cells;
    for (const size_t width : widths) {
        cells.push_back(trimmed(line.substr(0, width)));
        line.remove_prefix(width);
    }
    cells.push_back(trimmed(line));
    return cells;
}

int32_t as_point(std::string_view field) {
    return static_cast<int32_t>(std::clamp<int64_t>(integer_or_zero(field), INT32_MIN, INT32_MAX));
}

// The start point of a prefixed line. Its first number may be the region's number or the start point itself, with or
// without the start point at the end: the shift tells.
int32_t prefixed_start(const std::vector<std::string_view>& fields, const Axis& axis) {
    const int32_t first = as_point(fields[0]);
    if (fields.size() < 7) return first;
    const int32_t last = as_point(fields[6]);
    const double shift = number_or_zero(fields[1]);
    return std::abs(axis.ppm(first) - shift) < std::abs(axis.ppm(last) - shift) ? first : last;
}

}  // namespace

void read_integrals_line(std::string_view line, DataRecord& data) {
    auto fields = region_fields(line);
    if (fields.empty() || same_word(fields[0], "START_PT")) return;
    if (same_word(fields[0], "REL_VALUE")) {
        if (fields.size() > 1 && leading_number(fields[1])) data.rel_value = static_cast<float>(number_or_zero(fields[1]));
        return;
    }
    const bool prefixed = same_word(fields[0], "ID");
    if (prefixed) fields.erase(fields.begin());
    if (fields.size() < 5 || !leading_number(fields[0])) return;
    Integral region;
    region.start = prefixed ? prefixed_start(fields, data.dims[0].axis()) : as_point(fields[0]);
    region.end = as_point(fields[2]);
    // The column holds what is shown: the value times the list's scale.
    const double scale = data.rel_value != 0 ? double{data.rel_value} : 1;
    region.value = static_cast<float>(number_or_zero(fields[4]) / scale);
    region.label = fields.size() > 5 ? as_point(fields[5]) : 0;
    data.integrals.push_back(region);
    data.integral_grid = {};
}

void order_integrals(DataRecord& data) {
    std::stable_sort(data.integrals.begin(), data.integrals.end(), by_position);
    // Regions are summed point by point, again after every change: no more of them than cover the spectrum so many times.
    constexpr int64_t most_times = 256, enough_points = int64_t{1} << 24;
    const int64_t last = std::max(data.pts1d() - 1, 0), most = std::max(most_times * (last + 1), enough_points);
    int64_t covered = 0;
    const auto beyond = std::find_if(data.integrals.begin(), data.integrals.end(), [&](const Integral& region) {
        const auto [low, high] =
            std::minmax({std::clamp<int64_t>(region.start, 0, last), std::clamp<int64_t>(region.end, 0, last)});
        return (covered += high - low + 1) > most;
    });
    data.integrals.erase(beyond, data.integrals.end());
}

std::string integral_listing(std::span<const Integral> list, const Dimension& dimension, double scale, ListForm form) {
    const Axis axis = dimension.axis();
    const bool tabs = form == ListForm::tabs;
    const bool whole = std::all_of(list.begin(), list.end(), [&](const Integral& i) { return double{i.value} * scale >= 100; });
    std::string text = tabs ? "NUMBER\tFROM\tTO\tVALUE\r\n" : "NUMBER         FROM           TO        VALUE            \r\n";
    int number = 0;
    for (const Integral& region : list) {
        text += format_text(tabs ? "%4d\t" : "%6d", ++number);
        if (in_points(dimension)) {
            const long from = region.start, to = region.end;
            text += tabs ? format_text("%ld pts\t%ld pts", from, to) : format_text("%9ld pts %9ld pts", from, to);
        } else if (dimension.axis_unit == unit_hz) {
            const double from = axis.hz(region.start), to = axis.hz(region.end);
            text += tabs ? format_text("%.2f Hz\t%.2f Hz", from, to) : format_text("%9.2f Hz   %9.2f Hz", from, to);
        } else {
            const double from = axis.ppm(region.start), to = axis.ppm(region.end);
            text += tabs ? format_text("%.2f PPM\t%.2f PPM", from, to) : format_text("%9.2f PPM %9.2f PPM", from, to);
        }
        const double value = double{region.value} * scale;
        if (tabs)
            text += whole ? format_text("\t%.0f\r\n", value) : format_text("\t%.2f\r\n", value);
        else
            text += whole ? format_text("%9.0f\r\n", value) : format_text("%9.2f\r\n", value);
    }
    return text;
}

std::string integral_readout(const DataRecord& data, int64_t point) {
    const Axis axis = data.dims[0].axis();
    const auto p = static_cast<double>(point);
    const std::string place = format_text("PT=% 6ld   % 6.1f Hz   % 6.2f PPM", static_cast<long>(point), axis.hz(p), axis.ppm(p));
    const auto held = integral_at(data.integrals, point);
    if (!held) return place;
    return format_text("% 9.2f Integral   ", double{data.integrals[*held].value} * double{data.rel_value}) + place;
}

}  // namespace zolt
