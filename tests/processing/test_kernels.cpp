// Kernels of the processing layer against closed forms and direct sums in double precision.
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numbers>

#include "processing/baseline.h"
#include "processing/fft.h"
#include "processing/fourier.h"
#include "processing/phase.h"
#include "processing/window.h"
#include "support.h"

namespace zolt {
namespace {

using test::relative_error;
using test::sample_points;
using Double = std::complex<double>;
using Doubles = std::vector<Double>;
using Points = std::vector<Complex>;

constexpr double pi = std::numbers::pi;

Doubles widened(std::span<const Complex> x) { return {x.begin(), x.end()}; }

// The parts of the points as real numbers, one after the other.
Doubles parts(std::span<const Complex> x) {
    Doubles out;
    for (const Complex point : x) out.insert(out.end(), {point.real(), point.imag()});
    return out;
}

Doubles direct_sum(const Doubles& x, int direction) {
    const size_t n = x.size();
    Doubles out(n), roots(n);
    for (size_t k = 0; k < n; ++k) roots[k] = std::polar(1.0, direction * 2 * pi * static_cast<double>(k) / static_cast<double>(n));
    for (size_t j = 0; j < n; ++j) {
        for (size_t k = 0; k < n; ++k) out[j] += x[k] * roots[j * k % n];
        if (direction > 0) out[j] /= static_cast<double>(n);
    }
    return out;
}

// Zero frequency from point 0 to the middle.
Doubles sorted(Doubles x) {
    std::rotate(x.begin(), x.end() - static_cast<std::ptrdiff_t>(x.size() / 2), x.end());
    return x;
}

double distance(const Doubles& a, const Doubles& b) {
    double worst = 0;
    for (size_t k = 0; k < a.size(); ++k) worst = std::max(worst, std::abs(a[k] - b[k]));
    return worst;
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
                const bool power = std::has_single_bit(n);
                EXPECT_EQ(fftrad2(wide.data(), n, direction), power) << n;
                EXPECT_TRUE(!power || distance(wide, want) < 1e-12) << n << " points, direction " << direction;
            }
    Points x = sample_points(12), before = x;
    for (const auto& [n, direction] : {std::pair<size_t, int>{0, -1}, {12, 0}, {size_t{1} << 31, -1}})
        EXPECT_EQ(float_fft_4_2(x.data(), n, direction), 0) << n;
    EXPECT_EQ(float_fft_4_2(nullptr, 8, -1), 0);
    EXPECT_EQ(fftrad2(nullptr, 0, -1), 0);
    EXPECT_EQ(x, before);
}

TEST(Fourier, ComplexTransformAndItsInverse) {
    for (const size_t n : {2, 4, 256}) {
        const Points x = sample_points(n, 7);
        Doubles want = widened(x);
        want[0] = (want.front() + want.back()) / 2.0;
        Points spectrum = x, unsorted = x;
        ASSERT_TRUE(forward_complex_ft(spectrum, true) && forward_complex_ft(unsorted, false));
        EXPECT_LT(relative_error(unsorted, direct_sum(want, -1)), 1e-6) << n;
        EXPECT_LT(relative_error(spectrum, sorted(direct_sum(want, -1))), 1e-6) << n;
        ASSERT_TRUE(inverse_complex_ft(spectrum));
        EXPECT_LT(relative_error(spectrum, want), 1e-6) << n;
    }
}

TEST(Fourier, RealAndSequentialTransforms) {
    for (const size_t n : {2, 8, 128}) {
        Points x = sample_points(n, 3), spectrum(n / 2);
        Doubles real, samples = parts(x);
        for (size_t k = 0; k < 2 * n; k += 2) real.push_back(samples[k]);
        for (size_t k = 0; k < 2 * n; ++k)
            if (k % 4 >= 2) samples[k] = -samples[k];
        samples[0] *= 0.5;
        real = direct_sum(real, -1);
        ASSERT_TRUE(forward_real_ft(x, spectrum));
        EXPECT_LT(relative_error(spectrum, Doubles(real.rend() - static_cast<std::ptrdiff_t>(n / 2), real.rend())), 1e-6) << n;
        samples = direct_sum(samples, -1);
        samples.resize(n);
        ASSERT_TRUE(forward_sequential_ft(x));
        EXPECT_LT(relative_error(x, samples), 1e-6) << n;
    }
}

TEST(Fourier, HilbertFillsTheSecondHalfWithTheTailLevel) {
    for (const auto& [n, count] : {std::pair<size_t, size_t>{2, 0}, {4, 1}, {8, 3}, {512, 255}, {1024, 256}}) {
        Points x = sample_points(n, 5);
        Doubles spectrum(n);
        for (size_t k = 0; k < n; ++k) spectrum[k] = x[k].real();
        Doubles want = direct_sum(sorted(spectrum), +1);
        Double level = 0;
        for (size_t k = n / 2 - count; k < n / 2; ++k) level += want[k] / static_cast<double>(count);
        for (size_t k = n / 2; k < n; ++k) want[k] = level;
        ASSERT_TRUE(hilbert(x));
        EXPECT_LT(relative_error(x, want), 2e-6) << n;
    }
}

TEST(Fourier, PackedRealTransform) {
    for (const size_t n : {1, 2, 4, 64}) {
        const Points points = sample_points(n, 6);
        const Doubles source = widened(points);
        Doubles x = source, want = direct_sum(parts(points), +1);
        for (Double& value : want) value *= static_cast<double>(2 * n);
        want[0].imag(want[n].real());  // the Nyquist term shares point 0
        want.resize(n);
        ASSERT_TRUE(packed_real_ft(x, +1));
        EXPECT_LT(distance(x, want), 1e-12) << n;
        ASSERT_TRUE(packed_real_ft(x, -1));
        EXPECT_LT(distance(x, source), 1e-13) << n;
    }
}

TEST(DelayRemoval, ShiftingTheFidIsRotatingItsSpectrum) {
    for (const size_t n : {64, 75}) {
        const double delay = 12.3456;
        const Rotation rotation = delay_rotation(delay, n, domain_complex);
        Points fid = sample_points(n, 8);
        Doubles want = direct_sum(widened(fid), -1);
        const Doubles before = sorted(want);
        Points spectrum(before.begin(), before.end());
        rotate_spectrum(spectrum, rotation, true);
        for (size_t j = 0; j < n; ++j)
            want[j] *= std::polar(1.0, 2 * pi * delay * static_cast<double>((j + n / 2) % n) / static_cast<double>(n));
        EXPECT_LT(relative_error(spectrum, sorted(want)), 1e-6) << n;
        ASSERT_TRUE(shift_out_delay(fid, rotation));
        EXPECT_LT(relative_error(fid, direct_sum(want, +1)), 2e-6) << n;
    }
    // Whole points: the shift itself, and real data stay real.
    Points x = sample_points(64, 9);
    for (Complex& point : x) point.imag(0);
    Doubles want = widened(x);
    std::rotate(want.begin(), want.begin() + 5, want.end());
    ASSERT_TRUE(shift_out_delay(x, delay_rotation(5, 64, domain_real)));
    EXPECT_LT(relative_error(x, want), 1e-6);
}

TEST(WindowShapes, WeightsAreTheFormulaRoundedOnce) {
    const double dwell = 1 / 5000.0, single_pi = 3.1415927F;
    const int64_t n = 70000;
    const struct {
        double lb;
        int64_t given = 0, centre = 0;
    } rows[] = {{0.3}, {12}, {-2}, {0.3, 90, 90}, {0.3, -5, 0}, {0.3, n, n}, {0.3, n + 1, n - 1}, {0.3, 1, 1}};
    for (const auto& row : rows)
        for (const bool gaussian : {false, true}) {
            const double a = single_pi * dwell * row.lb;
            Points x(n, Complex(1, -1));
            weigh(x, Window(gaussian ? WindowShape::gaussian : WindowShape::exponential, row.lb, dwell, n, row.given));
            double worst = 0;
            for (int64_t k = 0; k < n; ++k) {
                const auto t = static_cast<double>(std::abs(k - row.centre));
                const double want = gaussian ? std::exp(-a * a * t * t / 2.7724) : std::exp(-a * t);
                const auto exact = static_cast<float>(want);
                const double last_place = std::nextafter(exact, std::numeric_limits<float>::infinity()) - exact;
                if (want > 1e-37 && want < 1e38) worst = std::max(worst, std::abs(x[k].real() - want) / last_place);
                ASSERT_EQ(x[k].imag(), -x[k].real());
            }
            EXPECT_LT(worst, 0.501) << row.lb << " around " << row.given << (gaussian ? ", gaussian" : ", exponential");
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
    Points x = source;
    rotate(x, Rotation(0, 0, 0, 0, n));
    EXPECT_EQ(x, source) << "no angle leaves every bit";
}

TEST(Baseline, LineBetweenTheEndLevels) {
    const size_t n = 100;
    for (const size_t skipped : {0, 7}) {
        Points x(n);
        for (size_t k = 0; k < n; ++k) x[k] = {10 + 2 * static_cast<float>(k), -4 * static_cast<float>(k)};
        ASSERT_EQ(correct_linear_baseline(x, 16, static_cast<int64_t>(skipped)), 1);
        const auto s = static_cast<double>(skipped), left = s + 7.5, right = n - 1 - s - 7.5;  // middles of the windows
        for (size_t k = 0; k < n; ++k) {
            const auto at = static_cast<double>(k), step = (right - left) / (n - 2 * s);
            const double line = k < skipped ? left : k >= n - skipped ? right : left + (at - s) * step;
            EXPECT_LT(std::abs(Double(x[k]) - (at - line) * Double(2, -4)), 2e-4) << k;
        }
    }
    for (const auto& [count, averaged, skipped] :
         {std::tuple<size_t, int64_t, int64_t>{31, 16, 0}, {100, 0, 0}, {0, 1, 0}, {100, 16, -1}, {100, 40, 61}, {100, 16, 50}}) {
        Points x = sample_points(count), before = x;
        EXPECT_EQ(correct_linear_baseline(x, averaged, skipped), 0) << count << " " << averaged << " " << skipped;
        EXPECT_EQ(x, before);
    }
}

TEST(Baseline, OffsetIsTheLevelOfTheTail) {
    for (const auto& [n, tail] : {std::pair<size_t, size_t>{1024, 128}, {100, 16}, {10, 10}}) {
        Points x(n, Complex(50, -50));
        for (size_t k = n - tail; k < n; ++k) x[k] = k % 2 == 0 ? Complex(3, 1) : Complex(1, 3);
        correct_offset(x);
        EXPECT_EQ(x[n - 2], Complex(1, -1)) << n;
        EXPECT_EQ(x[0], tail < n ? Complex(48, -52) : Complex(1, -1)) << n;
    }
}

}  // namespace
}  // namespace zolt
