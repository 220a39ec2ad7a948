// Regions are kept in points; stored ones in ppm or Hz, so that they hold for another spectrum too.
#include "display/view.h"

#include <algorithm>
#include <cmath>

namespace zolt {

namespace {

View view;
// What the view was made for. Another file of the same kind keeps it, so that spectra are compared region by region.
size_t subject_points = 0;
bool subject_frequency = false;

double last_point(const DataSet& data) { return static_cast<double>(data.cvNMRdata().size()) - 1; }

}  // namespace

View& view_of(const DataSet& data) {
    const size_t points = data.cvNMRdata().size();
    if (points != subject_points || data.dims[0].frequency != subject_frequency) {
        view.first = view.last = 0;
        view.height = 1;
        view.range_set = false;
        subject_points = points;
        subject_frequency = data.dims[0].frequency;
    }
    return view;
}

std::pair<double, double> shown_points(const DataSet& data) {
    const View& shown = view_of(data);
    const double end = std::max(last_point(data), 0.0);
    if (!(shown.last > shown.first)) return {0, end};
    return {std::clamp(shown.first, 0.0, end), std::clamp(shown.last, 0.0, end)};
}

void show_points(const DataSet& data, double one_end, double other_end) {
    View& shown = view_of(data);
    const double end = last_point(data);
    if (!(end > 2) || !std::isfinite(one_end) || !std::isfinite(other_end)) return show_all(data);
    double first = std::clamp(std::min(one_end, other_end), 0.0, end);
    double last = std::clamp(std::max(one_end, other_end), 0.0, end);
    if (last - first < 2) {
        const double middle = std::clamp((first + last) / 2, 1.0, end - 1);
        first = middle - 1;
        last = middle + 1;
    }
    const bool all = first <= 0 && last >= end;
    shown.first = all ? 0 : first;
    shown.last = all ? 0 : last;
}

void show_all(const DataSet& data) {
    View& shown = view_of(data);
    shown.first = shown.last = 0;
}

void pan_view(const DataSet& data, double share) {
    const auto [first, last] = shown_points(data);
    const double end = last_point(data), width = last - first;
    const double step = std::clamp(share * width, -first, std::max(end - last, -first));
    show_points(data, first + step, last + step);
}

void zoom_view(const DataSet& data, double factor, double at_point) {
    if (!(factor > 0)) return;
    const auto [first, last] = shown_points(data);
    show_points(data, at_point - (at_point - first) * factor, at_point + (last - at_point) * factor);
}

void store_region(const DataSet& data, int number) {
    const auto [first, last] = shown_points(data);
    StoredRegion& region = view_of(data).regions[static_cast<size_t>(number)];
    region.stored = true;
    region.height = view_of(data).height;
    region.on_axis = data.dims[0].frequency && data.dims[0].axis().has_ppm();
    const Axis shifts = data.dims[0].axis();
    const double end = std::max(last_point(data), 1.0);
    region.first = region.on_axis ? shifts.ppm(first) : first / end;
    region.last = region.on_axis ? shifts.ppm(last) : last / end;
}

bool recall_region(const DataSet& data, int number) {
    View& shown = view_of(data);
    const StoredRegion region = shown.regions[static_cast<size_t>(number)];
    if (!region.stored) return false;
    const double end = last_point(data);
    if (region.on_axis && data.dims[0].frequency && data.dims[0].axis().has_ppm()) {
        const Axis shifts = data.dims[0].axis();
        show_points(data, shifts.point_of_ppm(region.first), shifts.point_of_ppm(region.last));
    } else if (!region.on_axis) {
        show_points(data, region.first * end, region.last * end);
    } else {
        return false;
    }
    shown.height = region.height;
    return true;
}

const char* name_of(Traces traces) {
    constexpr const char* names[] = {"Real part", "Real and imaginary parts", "Imaginary part", "Magnitude",
                                     "Real part with its points"};
    return names[static_cast<int>(traces)];
}

}  // namespace zolt
