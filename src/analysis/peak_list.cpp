// Lists of peaks are kept in order of their points.
#include "analysis/peak_list.h"

#include <algorithm>
#include <cmath>

#include "common/text.h"
#include "config/settings.h"
#include "state/session.h"

namespace zolt {

namespace {

bool by_point(const Peak& a, const Peak& b) { return a.point < b.point; }
bool is_2d(const Peak& peak) { return peak.point_2 >= 0; }

}  // namespace

HeightScale height_scale(const DataSet& data, const PeakOptions& options) {
    HeightScale scale;
    for (const Complex& point : data.cvNMRdata()) {
        const double value = double{options.negative ? std::abs(point.real()) : point.real()};
        if (std::isfinite(value)) scale.tallest = std::max(scale.tallest, value);
    }
    scale.noise = noise_level(data.cvNMRdata());
    return scale;
}

double minimum_height(const HeightScale& scale, const PeakOptions& options) {
    switch (options.height_unit) {
        case HeightUnit::intensity:
            return options.height;
        case HeightUnit::percent:
            return options.height / 100 * scale.tallest;
        case HeightUnit::noise:
            return options.height * scale.noise;
        case HeightUnit::automatic:
            break;
    }
    return std::max(5 * scale.noise, 0.02 * scale.tallest);
}

std::string height_text(const HeightScale& scale, double height) {
    std::string text = format_text("%.4g", height), both;
    if (scale.tallest > 0) both = format_text("%.3g %% of the tallest", 100 * height / scale.tallest);
    if (scale.noise > 0) both += format_text("%s%.3g times the noise", both.empty() ? "" : ", ", height / scale.noise);
    return both.empty() ? text : text + " (" + both + ")";
}

Peak peak_at(const DataSet& data, double point, double height) {
    const Axis axis = data.dims[0].axis();
    Peak peak;
    peak.point = point;
    peak.hz = axis.hz(point);
    peak.ppm = axis.ppm(point);
    peak.intensity = height;
    return peak;
}

std::vector<Peak> peaks_between(const DataSet& data, const PeakOptions& options, double first, double last, double height) {
    const auto vector = data.cvNMRdata();
    std::vector<Peak> list;
    for (const FoundPeak& found : find_peaks(vector, noise_level(vector), options.negative, setting_switch("INTERPOLATE_PEAKS")))
        if (std::abs(found.height) >= height && found.point >= first && found.point <= last)
            list.push_back(peak_at(data, found.point, found.height));
    return list;
}

void add_peak(DataSet& data, const Peak& peak) {
    std::erase_if(data.peaks, [&](const Peak& old) { return is_2d(old) || std::abs(old.point - peak.point) < 0.5; });
    data.peaks.insert(std::upper_bound(data.peaks.begin(), data.peaks.end(), peak, by_point), peak);
}

int nearest_peak(const std::vector<Peak>& list, double point) {
    int nearest = -1;
    double distance = INFINITY;
    for (size_t i = 0; i < list.size(); ++i) {
        if (is_2d(list[i]) || !(std::abs(list[i].point - point) < distance)) continue;
        nearest = static_cast<int>(i);
        distance = std::abs(list[i].point - point);
    }
    return nearest;
}

namespace {

// Moves the peaks to the tops of now; those without one are dropped.
void follow_tops(DataSet& data) {
    constexpr double reach = 2;
    const auto vector = data.cvNMRdata();
    const bool negative = std::any_of(data.peaks.begin(), data.peaks.end(), [](const Peak& peak) { return peak.intensity < 0; });
    const auto tops = find_peaks(vector, noise_level(vector), negative, setting_switch("INTERPOLATE_PEAKS"));
    std::erase_if(data.peaks, [&](Peak& peak) {
        const FoundPeak* best = nullptr;
        auto top = std::lower_bound(tops.begin(), tops.end(), peak.point - reach,
                                    [](const FoundPeak& found, double point) { return found.point < point; });
        for (; top != tops.end() && top->point <= peak.point + reach; ++top)
            if ((top->height < 0) == (peak.intensity < 0) &&
                (best == nullptr || std::abs(top->point - peak.point) < std::abs(best->point - peak.point)))
                best = &*top;
        if (best == nullptr) return true;
        peak.point = best->point;
        peak.intensity = best->height;
        return false;
    });
}

}  // namespace

void refresh_peaks(DataSet& data) {
    PeakOptions& options = session.peaks;
    if (options.line && data.loaded) options.line_at = minimum_height(height_scale(data, options), options);
    if (data.peaks.empty() || std::any_of(data.peaks.begin(), data.peaks.end(), is_2d)) return;
    const Dimension& dimension = data.dims[0];
    const PeakOrigin now = {data.pts1d(), dimension.frequency, dimension.sf, dimension.sw, dimension.offset};
    const PeakOrigin before = data.peak_origin;
    const bool known = before.points > 0;
    if (known && (before.points != now.points || before.frequency != now.frequency)) data.peaks.clear();
    const bool moved = known && (before != now || data.peaks_stale == PeaksStale::points);
    if (data.peaks_stale == PeaksStale::points) follow_tops(data);
    for (Peak& peak : data.peaks) {
        if (data.peaks_stale == PeaksStale::heights) peak.intensity = height_at(data.cvNMRdata(), peak.point);
        if (!moved) continue;
        peak.hz = dimension.axis().hz(peak.point);
        peak.ppm = dimension.axis().ppm(peak.point);
    }
    data.peak_origin = now;
    data.peaks_stale = PeaksStale::no;
}

std::string peak_table(const DataSet& data, const std::vector<Peak>& list, bool tabs) {
    const bool ppm = data.dims[0].axis().has_ppm();
    double most = 0;
    for (const Peak& peak : list) most = std::max(most, std::abs(peak.intensity));
    std::string text = tabs ? "Peak\tPoint\tHz\tppm\tHeight\tRelative %\tLabel\r\n"
                            : "Peak      Point          Hz       ppm        Height  Relative %  Label\r\n";
    int number = 0;
    for (const Peak& peak : list) {
        const double share = most > 0 ? 100 * peak.intensity / most : 0;
        const std::string shift = ppm ? format_text("%.4f", peak.ppm) : std::string("No SF1");
        text += tabs ? format_text("%d\t%.2f\t%.3f\t%s\t%.6g\t%.3f\t", ++number, peak.point, peak.hz, shift.c_str(), peak.intensity,
                                   share)
                     : format_text("%4d %10.2f %11.3f %9s %13.6g %11.3f  ", ++number, peak.point, peak.hz, shift.c_str(),
                                   peak.intensity, share);
        text += one_line(peak.label);
        text.resize(tabs ? text.size() : text.find_last_not_of(' ') + 1);
        text += "\r\n";
    }
    return text;
}

}  // namespace zolt
