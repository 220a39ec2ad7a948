// Kernels of the processing layer against closed forms and direct sums in double precision.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <thread>

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

constexpr double pi = std::numbers::pi;

Doubles widened(std::span<const Complex> x) { return {x.begin(), x.end()}; }

Doubles direct_sum(const Doubles& x, int direction) {
    const size_t n = x.size();
    Doubles out(n);
    for (size_t j = 0; j < n; ++j) {
        for (size_t k = 0; k < n; ++k)
            out[j] += x[k] * std::polar(1.0, direction * 2 * pi * static_cast<double>(j * k % n) / static_cast<double>(n));
        if (direction > 0) out[j] /= static_cast<double>(n);
    }
    return out;
}

// The forward transform of a vector: first point corrected, direction -1, halves exchanged.
Doubles sorted_transform(Doubles x) {
    x[0] = (x.front() + x.back()) / 2.0;
    Doubles out = direct_sum(x, -1);
    std::rotate(out.begin(), out.begin() + static_cast<std::ptrdiff_t>(out.size() / 2), out.end());
    return out;
}

TEST(Fft, DirectSumsOfAnyCountInBothDirections) {
    for (const size_t n : {1, 2, 3, 8, 12, 64, 97, 256})
        for (const int direction : {-1, 1})
            for (const size_t offset : {0, 1}) {  // the second start is not aligned
                auto x = sample_points(n + offset, static_cast<unsigned>(n));
                const auto want = direct_sum(widened(std::span(x).subspan(offset)), direction);
                ASSERT_EQ(float_fft_4_2(x.data() + offset, n, direction), 1);
                EXPECT_LT(relative_error(std::span(x).subspan(offset), want), 1e-6) << n << " points, direction " << direction;
            }
    for (const size_t n : {1, 2, 4, 32, 256})
        for (const int direction : {-1, 1}) {
            Doubles x = widened(sample_points(n));
            const auto want = direct_sum(x, direction);
            ASSERT_EQ(fftrad2(x.data(), n, direction), 1);
            for (size_t k = 0; k < n; ++k) EXPECT_LT(std::abs(x[k] - want[k]), 1e-12) << n << " points, at " << k;
        }
}

TEST(Fft, RefusesWhatItCannotDo) {
    auto x = sample_points(12);
    const auto before = x;
    EXPECT_EQ(float_fft_4_2(x.data(), 0, -1), 0);
    EXPECT_EQ(float_fft_4_2(x.data(), 12, 0), 0);
    EXPECT_EQ(float_fft_4_2(x.data(), size_t{1} << 31, -1), 0);
    EXPECT_EQ(float_fft_4_2(nullptr, 8, -1), 0);
    EXPECT_EQ(x, before);
    Doubles d(12, 1.0);
    EXPECT_EQ(fftrad2(d.data(), 12, -1), 0);
    EXPECT_EQ(fftrad2(d.data(), 0, -1), 0);
}

TEST(Fft, EnergyOfALongVectorAndThreads) {
    const size_t n = 1 << 16;
    const auto source = sample_points(n);
    auto first = source, second = source;
    std::thread other([&] { float_fft_4_2(first.data(), n, -1); });
    float_fft_4_2(second.data(), n, -1);
    other.join();
    EXPECT_EQ(first, second);
    double before = 0, after = 0;
    for (size_t k = 0; k < n; ++k) {
        before += std::norm(Double(source[k]));
        after += std::norm(Double(first[k]));
    }
    EXPECT_NEAR(after / before / static_cast<double>(n), 1, 1e-6);
}

TEST(Fourier, ComplexTransformAndItsInverse) {
    for (const size_t n : {2, 4, 64, 256}) {
        const auto x = sample_points(n, 7);
        auto sorted = x, unsorted = x;
        ASSERT_TRUE(forward_complex_ft(sorted, true));
        ASSERT_TRUE(forward_complex_ft(unsorted, false));
        EXPECT_LT(relative_error(sorted, sorted_transform(widened(x))), 1e-6) << n;
        for (size_t k = 0; k < n; ++k) EXPECT_EQ(sorted[k], unsorted[(k + n / 2) % n]) << n;
        ASSERT_TRUE(inverse_complex_ft(sorted));
        auto want = widened(x);
        want[0] = (want.front() + want.back()) / 2.0;
        EXPECT_LT(relative_error(sorted, want), 1e-6) << n;
    }
    // A line above the carrier that turns as e^(+i w t) stands in the upper half.
    std::vector<Complex> line(64);
    for (size_t k = 0; k < 64; ++k) line[k] = Complex(std::polar(1.0, 2 * pi * 5 * static_cast<double>(k) / 64));
    forward_complex_ft(line, true);
    const auto tallest = std::max_element(line.begin(), line.end(), [](Complex a, Complex b) { return std::abs(a) < std::abs(b); });
    EXPECT_EQ(tallest - line.begin(), 32 + 5);
}

TEST(Fourier, RealTransformRunsFromTheLastFrequencyToTheFirst) {
    for (const size_t n : {2, 4, 8, 128}) {
        const auto x = sample_points(n, 3);
        Doubles real(n);
        for (size_t k = 0; k < n; ++k) real[k] = x[k].real();
        auto want = direct_sum(real, -1);
        want.resize(n / 2);
        std::reverse(want.begin(), want.end());
        std::vector<Complex> out(n / 2);
        ASSERT_TRUE(forward_real_ft(x, out));
        EXPECT_LT(relative_error(out, want), 1e-6) << n;
    }
}

TEST(Fourier, SequentialTransformHasItsSignPatternAndHalfFirstSample) {
    for (const size_t n : {2, 8, 128}) {
        auto x = sample_points(n, 4);
        Doubles samples;
        for (const Complex point : x) {
            const double sign = samples.size() % 4 == 0 ? 1 : -1;
            samples.push_back(sign * point.real());
            samples.push_back(sign * point.imag());
        }
        samples[0] *= 0.5;
        auto want = direct_sum(samples, -1);
        want.resize(n);
        ASSERT_TRUE(forward_sequential_ft(x));
        EXPECT_LT(relative_error(x, want), 1e-6) << n;
    }
}

TEST(Fourier, HilbertFillsTheSecondHalfWithTheTailLevel) {
    for (const auto& [n, count] : {std::pair<size_t, size_t>{2, 0}, {4, 1}, {8, 3}, {512, 255}, {1024, 256}}) {
        auto x = sample_points(n, 5);
        Doubles spectrum(n);
        for (size_t k = 0; k < n; ++k) spectrum[(k + n / 2) % n] = x[k].real();
        auto want = direct_sum(spectrum, +1);
        Double level = 0;
        for (size_t k = n / 2 - count; k < n / 2; ++k) level += want[k] / static_cast<double>(count);
        for (size_t k = n / 2; k < n; ++k) want[k] = level;
        ASSERT_TRUE(hilbert(x));
        EXPECT_LT(relative_error(x, want), 2e-6) << n;
    }
}

TEST(Fourier, PackedRealTransform) {
    for (const size_t n : {1, 2, 4, 64}) {  // 2n numbers
        Doubles x = widened(sample_points(n, 6));
        const Doubles source = x;
        Doubles numbers;
        for (const Double point : source) {
            numbers.emplace_back(point.real());
            numbers.emplace_back(point.imag());
        }
        auto want = direct_sum(numbers, +1);
        for (Double& value : want) value *= static_cast<double>(2 * n);
        ASSERT_TRUE(packed_real_ft(x, +1));
        EXPECT_NEAR(x[0].real(), want[0].real(), 1e-12);
        EXPECT_NEAR(x[0].imag(), want[n].real(), 1e-12) << "the Nyquist term shares point 0";
        for (size_t k = 1; k < n; ++k) EXPECT_LT(std::abs(x[k] - want[k]), 1e-12) << n << ", " << k;
        ASSERT_TRUE(packed_real_ft(x, -1));
        for (size_t k = 0; k < n; ++k) EXPECT_LT(std::abs(x[k] - source[k]), 1e-13) << n << ", " << k;
    }
}

TEST(DelayRemoval, AShiftedImpulseBecomesFlat) {
    const size_t n = 128;
    for (const size_t delay : {1, 34, 67}) {
        std::vector<Complex> x(n), unsorted(n);
        x[delay] = unsorted[delay] = {3, 4};
        const Rotation rotation = delay_rotation(static_cast<double>(delay), n, domain_complex);
        forward_complex_ft(x, true);
        rotate_spectrum(x, rotation, true);
        forward_complex_ft(unsorted, false);
        rotate_spectrum(unsorted, rotation, false);
        const Complex want = delay % 2 == 0 ? Complex(3, 4) : Complex(-3, -4);  // counted from the edge: e^(i pi delay)
        for (size_t k = 0; k < n; ++k) {
            EXPECT_LT(std::abs(x[k] - want), 1e-5) << delay << ", " << k;
            EXPECT_LT(std::abs(unsorted[(k + n / 2) % n] - x[k]), 1e-6) << delay << ", " << k;
        }
    }
}

TEST(DelayRemoval, ShiftingTheFidIsRotatingItsSpectrum) {
    for (const size_t n : {64, 75}) {
        const double delay = 12.3456;
        auto shifted = sample_points(n, 8);
        const Rotation rotation = delay_rotation(delay, n, domain_complex);
        auto want = direct_sum(widened(shifted), -1);
        for (size_t j = 0; j < n; ++j)
            want[j] *= std::polar(1.0, 2 * pi * delay * static_cast<double>((j + n / 2) % n) / static_cast<double>(n));
        ASSERT_TRUE(shift_out_delay(shifted, rotation));
        EXPECT_LT(relative_error(shifted, direct_sum(want, +1)), 2e-6) << n;
    }
    // Whole points: the shift itself, and real data stay real.
    auto real = sample_points(64, 9);
    for (Complex& point : real) point.imag(0);
    const auto source = real;
    ASSERT_TRUE(shift_out_delay(real, delay_rotation(5, 64, domain_real)));
    for (size_t k = 0; k < 64; ++k) EXPECT_LT(std::abs(real[k] - source[(k + 5) % 64]), 2e-6F) << k;
}

// The distance of a float from an exact value, in units of its last place.
double in_ulps(float got, double want) {
    const float exact = static_cast<float>(want);
    return std::abs(got - want) /
           std::max(double{std::nextafter(std::abs(exact), std::numeric_limits<float>::infinity())} - std::abs(exact), 1e-45);
}

TEST(WindowShapes, WeightsAreTheFormulaRoundedOnce) {
    const double dwell = 1 / 5000.0, single_pi = 3.1415927F;
    const size_t n = 70000;
    for (const double lb : {0.3, 12.0, -2.0}) {
        const double a = single_pi * dwell * lb;
        for (const bool gaussian : {false, true}) {
            std::vector<Complex> x(n, Complex(1, -1));
            weigh(x, Window(gaussian ? WindowShape::gaussian : WindowShape::exponential, lb, dwell, n));
            double worst = 0;
            for (size_t k = 0; k < n; ++k) {
                const double t = static_cast<double>(k);
                const double want = gaussian ? std::exp(-a * a * t * t / 2.7724) : std::exp(-a * t);
                if (want > 1e-37 && want < 1e38) worst = std::max(worst, in_ulps(x[k].real(), want));
                ASSERT_EQ(x[k].imag(), -x[k].real());
            }
            EXPECT_LT(worst, 0.501) << lb << (gaussian ? " gaussian" : " exponential");
        }
    }
}

TEST(WindowShapes, EchoCentreAndNoDwell) {
    const auto weights = [](int64_t centre) {
        std::vector<Complex> x(200, Complex(1, 0));
        weigh(x, Window(WindowShape::exponential, 10, 0.001, 200, centre));
        return x;
    };
    const double a = 3.1415927F * 0.01;
    for (const auto& [given, centre] : {std::pair<int64_t, int64_t>{90, 90}, {-5, 0}, {200, 200}, {201, 199}, {1, 1}}) {
        const auto x = weights(given);
        for (int64_t k = 0; k < 200; ++k)
            EXPECT_FLOAT_EQ(x[k].real(), static_cast<float>(std::exp(-a * std::abs(static_cast<double>(k - centre)))))
                << given << ", " << k;
    }
    Dimension dimension;
    for (const auto& [sw, code, want] : {std::tuple{5000.0F, 1, 1 / 5000.0},
                                         {5000.0F, 2, 1 / 5000.0},
                                         {5000.0F, 0, 1 / 10000.0},
                                         {0.0F, 1, 0.0},
                                         {-1.0F, 0, 0.0}}) {
        dimension.sw = sw;
        dimension.domain_code = code;
        EXPECT_EQ(dwell_time(dimension), want);
    }
    auto x = sample_points(100);
    const auto before = x;
    weigh(x, Window(WindowShape::gaussian, 10, 0, 100));
    EXPECT_EQ(x, before);
}

TEST(Phase, EveryOrderPivotAndStart) {
    const size_t n = 1000, first = 13;
    const auto source = sample_points(n + first, 11);
    for (const auto& [a, b, c, pivot] :
         {std::tuple{0.7, 0.0, 0.0, 0.0}, {0.0, 2 * pi, 0.0, 0.0}, {-0.3, 430.0, 0.0, 250.5}, {0.1, -9.0, 3.0, 77.0}}) {
        auto x = source;
        rotate(x, Rotation(a, b, c, pivot, n), first);
        double worst = 0;
        for (size_t i = 0; i < x.size(); ++i) {
            const double k = static_cast<double>(i + first), q = k / n;
            const double phase = a + b * (k - pivot) / n + c * q * q;  // the second order counts from point 0
            const double r = source[i].real(), m = source[i].imag();
            const Double want(r * std::cos(phase) + m * std::sin(phase), m * std::cos(phase) - r * std::sin(phase));
            worst = std::max(worst, std::abs(Double(x[i]) - want) / std::abs(want));
        }
        EXPECT_LT(worst, 6.1e-8) << a << " " << b << " " << c;  // one rounding to single precision
    }
    auto x = source;
    rotate(x, Rotation(0, 0, 0, 0, n));
    EXPECT_EQ(x, source) << "no angle leaves every bit";
}

TEST(Baseline, LineBetweenTheEndLevels) {
    const size_t n = 100;
    std::vector<Complex> x(n);
    for (size_t k = 0; k < n; ++k) x[k] = {10 + 2 * static_cast<float>(k), -4 * static_cast<float>(k)};
    const auto ramp = x;
    for (const size_t skipped : {0, 7}) {
        x = ramp;
        ASSERT_EQ(correct_linear_baseline(x, 16, static_cast<int64_t>(skipped)), 1);
        const double left = 10 + 2 * (static_cast<double>(skipped) + 7.5),
                     right = 10 + 2 * (static_cast<double>(n - 1 - skipped) - 7.5);
        const double slope = (right - left) / static_cast<double>(n - 2 * skipped);
        for (size_t k = 0; k < n; ++k) {
            const double line = k < skipped ? left : k >= n - skipped ? right : left + static_cast<double>(k - skipped) * slope;
            EXPECT_NEAR(x[k].real(), ramp[k].real() - line, 1e-4) << k;
            EXPECT_NEAR(x[k].imag(), ramp[k].imag() + 2 * (line - 10), 2e-4) << k;
        }
    }
    for (const auto& [count, averaged, skipped] :
         {std::tuple<size_t, int64_t, int64_t>{31, 16, 0}, {100, 0, 0}, {0, 1, 0}, {100, 16, -1}, {100, 40, 61}, {100, 16, 50}}) {
        auto refused = sample_points(count);
        const auto before = refused;
        EXPECT_EQ(correct_linear_baseline(refused, averaged, skipped), 0) << count << " " << averaged << " " << skipped;
        EXPECT_EQ(refused, before);
    }
}

TEST(Baseline, OffsetIsTheLevelOfTheTail) {
    for (const auto& [n, tail] : {std::pair<size_t, size_t>{1024, 128}, {100, 16}, {10, 10}}) {
        std::vector<Complex> x(n, Complex(50, -50));
        for (size_t k = n - tail; k < n; ++k) x[k] = k % 2 == 0 ? Complex(3, 1) : Complex(1, 3);
        correct_offset(x);
        EXPECT_EQ(x[n - 2], Complex(1, -1)) << n;
        EXPECT_EQ(x[0], tail < n ? Complex(48, -52) : Complex(1, -1)) << n;
    }
}

}  // namespace
}  // namespace zolt
