// Plans of the FFT library, kept by size; and a double-precision transform of our own for REALFT.
#include "processing/fft.h"

#include <array>
#include <atomic>
#include <bit>
#include <limits>
#include <map>
#include <mutex>
#include <numbers>
#include <utility>

#include <fftw3.h>

#include "state/session.h"

namespace zolt {

namespace {

// Plans are made once and live as long as the program. Those of powers of two are found without a lock, because many
// short vectors are transformed by several threads at once.
struct PlanCache {
    std::array<std::atomic<fftwf_plan>, 128> of_powers{};  // four variants each
    std::map<size_t, fftwf_plan> of_others;
    std::mutex planning;  // the library's planner must not run twice at a time
};

// Never destroyed: plans are of use until the very end, and tidying them up would only delay it.
PlanCache& cache = *new PlanCache;

// Whether there are measured plans, from the file of the configuration; it is read once. One that the library does not
// take (of another version or machine) is as good as none.
bool wisdom_at_hand() {
    static const bool read = !settings.fft_wisdom.empty() && fftwf_import_wisdom_from_filename(settings.fft_wisdom.c_str()) == 1;
    return read;
}

// Neither a plan from wisdom nor ESTIMATE planning writes to the data.
fftwf_plan make_plan(fftwf_complex* data, size_t n, int direction, bool aligned) {
    const int sign = direction < 0 ? FFTW_FORWARD : FFTW_BACKWARD;
    const unsigned alignment = aligned ? 0U : FFTW_UNALIGNED;
    if (wisdom_at_hand())
        if (fftwf_plan known =
                fftwf_plan_dft_1d(static_cast<int>(n), data, data, sign, FFTW_MEASURE | FFTW_WISDOM_ONLY | alignment))
            return known;
    return fftwf_plan_dft_1d(static_cast<int>(n), data, data, sign, FFTW_ESTIMATE | alignment);
}

fftwf_plan plan_for(fftwf_complex* data, size_t n, int direction) {
    const bool aligned = fftwf_alignment_of(&data[0][0]) == 0;
    const size_t variant = (direction < 0 ? 0U : 2U) + (aligned ? 0U : 1U);
    if (std::has_single_bit(n)) {
        std::atomic<fftwf_plan>& slot = cache.of_powers[static_cast<size_t>(std::countr_zero(n)) * 4 + variant];
        if (fftwf_plan ready = slot.load(std::memory_order_acquire)) return ready;
        const std::lock_guard lock(cache.planning);
        if (slot.load(std::memory_order_relaxed) == nullptr)
            slot.store(make_plan(data, n, direction, aligned), std::memory_order_release);
        return slot.load(std::memory_order_relaxed);
    }
    const std::lock_guard lock(cache.planning);
    fftwf_plan& slot = cache.of_others[n * 4 + variant];
    if (slot == nullptr) slot = make_plan(data, n, direction, aligned);
    return slot;
}

fftwf_plan plan_or_none(std::complex<float>* data, size_t n, int direction) {
    const bool possible =
        data != nullptr && n >= 1 && n <= size_t{std::numeric_limits<int>::max()} && (direction == 1 || direction == -1);
    return possible ? plan_for(reinterpret_cast<fftwf_complex*>(data), n, direction) : nullptr;
}

std::complex<double> times(std::complex<double> a, std::complex<double> b) {
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

void reverse_bit_order(std::complex<double>* data, size_t n) {
    for (size_t i = 1, j = 0; i < n; ++i) {
        size_t bit = n >> 1;
        for (; (j & bit) != 0; bit >>= 1) j ^= bit;
        j ^= bit;
        if (i < j) std::swap(data[i], data[j]);
    }
}

}  // namespace

bool fft_available(std::complex<float>* data, size_t n, int direction) { return plan_or_none(data, n, direction) != nullptr; }

int16_t float_fft_4_2(std::complex<float>* data, size_t n, int direction) {
    fftwf_plan plan = plan_or_none(data, n, direction);
    if (plan == nullptr) return 0;
    auto* points = reinterpret_cast<fftwf_complex*>(data);
    fftwf_execute_dft(plan, points, points);
    if (direction > 0) {
        const float scale = 1.0F / static_cast<float>(n);
        for (size_t i = 0; i < n; ++i) data[i] *= scale;
    }
    return 1;
}

int16_t fftrad2(std::complex<double>* data, size_t n, int direction) {
    if (data == nullptr || !std::has_single_bit(n) || (direction != 1 && direction != -1)) return 0;
    reverse_bit_order(data, n);
    for (size_t half = 1; half < n; half *= 2) {
        const double angle = direction * std::numbers::pi / static_cast<double>(half);
        const double sine = std::sin(angle / 2);
        // Turning by w + w * (e^(i angle) - 1) loses far less than by w * e^(i angle).
        const std::complex<double> turn(-2 * sine * sine, std::sin(angle));
        for (size_t start = 0; start < n; start += 2 * half) {
            std::complex<double> w = 1;
            for (size_t i = start; i < start + half; ++i) {
                const std::complex<double> odd = times(w, data[i + half]);
                data[i + half] = data[i] - odd;
                data[i] += odd;
                w += times(w, turn);
            }
        }
    }
    if (direction > 0)
        for (size_t i = 0; i < n; ++i) data[i] /= static_cast<double>(n);
    return 1;
}

}  // namespace zolt
