// FT and BR: the transforms of fourier.h applied to the whole data set, and what they change of its state.
#include <algorithm>
#include <complex>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "common/buffer.h"
#include "common/numbers.h"
#include "common/text.h"
#include "platform/platform.h"
#include "processing/along.h"
#include "processing/arithmetic.h"
#include "processing/fft.h"
#include "processing/fourier.h"
#include "processing/processing_commands.h"
#include "processing/values.h"
#include "processing/zero_fill.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr std::string_view separators = " ,\t\r\n=";

bool fill_to_power_of_two() {
    if (is_power_of_two(show.store.points())) return true;
    if (zero_fill()) return true;
    // A link would go on with data that are not what its next step expects.
    if (session.link_running) {
        session.link_running = false;
        platform().status(0, "Link Finished");
    }
    return false;
}

bool can_transform(VectorStore& store, int direction) { return fft_available(store.vector(0).data(), store.points(), direction); }

// The delay belongs to the direct dimension; after a transposition that is not dimension 1.
bool has_delay() { return show.group_delay != 0 && &show.direct() == &show.dims[0]; }

bool delay_is_pending() { return has_delay() && settings.bruker_filter; }

int complex_ft(bool sort) {
    if (!fill_to_power_of_two()) return 0;
    if (show.level > 4) return refuse(format_text("Complex FT not supported in Arrayed mode level %d", show.level));
    if (!can_transform(show.store, -1)) return refuse("Forward FT routine failed");
    Dimension& dimension = show.dims[0];
    const bool mirrored = dimension.sense < 0, delayed = delay_is_pending();
    const Rotation rotation = delay_rotation(show.group_delay, show.store.points(), domain_complex);
    RotationTable table;
    const bool tabled = delayed && sort && show.store.count() > 1 && table.fill(rotation, show.store.points());
    const bool done = for_each_vector(show.store, [&](std::span<Complex> x) {
        if (mirrored) conjugate(x);
        forward_complex_ft(x, sort);
        if (tabled)
            table.rotate(x);
        else if (delayed)
            rotate_spectrum(x, rotation, sort);
    });
    if (!done) return cancelled("Complex FT");
    dimension.sense = 1;
    if (delayed) show.group_delay = 0;
    becomes_spectrum(dimension);
    return 1;
}

// The forms of the complex transform that take a pending rotation of the data with them.
int rotate_and_transform() {
    if (show.rotation > 0) {
        const auto amount = static_cast<uint64_t>(std::exchange(show.rotation, 0));
        if (!for_each_vector(show.store, [amount](std::span<Complex> x) { rotate_left(x, amount); })) {
            show.rotation = static_cast<int32_t>(amount);
            return cancelled("RD");
        }
        mark_changed();
    }
    return complex_ft(true);
}

int do_real_ft() {
    if (!fill_to_power_of_two()) return 0;
    if (show.level > 3) return refuse(format_text("Real FT not supported in Arrayed mode level %d", show.level));
    VectorStore spectra;
    if (!spectra.allocate_unset(show.store.count(), show.store.points() / 2))
        return refuse("Memory alloction failure for show.cvNMRdata in do_real_ft");
    if (!can_transform(spectra, -1)) return refuse("Forward FT routine failed");
    const Complex* const fids = show.store.all().data();
    const size_t points = spectra.points();
    const bool done = for_each_vector(spectra, [&](std::span<Complex> out, size_t i) {
        forward_real_ft({fids + 2 * i * points, 2 * points}, out);
    });
    if (!done) return cancelled("Real FT");
    show.store = std::move(spectra);
    show.dims[0].points = static_cast<int32_t>(points);
    becomes_spectrum(show.dims[0]);
    return 1;
}

int sequential_ft() {
    if (!fill_to_power_of_two()) return 0;
    if (show.level > 3) return refuse(format_text("TPPI FT not supported in Arrayed mode level %d", show.level));
    if (!can_transform(show.store, -1)) return refuse("Bruker FT routine failed");
    const bool delayed = delay_is_pending();
    const Rotation rotation = delay_rotation(show.group_delay, show.store.points(), domain_sequential);
    const bool done = for_each_vector(show.store, [&](std::span<Complex> x) {
        forward_sequential_ft(x);
        if (delayed) rotate_spectrum(x, rotation, true);
    });
    if (!done) return cancelled("TPPI FT");
    if (delayed) show.group_delay = 0;
    becomes_spectrum(show.dims[0]);
    return 1;
}

int inverse_ft() {
    if (!fill_to_power_of_two()) return 0;
    if (show.level > 3) return refuse(format_text("Inverse FT not supported in Arrayed mode level %d", show.level));
    if (!can_transform(show.store, +1)) return refuse("Inverse FT routine failed");
    if (!for_each_vector(show.store, inverse_complex_ft)) return cancelled("Inverse FT");
    show.dims[0].frequency = false;
    mark_changed();
    return 1;
}

int hilbert_ft() {
    if (!fill_to_power_of_two()) return 0;
    if (show.level > 3) return refuse(format_text("Hilbert FT not supported in Arrayed mode level %d", show.level));
    if (!can_transform(show.store, +1)) return refuse("Inverse FT routine failed");
    if (!for_each_vector(show.store, hilbert)) return cancelled("Hilbert FT");
    mark_changed();
    return 1;
}

std::string no_column(int dimension) {
    return format_text("Memory alloction failure for cvdata in complex_ft_%dD function.", dimension);
}

// Applies a transform to the columns along dimension 2, 3 or 4.
int transform_along(int dimension, const char* name, const std::function<void(std::span<Complex>)>& kernel) {
    Dimension& transformed = show.dims[static_cast<size_t>(dimension - 1)];
    const auto along = along_dimension(show, dimension);
    if (!is_power_of_two(along ? along->length : static_cast<uint64_t>(std::max(0, transformed.points))))
        return refuse(format_text("Data must be power of 2 in the %s dimension", ordinal(dimension)));
    if (!along_or_refuse(dimension, name)) return 0;
    Buffer<Complex> probe;
    if (!probe.allocate(along->length)) return refuse(no_column(dimension));
    if (!fft_available(probe.data(), along->length, -1)) return refuse("Forward FT routine failed");
    const ColumnWork work = for_each_column(show.store, *along, kernel);
    if (work == ColumnWork::no_memory) return refuse(no_column(dimension));
    if (work == ColumnWork::cancelled) return cancelled(name);
    transformed.sense = 1;
    becomes_spectrum(transformed);
    return 1;
}

int complex_ft_along(int dimension) {
    if (dimension == 1) return complex_ft(true);
    const bool mirrored = show.dims[static_cast<size_t>(dimension - 1)].sense < 0;
    return transform_along(dimension, "Complex FT", [mirrored](std::span<Complex> x) {
        if (mirrored) conjugate(x);
        forward_complex_ft(x, true);
    });
}

// FT sequential [2D / 3D / 4D]: real samples, two to a point. They are the same for both senses of rotation: where it is
// the other one, the spectrum is turned round.
int ft_sequential(Arguments& args) {
    const int dimension = std::max(1, dimension_word(args.next(separators)));
    if (dimension == 1) return sequential_ft();
    const bool mirrored = show.dims[static_cast<size_t>(dimension - 1)].sense < 0;
    return transform_along(dimension, "TPPI FT", [mirrored](std::span<Complex> x) {
        forward_sequential_ft(x);
        if (!mirrored) return;
        conjugate(x);
        std::ranges::reverse(x);
    });
}

int ft_by_domain_code() {
    switch (show.dims[0].domain_code) {
        case domain_real:
            return do_real_ft();
        case domain_complex:
            return rotate_and_transform();
        case domain_sequential:
            return sequential_ft();
        default:
            break;
    }
    return refuse(format_text("File %s\nhas domain = %d\n\nThis is an illegal domain parameter value\nFT process aborted.",
                              show.file_a.c_str(), show.dims[0].domain_code));
}

// FT complex [1D / 2D / 3D / 4D]: no test of the domain code.
int ft_complex(Arguments& args) {
    const std::string word = args.next(separators);
    if (word.empty()) return rotate_and_transform();
    if (const int dimension = dimension_word(word)) return complex_ft_along(dimension);
    return show_reply(format_text("  - FT Complex command with illegal second argument of %s", word.c_str()));
}

// FT 2D and the like: only for a dimension that holds complex data.
int ft_of_dimension(int dimension) {
    if (show.dims[dimension - 1].domain_code != domain_complex)
        return show_reply(format_text("  - FT in Dimension %d must be COMPLEX", dimension));
    return complex_ft_along(dimension);
}

// ---- BR

int shift_fids() {
    const Dimension& dimension = show.dims[0];
    if (!can_transform(show.store, -1) || !can_transform(show.store, +1)) return refuse("Forward FT routine failed");
    const Rotation rotation = delay_rotation(show.group_delay, show.store.points(), dimension.domain_code);
    // The transform to come will conjugate data of sense -1 before it would take the delay out; real data it never does.
    const bool mirrored = dimension.sense < 0 && dimension.domain_code != domain_real;
    const bool done = for_each_vector(show.store, [&](std::span<Complex> x) {
        if (mirrored) conjugate(x);
        shift_out_delay(x, rotation);
        if (mirrored) conjugate(x);
    });
    return done ? 1 : cancelled("BR");
}

int shift_sequential_fids() {
    const size_t n = show.store.points();
    Buffer<Complex> work;
    if (!work.allocate(2 * n)) return refuse("Temporary memory allocation failure in FT module");
    if (!fft_available(work.data(), 2 * n, -1) || !fft_available(work.data(), 2 * n, +1)) return refuse("Bruker FT routine failed");
    const Rotation rotation = delay_rotation(show.group_delay, n, domain_sequential);
    for (size_t i = 0; i < show.store.count(); ++i) shift_out_delay_sequential(show.store.vector(i), rotation, work.span());
    return 1;
}

int rotate_spectra() {
    const Rotation rotation = delay_rotation(show.group_delay, show.store.points(), domain_complex);
    return rotate_vectors(show.store, rotation) ? 1 : cancelled("BR");
}

int take_out_delay() {
    const Dimension& dimension = show.dims[0];
    const int done = dimension.frequency                          ? rotate_spectra()
                     : dimension.domain_code == domain_sequential ? shift_sequential_fids()
                                                                  : shift_fids();
    if (done == 0) return 0;
    show.group_delay = 0;
    mark_changed();
    return 1;
}

}  // namespace

void becomes_spectrum(Dimension& dimension) {
    dimension.domain_code = domain_complex;
    dimension.frequency = true;
    dimension.phase_totals[0] = dimension.phase_totals[1] = 0;
    mark_changed();
}

int cmd_ft(Arguments& args) {
    if (args.ask_usage(separators)) return show_reply("  - USAGE: FT [Complex / Real / Hilbert / Inverse] [1D / 2D / 3D / 4D]");
    const WaitCursor wait;
    const std::string word = args.next(separators);
    if (word.empty()) return ft_by_domain_code();
    if (same_word(word, "complex")) return ft_complex(args);
    if (same_word(word, "complex_nosort")) return complex_ft(false);
    if (same_word(word, "real")) return do_real_ft();
    if (same_word(word, "sequential")) return ft_sequential(args);
    if (same_word(word, "inverse")) return inverse_ft();
    if (same_word(word, "hilbert")) return hilbert_ft();
    if (const int dimension = dimension_word(word)) return ft_of_dimension(dimension);
    return show_reply("  - USAGE: FT [Complex / Real / Hilbert / Inverse] [1D / 2D / 3D / 4D]");
}

int cmd_br(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  BR");
    if (!has_delay()) return show_reply("  - No group delay is pending.");
    const WaitCursor wait;
    return take_out_delay();
}

}  // namespace zolt
