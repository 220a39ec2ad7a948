// ZF, and the fill that every transform makes first.
#include "processing/zero_fill.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "common/numbers.h"
#include "common/text.h"
#include "datafile/slice.h"
#include "platform/platform.h"
#include "processing/along.h"
#include "processing/processing_commands.h"
#include "processing/values.h"
#include "state/dataset.h"

namespace zolt {

namespace {

size_t filled_count(size_t points) { return points == 1 || is_power_of_two(points) ? 2 * points : next_power_of_two(points); }

bool out_of_memory() {
    platform().beep();
    refuse(show.level == 0 ? "cvtmp - Insufficient Memory to perform Zero Fill operation."
                           : "Insufficient Memory to perform Zero Fill operation.");
    return false;
}

}  // namespace

bool zero_fill() {
    if (show.level > 3) return refuse(format_text("Zero Fill not supported in Arrayed mode level %d", show.level)) != 0;
    if (show.store.points() == 0) return refuse("The data set holds no points.") != 0;
    return zero_fill_to(filled_count(show.store.points()));
}

bool zero_fill_to(size_t points) {
    // Files and commands count points in 31 bits.
    if (points > size_t{std::numeric_limits<int32_t>::max()}) return out_of_memory();
    VectorStore filled;
    if (!filled.allocate_unset(show.store.count(), points)) return out_of_memory();
    const VectorStore& old = show.store;
    const bool done = for_each_vector(filled, [&](std::span<Complex> x, size_t i) {
        const auto from = old.vector(i);
        std::copy(from.begin(), from.end(), x.begin());
        std::fill(x.begin() + static_cast<std::ptrdiff_t>(from.size()), x.end(), Complex());
    });
    if (!done) return cancelled("Zero Fill") != 0;
    show.store = std::move(filled);
    show.dims[0].points = static_cast<int32_t>(points);
    return true;
}

bool zero_fill_along(int dimension, const Along& along, size_t length) {
    Dimension& filled_dimension = show.dims[static_cast<size_t>(dimension - 1)];
    const size_t new_points = static_cast<size_t>(filled_dimension.points) / along.length * length;
    const size_t count = along.outer * length * along.inner;
    VectorStore filled;
    if (new_points > size_t{std::numeric_limits<int32_t>::max()} || !filled.allocate_unset(count, show.store.points()))
        return out_of_memory();
    const VectorStore& old = show.store;
    const Along wide{along.outer, length, along.inner};
    const bool done = for_each_vector(filled, [&](std::span<Complex> x, size_t i) {
        const size_t place = wide.place(i), outer = i / wide.inner / wide.length;
        if (place < along.length)
            std::ranges::copy(old.vector(along.vector(outer, place, i % wide.inner)), x.begin());
        else
            std::fill(x.begin(), x.end(), Complex());
    });
    if (!done) return cancelled("Zero Fill") != 0;
    show.store = std::move(filled);
    filled_dimension.points = static_cast<int32_t>(new_points);
    select_in_memory(show.slice);
    return true;
}

int cmd_zf(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  ZF");
    const WaitCursor wait;
    if (!zero_fill()) return 0;
    mark_changed();
    return 1;
}

int cmd_zerofill(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  ZeroFill   [2D / 3D / 4D]   [points]");
    const int dimension = take_dimension(args);
    const std::string word = args.next();
    if (!word.empty() && !leading_number(word)) return not_a_number(word);
    Along along{1, show.store.points(), 1};
    if (dimension > 1) {
        const auto found = along_or_refuse(dimension, "Zero Fill");
        if (!found) return 0;
        along = *found;
    }
    if (along.length == 0) return refuse("The data set holds no points.");
    const auto present = static_cast<int64_t>(along.length);
    const int64_t points = word.empty() ? static_cast<int64_t>(filled_count(along.length)) : integer_or_zero(word);
    if (points < present)
        return refuse(
            format_text("Zero Fill takes a number of points not below the %lld that there are.", static_cast<long long>(present)));
    const WaitCursor wait;
    const auto length = static_cast<size_t>(points);
    if (!(dimension == 1 ? zero_fill_to(length) : zero_fill_along(dimension, along, length))) return 0;
    mark_changed();
    return 1;
}

}  // namespace zolt
