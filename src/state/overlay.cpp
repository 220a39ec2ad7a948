// Where the points of one spectrum stand on another.
#include "state/overlay.h"

#include <algorithm>
#include <cmath>

#include "common/file.h"
#include "common/text.h"

namespace zolt {

OverlayLook look_b;

namespace {

Companion file_b() {
    Companion b;
    b.label = "File B";
    b.name = name_of(show_b.file_a);
    b.points = show_b.cvNMRdata();
    const Dimension& dimension = show_b.dims[0];
    b.nucleus = dimension.nucleus;
    b.frequency = dimension.frequency;
    Axis axis = dimension.axis();
    axis.points = static_cast<double>(b.points.size());
    b.has_ppm = axis.has_ppm();
    b.first_ppm = axis.ppm(0);
    b.ppm_step = axis.ppm(1) - axis.ppm(0);
    b.first_hz = axis.hz(0);
    b.hz_step = axis.hz(1) - axis.hz(0);
    b.width = axis.sw;
    b.look = look_b;
    return b;
}

Companion of_buffer(const DataBuffer& buffer) {
    Companion b;
    b.number = buffer.number;
    b.label = format_text("B%d", buffer.number);
    b.name = buffer.comment;
    b.nucleus = buffer.nucleus;
    b.points = buffer.points;
    b.frequency = buffer.ppm_per_point != 0;
    b.has_ppm = b.frequency && buffer.sf > 0;
    b.first_ppm = buffer.start_ppm;
    b.ppm_step = buffer.ppm_per_point;
    // Without a frequency the values of the axis are Hz.
    const double hz = buffer.sf > 0 ? buffer.sf : 1;
    b.first_hz = buffer.start_ppm * hz;
    b.hz_step = buffer.ppm_per_point * hz;
    const double factor = buffer.amplitude * buffer.scale;
    b.look = {buffer.shown, factor, factor * buffer.dc + buffer.offset_y, buffer.color};
    return b;
}

constexpr double rounding = 1e-3;  // points

// "C13" and "13C" are the same.
std::string nucleus_key(std::string_view name) {
    std::string digits, letters;
    for (const char c : trimmed(name)) (c >= '0' && c <= '9' ? digits : letters) += upper(c);
    return digits + letters;
}

Alignment along_axis(const Companion& other, double first, double step, double points) {
    if (step == 0 || !std::isfinite(first) || !std::isfinite(step)) return {0, 1, "File A has no axis to place it on."};
    Alignment result;
    const bool by_ppm = other.has_ppm;
    result.start = ((by_ppm ? other.first_ppm : other.first_hz) - first) / step;
    result.step = (by_ppm ? other.ppm_step : other.hz_step) / step;
    if (!std::isfinite(result.start) || !std::isfinite(result.step) || result.step <= 0)
        return {0, 1, other.label + " has no axis that could be laid on that of File A."};
    // Axes that differ by roundings are the same: equal points are then added point by point.
    const double count = std::max(points, static_cast<double>(other.points.size()));
    if (std::abs(result.step - 1) * count < rounding) result.step = 1;
    result.take_roundings_out();
    return result;
}

}  // namespace

void Alignment::take_roundings_out() {
    if (step == 1 && std::abs(start - std::round(start)) < rounding) start = std::round(start);
}

std::optional<Companion> companion_of(const DataRecord& data, int number) {
    std::optional<Companion> found;
    if (number == 0) {
        if (show_b.loaded) found = file_b();
    } else {
        for (const DataBuffer& buffer : data.buffers)
            if (buffer.number == number) found = of_buffer(buffer);
    }
    if (found && found->points.empty()) found.reset();
    return found;
}

std::vector<Companion> companions_of(const DataRecord& data) {
    std::vector<Companion> all;
    const auto add = [&](int number) {
        if (auto one = companion_of(data, number)) all.push_back(*std::move(one));
    };
    add(0);
    for (const DataBuffer& buffer : data.buffers) add(buffer.number);
    return all;
}

std::optional<int> companion_number(std::string_view word) {
    static constexpr std::string_view words[] = {"B", "B1", "B2"};
    for (int number = 0; number < 3; ++number)
        if (same_word(word, words[number])) return number;
    return std::nullopt;
}

Alignment align(const DataSet& data, const Companion& other) {
    const Dimension& dimension = data.dims[0];
    const auto refused = [&](const std::string& what) { return Alignment{0, 1, other.label + what}; };
    if (other.frequency != dimension.frequency)
        return refused(other.frequency ? " is a spectrum, File A an FID." : " is an FID, File A a spectrum.");
    if (!other.nucleus.empty() && !dimension.nucleus.empty() && nucleus_key(other.nucleus) != nucleus_key(dimension.nucleus))
        return refused(" is of " + other.nucleus + ", File A of " + dimension.nucleus + ".");
    Axis axis = dimension.axis();
    axis.points = static_cast<double>(data.cvNMRdata().size());
    if (!dimension.frequency) {
        const bool timed = axis.sw > 0 && other.width > 0;
        return {0, timed ? axis.sw / other.width : 1, {}};
    }
    if (axis.has_ppm() && other.has_ppm) return along_axis(other, axis.ppm(0), axis.ppm(1) - axis.ppm(0), axis.points);
    Companion in_hz = other;
    in_hz.has_ppm = false;
    return along_axis(in_hz, axis.hz(0), axis.hz(1) - axis.hz(0), axis.points);
}

std::vector<Companion> drawn_companions(const DataSet& data) {
    std::vector<Companion> all = companions_of(data);
    std::erase_if(all, [&](const Companion& one) { return !one.look.shown || !align(data, one).refusal.empty(); });
    return all;
}

double tallest(std::span<const Complex> points) {
    float most = 0;
    for (const Complex point : points)
        if (std::isfinite(point.real())) most = std::max(most, point.real());
    return static_cast<double>(most);
}

}  // namespace zolt
