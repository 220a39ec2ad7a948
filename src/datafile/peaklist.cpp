// One writer for the forms of the peak list, and their reader.
#include "datafile/peaklist.h"

#include <algorithm>
#include <cmath>

#include "common/numbers.h"
#include "common/text.h"

namespace zolt {

namespace {

constexpr const char* title_1d = "LINE         HZ        PPM   INTENSITY    REL_INT     XOFFSET     YOFFSET   HorV  LABEL\r\n";
constexpr const char* title_2d = "LINE        PPM1       PPM2  INTENSITY       AREA     XOFFSET     YOFFSET   HorV  LABEL\r\n";
constexpr size_t longest_label = 127;

bool is_2d(const Peak& peak) { return peak.point_2 >= 0; }
bool is_2d(const DataRecord& data) {
    return std::any_of(data.peaks.begin(), data.peaks.end(), [](const Peak& p) { return is_2d(p); });
}

double tallest(const DataRecord& data) {
    double most = 0;
    for (const Peak& peak : data.peaks) most = std::max(most, std::abs(peak.intensity));
    return most;
}

// Intensity as a share of the tallest peak's, in percent.
double relative(const Peak& peak, double most) { return most > 0 ? 100 * peak.intensity / most : 0; }

// Two decimals, as the columns have them, unless they would lose a small height.
std::string height_cell(double height) {
    const std::string cell = format_text("% 9.2f", height);
    return std::abs(number_or_zero(cell) - height) <= 1e-3 * std::abs(height) ? cell : format_text("% 9.5g", height);
}

std::string tail(const Peak& peak) {
    return format_text("   % 9.0f   % 9.0f% 7d  ", peak.offset_x, peak.offset_y, peak.horizontal) + one_line(peak.label) + "\r\n";
}

}  // namespace

std::string peaklist_section(const DataRecord& data, bool prefixed) {
    if (data.peaks.empty()) return {};
    const bool two = is_2d(data);
    const std::string prefix = prefixed ? "##$" : "", mark = !prefixed ? "" : two ? "##$DP2 " : "##$DP ";
    const Axis axis = data.dims[0].axis(), axis_2 = data.dims[1].axis();
    const double most = tallest(data);
    std::string text = prefix + "PEAKLIST\r\n" + prefix + (two ? title_2d : title_1d);
    int number = 0;
    for (const Peak& peak : data.peaks) {
        text += mark + format_text("% 3d", ++number);
        if (two)
            text += format_text("   % 9.3f  % 9.3f  %s  % 9.2f", axis.ppm(peak.point), axis_2.ppm(peak.point_2),
                                height_cell(peak.intensity).c_str(), peak.area);
        else
            text += format_text("   % 9.3f  % 9.3f   %s  % 9.3f", axis.hz(peak.point), axis.ppm(peak.point),
                                height_cell(peak.intensity).c_str(), relative(peak, most));
        text += tail(peak);
    }
    return text + prefix + "END_PEAKLIST\r\n";
}

namespace {

// The first `count` fields of a line and, as the last, all that stands behind them.
std::vector<std::string_view> fields_and_rest(std::string_view line, size_t count) {
    constexpr std::string_view blanks = ", \t\r\n=";
    std::vector<std::string_view> fields;
    while (fields.size() < count) {
        const size_t start = line.find_first_not_of(blanks);
        if (start == std::string_view::npos) return fields;
        const size_t end = std::min(line.find_first_of(blanks, start), line.size());
        fields.push_back(line.substr(start, end - start));
        line.remove_prefix(end);
    }
    fields.push_back(trimmed(line));
    return fields;
}

Peak peak_of(const std::vector<std::string_view>& fields, bool two_dimensions, const DataRecord& data) {
    const Axis axis = data.dims[0].axis(), axis_2 = data.dims[1].axis();
    const auto value = [&](size_t i) { return i < fields.size() ? number_or_zero(fields[i]) : 0.0; };
    Peak peak;
    if (two_dimensions) {
        peak.ppm = value(1);
        peak.point = axis.point_of_ppm(peak.ppm);
        peak.hz = axis.hz(peak.point);
        peak.ppm_2 = value(2);
        peak.point_2 = std::max(axis_2.point_of_ppm(peak.ppm_2), 0.0);
        peak.area = value(4);
    } else {
        peak.hz = value(1);
        peak.ppm = value(2);
        peak.point = axis.point_of_hz(peak.hz);
    }
    peak.intensity = value(3);
    peak.offset_x = value(5);
    peak.offset_y = value(6);
    peak.horizontal = value(7) != 0 ? 1 : 0;
    if (fields.size() > 8) peak.label = cut(fields[8], longest_label);
    return peak;
}

}  // namespace

void read_peaklist_line(std::string_view line, DataRecord& data, bool& two_dimensions) {
    constexpr size_t numbers = 8;
    auto fields = fields_and_rest(line, numbers);
    if (fields.empty()) return;
    if (same_word(fields[0], "LINE")) two_dimensions = fields.size() > 1 && same_word(fields[1], "PPM1");
    if (same_word(fields[0], "DP") || same_word(fields[0], "DP2")) {
        two_dimensions = same_word(fields[0], "DP2");
        fields = fields_and_rest(line.substr(static_cast<size_t>(fields[0].end() - line.begin())), numbers);
    }
    if (fields.size() < 4 || !leading_number(fields[0])) return;
    data.peaks.push_back(peak_of(fields, two_dimensions, data));
}

std::string peak_listing(const DataRecord& data) {
    const bool two = is_2d(data);
    const Axis axis = data.dims[0].axis(), axis_2 = data.dims[1].axis();
    const double most = tallest(data);
    std::string text = two ? "2D\r\nPEAK   PPM1   PPM2   REL_INT   LABEL\r\n" : "1D\r\nPEAK   PPM   REL_INT   LABEL\r\n";
    const auto shift = [](const Axis& of, double point, const char* missing) {
        return of.has_ppm() ? format_text("% 9.3f", of.ppm(point)) : std::string(missing);
    };
    int number = 0;
    for (const Peak& peak : data.peaks) {
        text += format_text("% 3d  ", ++number) + shift(axis, peak.point, "No SF1");
        if (two) text += "  " + shift(axis_2, peak.point_2, "No SF2");
        text += format_text("  % 9.3f  ", relative(peak, most)) + one_line(peak.label) + "\r\n";
    }
    return text;
}

}  // namespace zolt
