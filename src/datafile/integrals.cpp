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

// A limit on a grid of `from` points, moved to the place of the same shift on one of `to` points.
int32_t moved_limit(int32_t point, int32_t from, int32_t to) {
    if (from < 2 || to < 2) return 0;
    return static_cast<int32_t>(std::lround(static_cast<double>(point) * (to - 1) / (from - 1)));
}

}  // namespace

double integral_value(std::span<const Complex> points, const Axis& axis, int64_t start, int64_t end) {
    const auto last = static_cast<int64_t>(points.size()) - 1;
    if (last < 0) return 0;
    const auto [low, high] = std::minmax(std::clamp<int64_t>(start, 0, last), std::clamp<int64_t>(end, 0, last));
    double sum = 0;
    for (int64_t p = low; p <= high; ++p) sum += double{points[static_cast<size_t>(p)].real()};
    return sum * spacing(axis);
}

void add_integral(std::vector<Integral>& list, const DataSet& data, int64_t start, int64_t end) {
    const int64_t last = std::max(data.pts1d() - 1, 0);
    Integral region;
    region.start = static_cast<int32_t>(std::clamp<int64_t>(std::min(start, end), 0, last));
    region.end = static_cast<int32_t>(std::clamp<int64_t>(std::max(start, end), 0, last));
    compute(region, data);
    list.insert(std::upper_bound(list.begin(), list.end(), region, by_position), region);
}

void refresh_integrals(DataSet& data) {
    if (data.integrals.empty() && data.sub_integrals.empty()) return;
    const int32_t now = data.pts1d(), before = data.integral_points;
    for (std::vector<Integral>* list : {&data.integrals, &data.sub_integrals}) {
        for (Integral& region : *list) {
            if (before > 0 && before != now) {
                region.start = moved_limit(region.start, before, now);
                region.end = moved_limit(region.end, before, now);
            }
            if (data.integrals_stale) compute(region, data);
        }
    }
    data.integral_points = now;
    data.integrals_stale = false;
}

bool integral_range(const Dimension& dimension, double from, double to, int64_t& start, int64_t& end) {
    const Axis axis = dimension.axis();
    const auto point_of = [&](double position) {
        const bool points = dimension.axis_unit == unit_points || dimension.axis_unit == unit_none;
        return points ? position : dimension.axis_unit == unit_hz ? axis.point_of_hz(position) : axis.point_of_ppm(position);
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

bool define_integral(std::vector<Integral>& list, DataSet& data, double from, double to) {
    int64_t start = 0, end = 0;
    if (!integral_range(data.dims[0], from, to, start, end)) return false;
    data.integral_points = data.pts1d();
    add_integral(list, data, start, end);
    return true;
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
    region.value = static_cast<float>(number_or_zero(fields[4]));
    region.label = fields.size() > 5 ? as_point(fields[5]) : 0;
    data.integrals.push_back(region);
    data.integral_points = data.pts1d();
}

void order_integrals(DataRecord& data) { std::stable_sort(data.integrals.begin(), data.integrals.end(), by_position); }

std::string integral_listing(std::span<const Integral> list, const Dimension& dimension, double scale, ListForm form) {
    const Axis axis = dimension.axis();
    const bool tabs = form == ListForm::tabs;
    const bool in_points = dimension.axis_unit == unit_points || dimension.axis_unit == unit_none;
    const bool whole = std::all_of(list.begin(), list.end(), [&](const Integral& i) { return double{i.value} * scale >= 100; });
    std::string text = tabs ? "NUMBER\tFROM\tTO\tVALUE\r\n" : "NUMBER         FROM           TO        VALUE            \r\n";
    int number = 0;
    for (const Integral& region : list) {
        text += format_text(tabs ? "%4d\t" : "%6d", ++number);
        if (in_points) {
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
    for (const Integral& region : data.integrals)
        if (point >= std::min(region.start, region.end) && point <= std::max(region.start, region.end))
            return format_text("% 9.2f Integral   ", double{region.value} * double{data.rel_value}) + place;
    return place;
}

}  // namespace zolt
