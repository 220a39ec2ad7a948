// Lines are found in the power spectrum, which no phase changes, and fitted one by one with a complex Lorentzian.
#include "processing/auto_phase_lines.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace zolt {

namespace {

using Value = std::complex<double>;

constexpr size_t fewest_bins = 64;
constexpr size_t most_peaks = 256;     // of one bin width
constexpr double widest = 3.2;         // half width at half height in bins; broader lines are fitted in wider bins
constexpr double narrowest = 0.75;     // narrower lines are fitted in narrower bins
constexpr double certain_phase = 0.5;  // radians; a fit that knows its phase worse is of no use

Value inverse(Value a) { return std::conj(a) / std::norm(a); }

// Standard deviation about the straight line through a section, real and imaginary parts together.
double deviation(std::span<const Value> x) {
    const auto n = static_cast<double>(x.size());
    Value sum = 0, slope = 0;
    double squares = 0, spread = 0;
    for (size_t i = 0; i < x.size(); ++i) {
        const double t = static_cast<double>(i) - (n - 1) / 2;
        sum += x[i];
        slope += t * x[i];
        spread += t * t;
        squares += std::norm(x[i]);
    }
    const double rest = squares - std::norm(sum) / n - std::norm(slope) / spread;
    return std::sqrt(std::max(rest, 0.0) / (2 * (n - 2)));
}

// A peak stands this many times above the noise: of all bins, chance makes one peak as high in twenty spectra.
double detection(const BinnedSpectrum& spectrum) { return std::sqrt(2 * std::log(20 * static_cast<double>(spectrum.bins.size()))); }

std::vector<size_t> find_peaks(const BinnedSpectrum& spectrum) {
    const auto& x = spectrum.bins;
    std::vector<std::pair<double, size_t>> peaks;
    const double least = std::pow(detection(spectrum) * spectrum.noise, 2);
    double before = std::norm(x[0]), here = std::norm(x[1]);
    for (size_t i = 1; i + 1 < x.size(); ++i) {
        const double next = std::norm(x[i + 1]);
        if (here > least && here >= before && here > next) peaks.emplace_back(here, i);
        before = here;
        here = next;
    }
    if (peaks.size() > most_peaks) {
        std::nth_element(peaks.begin(), peaks.begin() + most_peaks, peaks.end(), std::greater<>());
        peaks.resize(most_peaks);
    }
    std::vector<size_t> places(peaks.size());
    std::transform(peaks.begin(), peaks.end(), places.begin(), [](const auto& peak) { return peak.second; });
    return places;
}

// The bins about a peak, numbered from it.
constexpr int most_reach = 8;
struct Window {
    std::array<Value, 2 * most_reach + 1> s;
    int reach = 0;

    int size() const { return 2 * reach + 1; }
    double x(int i) const { return i - reach; }
};

// A basis of functions over the window, orthonormal under weights, built one function after the other.
struct Basis {
    using Function = std::array<Value, 2 * most_reach + 1>;
    std::array<Function, 3> functions;
    std::array<double, 2 * most_reach + 1> weights;
    int count = 0, size = 0;

    Value product(const Function& a, const Function& b) const {
        Value sum = 0;
        for (int i = 0; i < size; ++i) sum += weights[i] * times(std::conj(a[i]), b[i]);
        return sum;
    }
    // Takes out of a function what the basis holds of it.
    void reduce(Function& f) const {
        for (int j = 0; j < count; ++j) {
            const Value part = product(functions[j], f);
            for (int i = 0; i < size; ++i) f[i] -= times(part, functions[j][i]);
        }
    }
    void add(Function f) {
        reduce(f);
        const double length = std::sqrt(product(f, f).real());
        for (int i = 0; i < size; ++i) f[i] /= std::max(length, 1e-30);
        functions[count++] = f;
    }
};

template <class F>
Basis::Function values(const Window& window, F f) {
    Basis::Function result;
    for (int i = 0; i < window.size(); ++i) result[i] = f(window.x(i));
    return result;
}

// The pole q of S = N(x) / (x - q), N of second order: x S = q S + N is linear in q and N. The weights 1 / |x - q|^2 of the
// step before give the residuals of S their right size (Sanathanan and Koerner, IEEE Trans. Autom. Control 8 (1963) 56).
Value first_pole(const Window& window) {
    Value pole(0, 1);
    for (int step = 0; step < 3; ++step) {
        Basis basis;
        basis.size = window.size();
        for (int i = 0; i < basis.size; ++i) basis.weights[i] = 1 / (std::norm(window.x(i) - pole) + 0.01);
        for (int power = 0; power < 3; ++power)
            basis.add(values(window, [&](double x) { return power == 0 ? 1.0 : power == 1 ? x : x * x; }));
        Basis::Function s = window.s, t;
        for (int i = 0; i < basis.size; ++i) t[i] = window.x(i) * s[i];
        basis.reduce(s);
        basis.reduce(t);
        pole = basis.product(s, t) / std::max(basis.product(s, s).real(), 1e-300);
        if (!(std::abs(pole) < 2 * most_reach)) return {};
    }
    return pole;
}

struct Fit {
    Value pole, amplitude;  // S = amplitude / (x - pole) + background
    double variance = 0;    // of the amplitude, per real and imaginary part, for unit variance of the data
    double misfit = 0;      // mean square of what is left, per part
    double background = 0;  // magnitude at the middle of the line
};

enum class Background { none, straight };

// Gauss-Newton for pole and amplitude; all of it analytic, thus complex least squares.
std::optional<Fit> refine(const Window& window, Value pole, Background background) {
    Fit fit;
    fit.pole = pole;
    constexpr int steps = 4;
    for (int step = 1; step <= steps; ++step) {
        if (!(std::abs(fit.pole.imag()) > 0.05) || !(std::abs(fit.pole.real()) < 1.5)) return std::nullopt;
        Basis basis;
        basis.size = window.size();
        basis.weights.fill(1);
        if (background == Background::straight) {
            basis.add(values(window, [](double) { return 1.0; }));
            basis.add(values(window, [](double x) { return x; }));
        }
        const auto shape = values(window, [&](double x) { return inverse(x - fit.pole); });
        Basis::Function slope, rest = window.s, line = shape;
        for (int i = 0; i < basis.size; ++i) slope[i] = times(shape[i], shape[i]);
        basis.reduce(rest);
        basis.reduce(slope);
        basis.reduce(line);
        // Two functions are left: the line and its derivative by the pole.
        const double square = basis.product(slope, slope).real();
        const Value shared = basis.product(slope, line) / square;
        Basis::Function own = line;
        for (int i = 0; i < basis.size; ++i) own[i] -= times(shared, slope[i]);
        const double length = basis.product(own, own).real();
        fit.amplitude = basis.product(own, rest) / length;
        fit.variance = 1 / length;
        const Value along = basis.product(slope, rest) / square - times(shared, fit.amplitude);
        fit.misfit = 0;
        for (int i = 0; i < basis.size; ++i)
            fit.misfit += std::norm(rest[i] - times(fit.amplitude, line[i]) - times(along, slope[i]));
        fit.misfit /= 2 * (basis.size - 2 - basis.count);
        if (step == steps) break;
        Value change = along / fit.amplitude;
        const double limit = 0.5 * std::abs(fit.pole.imag()) + 0.2;
        if (std::abs(change) > limit) change *= limit / std::abs(change);
        fit.pole += change;
    }
    // The background below the line is what the data hold beyond it there.
    const auto middle = window.reach + static_cast<int>(std::lround(fit.pole.real()));
    Value left = 0;
    for (int i = middle - 1; i <= middle + 1; ++i) left += window.s[i] - times(fit.amplitude, inverse(window.x(i) - fit.pole));
    fit.background = std::abs(left) / 3;
    return fit;
}

// A background costs certainty: the fit goes without where none shows, neither in what is left nor in the height.
std::optional<Fit> refine(const Window& window, Value pole, double noise) {
    const auto height = [](const Fit& fit) { return std::abs(fit.amplitude / fit.pole.imag()); };
    const auto with = refine(window, pole, Background::straight);
    const auto without = refine(window, pole, Background::none);
    if (!without || !with || height(*with) < 0.7 * height(*without)) return with;
    return without->misfit < 1.15 * std::max(with->misfit, noise * noise) ? without : with;
}

bool take_window(Window& window, const BinnedSpectrum& spectrum, size_t peak, int reach) {
    window.reach = reach;
    if (peak < static_cast<size_t>(reach) || peak + reach >= spectrum.bins.size()) return false;
    std::copy_n(spectrum.bins.begin() + static_cast<std::ptrdiff_t>(peak - reach), window.size(), window.s.begin());
    return true;
}

int reach_of(double half_width) { return std::clamp(static_cast<int>(std::lround(2.5 * half_width)) + 1, 4, most_reach); }

// What a fit says about the line, unless it is none that could be used.
std::optional<Line> line_of(const Fit& fit, std::span<const BinnedSpectrum> pyramid, size_t level, size_t peak) {
    const BinnedSpectrum& spectrum = pyramid[level];
    const double half_width = std::abs(fit.pole.imag()), size = std::abs(fit.amplitude), height = size / half_width;
    if (half_width > widest || (half_width < narrowest && level > 0) || half_width < 0.2) return std::nullopt;
    if (!(height > detection(spectrum) * spectrum.noise) || fit.background > 0.7 * height) return std::nullopt;
    Line line;
    line.variance = fit.variance * std::max(fit.misfit, spectrum.alike * spectrum.noise * spectrum.noise) / (size * size);
    if (!(line.variance < certain_phase * certain_phase)) return std::nullopt;
    line.reversed = fit.pole.imag() < 0;
    line.phase = std::arg(fit.amplitude * Value(0, line.reversed ? -1 : 1));
    line.point = spectrum.point(static_cast<double>(peak) + fit.pole.real());
    line.half_width = half_width * spectrum.width;
    line.height = height;
    line.level = level;
    return line;
}

std::optional<Line> fit_line(std::span<const BinnedSpectrum> pyramid, size_t level, size_t peak) {
    Window window;
    if (!take_window(window, pyramid[level], peak, 4)) return std::nullopt;
    const Value start = first_pole(window);
    const double width = std::abs(start.imag());
    if (start == Value() || width > 2 * widest || !take_window(window, pyramid[level], peak, reach_of(width))) return std::nullopt;
    const auto fit = refine(window, start, pyramid[level].noise);
    return fit ? line_of(*fit, pyramid, level, peak) : std::nullopt;
}

// Fits the line again with the others taken away that reach it; the fit of before stays where that fails.
Line fit_alone(std::span<const Line> lines, const Line& line, std::span<const BinnedSpectrum> pyramid) {
    const BinnedSpectrum& spectrum = pyramid[line.level];
    const double bin = (line.point - spectrum.point(0)) / spectrum.width;
    const auto peak = static_cast<size_t>(std::max(std::lround(bin), 0L));
    Window window;
    if (!take_window(window, spectrum, peak, reach_of(line.half_width / spectrum.width))) return line;
    for (const Line& other : lines) {
        const double distance = std::abs(other.point - line.point);
        if (&other == &line || other.height * other.half_width < 0.2 * spectrum.noise * distance) continue;
        for (int i = 0; i < window.size(); ++i) window.s[i] -= other.value(spectrum.point(static_cast<double>(peak) + window.x(i)));
    }
    const double width = line.half_width / spectrum.width;
    const auto fit = refine(window, {bin - static_cast<double>(peak), line.reversed ? -width : width}, spectrum.noise);
    const auto found = fit ? line_of(*fit, pyramid, line.level, peak) : std::nullopt;
    return found && found->reversed == line.reversed ? *found : line;
}

}  // namespace

double noise_of(std::span<const std::complex<double>> x) {
    const size_t sections = std::clamp<size_t>(x.size() / 16, 4, 64), length = x.size() / sections;
    std::vector<double> deviations(sections);
    for (size_t i = 0; i < sections; ++i) deviations[i] = deviation(x.subspan(i * length, length));
    const auto tenth = deviations.begin() + static_cast<std::ptrdiff_t>(sections / 10);
    std::nth_element(deviations.begin(), tenth, deviations.end());
    return *tenth;
}

std::complex<double> Line::value(double x) const {
    const double off = (x - point) / half_width;
    return times(std::polar(height, phase), inverse({1, reversed ? -off : off}));
}

std::vector<std::complex<double>> smooth_level(std::span<const std::complex<double>> bins, size_t part) {
    constexpr size_t places = 16;  // to a window; the median of so many means is as good as that of all
    std::vector<Value> result(bins.size());
    const size_t width = bins.size() / (part * places);
    if (width == 0) return result;
    std::vector<Value> means(bins.size() / width);
    for (size_t i = 0; i < means.size(); ++i) {
        for (const Value& bin : bins.subspan(i * width, width)) means[i] += bin;
        means[i] /= static_cast<double>(width);
    }
    constexpr size_t step = places / 4;
    std::vector<Value> levels;
    std::array<double, places> real, imag;
    for (size_t middle = 0; middle < means.size() + step; middle += step) {
        const size_t first = std::min(middle > places / 2 ? middle - places / 2 : 0, means.size() - places);
        for (size_t i = 0; i < places; ++i) {
            real[i] = means[first + i].real();
            imag[i] = means[first + i].imag();
        }
        for (auto* values : {&real, &imag}) std::nth_element(values->begin(), values->begin() + places / 2, values->end());
        levels.emplace_back(real[places / 2], imag[places / 2]);
    }
    for (size_t i = 0; i < bins.size(); ++i) {
        const double at = std::max((static_cast<double>(i) + 0.5) / static_cast<double>(width) - 0.5, 0.0) / step;
        const auto before = std::min(static_cast<size_t>(at), levels.size() - 2);
        const double share = std::min(at - static_cast<double>(before), 1.0);
        result[i] = (1 - share) * levels[before] + share * levels[before + 1];
    }
    return result;
}

std::vector<BinnedSpectrum> bin_spectrum(std::span<const Complex> spectrum) {
    std::vector<BinnedSpectrum> pyramid;
    if (spectrum.size() < fewest_bins) return pyramid;
    pyramid.emplace_back().bins.assign(spectrum.begin(), spectrum.end());
    while (pyramid.back().bins.size() / 2 >= fewest_bins) {
        const auto& from = pyramid.back();
        BinnedSpectrum next{.bins = std::vector<Value>(from.bins.size() / 2), .width = from.width * 2};
        for (size_t i = 0; i < next.bins.size(); ++i) next.bins[i] = 0.5 * (from.bins[2 * i] + from.bins[2 * i + 1]);
        pyramid.push_back(std::move(next));
    }
    for (BinnedSpectrum& level : pyramid) level.noise = noise_of(level.bins);
    // The mean of eight has an eighth of the variance where they are independent.
    for (size_t i = 0; i + 3 < pyramid.size(); ++i)
        if (pyramid[i].noise > 0) pyramid[i].alike = std::clamp(8 * std::pow(pyramid[i + 3].noise / pyramid[i].noise, 2), 1.0, 8.0);
    return pyramid;
}

std::vector<Line> find_lines(std::span<const BinnedSpectrum> pyramid) {
    std::vector<Line> found;
    for (size_t level = 0; level < pyramid.size(); ++level)
        for (const size_t peak : find_peaks(pyramid[level]))
            if (const auto line = fit_line(pyramid, level, peak)) found.push_back(*line);
    double sense = 0;
    for (const Line& line : found) sense += (line.reversed ? -1 : 1) / (line.variance + 1e-3);
    std::erase_if(found, [&](const Line& line) { return line.reversed != (sense < 0); });
    std::stable_sort(found.begin(), found.end(), [](const Line& a, const Line& b) { return a.variance < b.variance; });
    std::vector<Line> lines;
    for (const Line& line : found) {
        const auto overlaps = [&](const Line& other) {
            return std::abs(line.point - other.point) < std::max({line.half_width, other.half_width, 1.0});
        };
        if (std::none_of(lines.begin(), lines.end(), overlaps)) lines.push_back(line);
    }
    for (int sweep = 0; sweep < 2; ++sweep)
        for (Line& line : lines) line = fit_alone(lines, line, pyramid);
    std::sort(lines.begin(), lines.end(), [](const Line& a, const Line& b) { return a.point < b.point; });
    return lines;
}

}  // namespace zolt
