// The numbers of the processing layer against closed forms and direct sums in double precision: kernels by themselves,
// transforms and windows typed as lines, together with what they change of the record.
#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "processing/baseline.h"
#include "processing/fft.h"
#include "processing/fourier.h"
#include "processing/phase.h"
#include "processing/window.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::relative_error;
using test::sample_points;
using Double = std::complex<double>;
using Doubles = std::vector<Double>;
using Points = std::vector<Complex>;

Doubles widened(std::span<const Complex> x) { return {x.begin(), x.end()}; }

constexpr double delay = 12.3456;

// e^(2 pi i factor k/n)
Double unit(size_t k, size_t n, double factor) {
    return std::polar(1.0, 2 * std::numbers::pi * factor * static_cast<double>(k) / static_cast<double>(n));
}

Doubles direct_sum(const Doubles& x, int direction) {
    const size_t n = x.size();
    Doubles out(n), roots(n);
    for (size_t k = 0; k < n; ++k) roots[k] = unit(k, n, direction);
    for (size_t j = 0; j < n; ++j) {
        for (size_t k = 0; k < n; ++k) out[j] += x[k] * roots[j * k % n];
        if (direction > 0) out[j] /= static_cast<double>(n);
    }
    return out;
}

void swap_halves(Doubles& x) { std::rotate(x.begin(), x.begin() + static_cast<std::ptrdiff_t>(x.size() / 2), x.end()); }

enum Kind { sorted, unsorted, sequential, real, packed, inverse, analytic, filled };

// A transform of n points as the sums that it stands for.
Doubles transformed(Doubles x, Kind kind) {
    const size_t n = x.size(), half = n / 2;
    const Doubles points = x;
    if (kind == sorted || kind == unsorted) x[0] = (x.front() + x.back()) / 2.0;
    if (kind == real || kind == packed || kind == analytic)
        for (Double& point : x) point = point.real();
    if (kind == sequential) {  // signs + + - -
        x.resize(2 * n);
        for (size_t k = 0; k < 2 * n; ++k) x[k] = (k % 4 < 2 ? 1 : -1) * (k % 2 == 0 ? points[k / 2].real() : points[k / 2].imag());
        x[0] *= 0.5;
    }
    if (kind == inverse || kind == analytic) swap_halves(x);
    x = direct_sum(x, kind == inverse || kind == analytic ? +1 : -1);
    if (kind == sorted) swap_halves(x);
    if (kind == packed) {  // the other sign of the exponent, and the Nyquist term shares point 0
        for (Double& point : x) point = std::conj(point);
        x[0].imag(x[half].real());
    }
    if (kind == real || kind == packed) std::reverse(x.begin(), x.begin() + static_cast<std::ptrdiff_t>(half));
    if (kind == analytic) {
        const size_t count = std::min<size_t>(half - 1, 256);
        Double level = 0;
        for (size_t k = half - count; k < half; ++k) level += x[k] / static_cast<double>(count);
        std::fill(x.begin() + static_cast<std::ptrdiff_t>(half), x.end(), level);
    }
    x.resize(kind == real || kind == packed ? half : n);
    return x;
}

TEST(Fft, DirectSumsOfAnyCountInBothDirections) {
    for (const size_t n : {1, 2, 3, 8, 12, 97, 256})
        for (const int direction : {-1, 1})
            for (const size_t start : {0, 1}) {  // the second start is not aligned
                Points x = sample_points(n + start);
                const std::span<Complex> part = std::span(x).subspan(start);
                Doubles wide = widened(part);
                const Doubles want = direct_sum(wide, direction);
                ASSERT_EQ(float_fft_4_2(part.data(), n, direction), 1);
                EXPECT_LT(relative_error(part, want), 1e-6) << n << " points, direction " << direction;
                EXPECT_EQ(fftrad2(wide.data(), n, direction), std::has_single_bit(n)) << n;
                for (size_t k = 0; k < n && std::has_single_bit(n); ++k) EXPECT_LT(std::abs(wide[k] - want[k]), 1e-12) << n;
            }
    Points x = sample_points(12);
    for (const auto& [n, direction] : {std::pair<size_t, int>{0, -1}, {12, 0}, {size_t{1} << 31, -1}})
        EXPECT_EQ(float_fft_4_2(x.data(), n, direction), 0) << n;
    EXPECT_EQ(float_fft_4_2(nullptr, 8, -1) + fftrad2(nullptr, 0, -1), 0);
    EXPECT_EQ(x, sample_points(12));
}

class NumbersTest : public test::CommandTest {
protected:
    /// Two vectors in memory, the halves of `points`.
    void load_two(const Points& points, int domain_code, bool frequency) {
        load(points, domain_code, frequency);
        ASSERT_TRUE(show.store.allocate(2, points.size() / 2));
        std::ranges::copy(points, show.store.all().begin());
        show.dims[0].points = static_cast<int32_t>(points.size() / 2);
        show.level = 1;
    }
};

TEST_F(NumbersTest, EveryTransformAndWhatItTakesAlong) {
    const std::tuple<const char*, int, Kind, bool> rows[] = {{"FT", 0, real, false},
                                                             {"ft", 1, sorted, true},
                                                             {"FT 1D", 1, sorted, false},
                                                             {"FT complex_nosort", 2, unsorted, false},
                                                             {"FT=complex", 0, sorted, true},
                                                             {"FT complex, 1d", 2, sorted, false},
                                                             {"FT real", 1, real, false},
                                                             {"FT inverse", 2, inverse, false},
                                                             {"FT hilbert", 0, analytic, false},
                                                             {"ZF", 2, filled, false},
                                                             {"REALFT", 0, packed, false},
                                                             {"FourierTransform", 2, sequential, false},
                                                             {"FT Sequential", 1, sequential, false}};
    for (const auto& [line, code, kind, turns] : rows)
        for (const size_t points : {1, 2, 8, 100, 512, 1024}) {
            size_t count = std::bit_ceil(std::max<size_t>(points, 2));
            if (kind == packed && points != count) continue;
            if (kind == filled && points == count) count *= 2;
            // Without the filter setting (on 8 points) a delay stays where it is.
            const bool filter = points != 8, is_complex = kind <= unsorted, delayed = filter && kind <= sequential;
            load_two(sample_points(2 * points), code, kind >= inverse);
            show.dims[0].phase_totals = {10, 20, 30};
            show.dims[0].sense = -1;
            show.group_delay = delay;
            show.rotation = 205;
            show.display_valid = true;
            settings.bruker_filter = filter;
            DataRecord record = show;
            record.changed = true;
            record.display_valid = false;
            record.dims[0].points = static_cast<int32_t>(kind == real || kind == packed ? count / 2 : count);
            record.dims[0].frequency = kind != inverse;
            if (kind < inverse) record.dims[0].domain_code = domain_complex;
            if (kind < inverse) record.dims[0].phase_totals = {0, 0, 30};  // the second order outlives a transform
            if (is_complex) record.dims[0].sense = 1;
            if (turns) record.rotation = 0;
            if (delayed) record.group_delay = 0;
            Doubles want;
            for (const size_t vector : {0, 1}) {
                Doubles x = widened(show.store.vector(vector));
                if (turns) std::rotate(x.begin(), x.begin() + static_cast<std::ptrdiff_t>(205 % points), x.end());
                x.resize(count);
                for (Double& point : x) point = is_complex ? std::conj(point) : point;
                if (kind != filled) x = transformed(x, kind);
                for (size_t k = 0; k < count && delayed; ++k)
                    x[k] *= unit(kind == unsorted ? (k + count / 2) % count : k, count, delay);
                want.insert(want.end(), x.begin(), x.end());
            }
            ASSERT_EQ(run(line), 1) << line;
            EXPECT_LT(relative_error(show.store.all(), want), 1e-6) << line << " on " << points;
            EXPECT_TRUE(static_cast<const DataRecord&>(show) == record) << line << " on " << points;
        }
}

TEST_F(NumbersTest, RealftTakesTheCurrentVectorBack) {
    const Points x = sample_points(128);
    load_two(x, domain_real, false);
    ASSERT_EQ(run("REALFT"), 1);
    Doubles want = widened(show.store.all());
    for (size_t k = 0; k < 32; ++k) want[k] = {x[2 * k].real(), x[2 * k + 1].real()};
    ASSERT_EQ(run("realft i"), 1);
    EXPECT_LT(relative_error(show.store.all(), want), 1e-6) << "consecutive values, two to a point";
    EXPECT_FALSE(show.dims[0].frequency);
}

TEST_F(NumbersTest, BrShiftsTheFidAsItsSpectrumWouldBeRotated) {
    for (const auto& [code, sense] : {std::pair{domain_real, -1}, {domain_complex, 1}, {domain_complex, -1}}) {
        const bool is_real = code == domain_real;
        const size_t n = is_real ? 75 : 64, middle = n / 2;
        load(sample_points(n, 8), code);
        show.dims[0].sense = sense;
        show.group_delay = delay;
        if (sense < 0 && !is_real) conjugate(show.store.all());
        Doubles want = direct_sum(widened(sample_points(n, 8)), -1);
        // Real data count from the middle, or they would not stay real.
        for (size_t j = 0; j < n; ++j) want[j] *= unit((j + middle) % n, n, delay) * unit(is_real ? middle : 0, n, -delay);
        ASSERT_EQ(run("BR"), 1);
        if (sense < 0 && !is_real) conjugate(show.store.all());
        EXPECT_LT(relative_error(data(), direct_sum(want, +1)), 2e-6) << code << " " << sense;
        EXPECT_TRUE(show.changed && show.group_delay == 0 && !show.dims[0].frequency);
    }
}

TEST_F(NumbersTest, BrTakesTheDelayOutAtOnceBeforeOrAfterTheTransform) {
    // First and last point 0 before and after the shift, so that the first-point correction is none.
    Points x = sample_points(64);
    for (const size_t k : {0, 10, 11, 12, 63}) x[k] = 0;
    for (const int sense : {1, -1})
        for (const int code : {1, 2}) {
            const auto after = [&](std::initializer_list<const char*> lines, bool filter) {
                load(x, code);
                show.dims[0].sense = sense;
                show.group_delay = 11;
                settings.bruker_filter = filter;
                for (const char* line : lines) EXPECT_EQ(run(line), 1) << line;
                EXPECT_EQ(show.group_delay, 0);
                return data();
            };
            const Doubles want = widened(after({"FT"}, true));
            EXPECT_LT(relative_error(after({"BR", "FT"}, true), want), 2e-6) << sense << " " << code;
            EXPECT_LT(relative_error(after({"FT", "BR"}, false), want), 1e-6) << sense << " " << code;
        }
}

TEST_F(NumbersTest, WindowsAreTheFormulaRoundedOnceWithTheValueOfTheLineOrTheStore) {
    const size_t n = 70000;
    for (const auto& [line, code, sw, gaussian, lb, dwell] : {std::tuple{"em -2", 1, 5000, false, -2.0F, 1 / 5000.0},
                                                              {"ExpMult=2.5Hz", 2, 5000, false, 2.5F, 1 / 5000.0},
                                                              {"EM", 0, 5000, false, 7.0F, 1 / 10000.0},
                                                              {"GaussMult", 0, 5000, true, 7.0F, 1 / 10000.0},
                                                              {"gm -2", 1, 5000, true, -2.0F, 1 / 5000.0},
                                                              {"GM 0.3", 0, -1, true, 0.3F, 0.0}}) {
        load(Points(n, Complex(1, -1)), code);
        show.dims[0].sw = static_cast<float>(sw);
        EXPECT_EQ(run("LB 7"), 1);
        DataRecord record = show;
        record.changed = true;
        ASSERT_EQ(run(line), 1) << line;
        EXPECT_TRUE(static_cast<const DataRecord&>(show) == record) << line;
        const double a = double{3.1415927F} * dwell * lb;
        double worst = 0;
        for (size_t k = 0; k < n; ++k) {
            const auto t = static_cast<double>(k);
            const double want = gaussian ? std::exp(-a * a * t * t / 2.7724) : std::exp(-a * t);
            const float exact = static_cast<float>(want), last_place = std::nextafter(exact, 2 * exact) - exact;
            const Complex got = show.store.all()[k];
            if (want > 1e-37 && want < 1e38) worst = std::max(worst, std::abs(got.real() - want) / last_place);
            ASSERT_EQ(got.imag(), -got.real());
        }
        EXPECT_LT(worst, 0.501) << line;
    }
}

TEST(WindowShapes, DecayToBothSidesOfAnEcho) {
    for (const auto& [given, centre] : {std::pair<int64_t, int64_t>{90, 90}, {-5, 0}, {200, 200}, {201, 199}, {1, 1}}) {
        Points x(200, Complex(1, 0));
        weigh(x, Window(WindowShape::exponential, 10, 0.001, 200, given));
        for (int64_t k = 0; k < 200; ++k)
            EXPECT_FLOAT_EQ(x[k].real(), std::exp(-3.1415927F * 0.01F * static_cast<float>(std::abs(k - centre)))) << given;
    }
}

TEST(Phase, EveryOrderPivotAndStart) {
    const size_t n = 1000, first = 13;
    const Points source = sample_points(n + first, 11);
    for (const auto& [a, b, c, pivot] : {std::tuple{0.7, 0.0, 0.0, 0.0}, {0.0, 430.0, 0.0, 250.5}, {0.1, -9.0, 3.0, 77.0}}) {
        Points x = source;
        rotate(x, Rotation(a, b, c, pivot, n), first);
        double worst = 0;
        for (size_t i = 0; i < x.size(); ++i) {
            const double k = static_cast<double>(i + first), q = k / n;
            const Double want = Double(source[i]) * std::polar(1.0, -(a + b * (k - pivot) / n + c * q * q));  // c: from point 0
            worst = std::max(worst, std::abs(Double(x[i]) - want) / std::abs(want));
        }
        EXPECT_LT(worst, 6.1e-8) << a << " " << b << " " << c;  // one rounding to single precision
    }
}

TEST(Baseline, LineBetweenTheEndLevels) {
    Points x(100);
    for (size_t k = 0; k < 100; ++k) x[k] = {10 + 2 * static_cast<float>(k), -4 * static_cast<float>(k)};
    ASSERT_EQ(correct_linear_baseline(x, 16, 7), 1);
    for (size_t k = 0; k < 100; ++k) {
        const double at = static_cast<double>(k), left = 14.5, right = 84.5;  // the middles of the windows
        const double line = k < 7 ? left : k > 92 ? right : left + (at - 7) * (right - left) / 86;
        EXPECT_LT(std::abs(Double(x[k]) - (at - line) * Double(2, -4)), 2e-4) << k;
    }
    for (const auto& [count, averaged, skipped] :
         {std::tuple<size_t, int64_t, int64_t>{31, 16, 0}, {100, 0, 0}, {0, 1, 0}, {100, 16, -1}, {100, 40, 61}, {100, 16, 50}}) {
        x = sample_points(count);
        EXPECT_EQ(correct_linear_baseline(x, averaged, skipped), 0) << count << " " << averaged << " " << skipped;
        EXPECT_EQ(x, sample_points(count));
    }
}

}  // namespace
}  // namespace zolt
