// REALFT: the transform of the real parts with the packing of its own.
#include <complex>
#include <span>
#include <string>
#include <string_view>

#include "common/buffer.h"
#include "common/numbers.h"
#include "common/text.h"
#include "platform/platform.h"
#include "processing/fourier.h"
#include "processing/processing_commands.h"
#include "state/dataset.h"

namespace zolt {

namespace {

constexpr std::string_view separators = " ,\t\r\n=";

bool packed_real_ft_forward(std::span<const Complex> x, std::span<std::complex<double>> work, std::span<Complex> out) {
    for (size_t k = 0; k < work.size(); ++k) work[k] = {x[2 * k].real(), x[2 * k + 1].real()};
    if (!packed_real_ft(work, +1)) return false;
    for (size_t k = 0; k < out.size(); ++k) out[out.size() - 1 - k] = Complex(work[k]);
    return true;
}

int realft_forward() {
    static constexpr const char* vectors[] = {"cvdata", "cvmxdata", "pwdata", "CV3Ddata", "CV3Ddata"};
    static constexpr const char* failures[] = {"Failed real_ft.", "Failed real_ft.", "Failed real_ft for pairwise A.",
                                               "Failed real_ft for 3D matrix.", "Failed real_ft for 4D matrix."};
    if (show.level > 4) return refuse(format_text("Real FT not supported in Arrayed mode level %d", show.level));
    const size_t points = show.store.points() / 2;
    Buffer<std::complex<double>> work;
    VectorStore spectra;
    if (!work.allocate(points) || !spectra.allocate_unset(show.store.count(), points))
        return refuse(format_text("Memory alloction failure for %s in real_ft", vectors[show.level]));
    for (size_t i = 0; i < spectra.count(); ++i)
        if (!packed_real_ft_forward(show.store.vector(i), work.span(), spectra.vector(i))) return refuse(failures[show.level]);
    show.store = std::move(spectra);
    show.dims[0].points = static_cast<int32_t>(points);
    becomes_spectrum(show.dims[0]);
    return 1;
}

// Of the current vector alone. The numbers it gives stand two to a point.
int realft_inverse() {
    const std::span<Complex> x = show.cvNMRdata();
    Buffer<std::complex<double>> work;
    if (!work.allocate(x.size())) return refuse("Memory alloction failure for cvdata in real_ft");
    for (size_t k = 0; k < x.size(); ++k) work[k] = x[x.size() - 1 - k];
    if (!packed_real_ft(work.span(), -1)) return refuse("Failed real_ft.");
    for (size_t k = 0; k < x.size(); ++k) x[k] = Complex(work[k]);
    show.dims[0].frequency = false;
    mark_changed();
    return 1;
}

}  // namespace

int cmd_realft(Arguments& args) {
    const std::string word = args.next(separators);
    const bool forward = word.empty() || same_word(word, "forward") || same_word(word, "f");
    const bool inverse = same_word(word, "inverse") || same_word(word, "i");
    if (!forward && !inverse) return show_reply("   Usage:  REALFT [forward / inverse]");
    if (!is_power_of_two(show.store.points())) {
        platform().reply("   Data must be a power of 2 in size, do ZF first.");
        return 0;
    }
    const WaitCursor wait;
    return forward ? realft_forward() : realft_inverse();
}

}  // namespace zolt
