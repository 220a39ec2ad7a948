// ZF, and the fill that every transform makes first.
#include "processing/zero_fill.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "common/numbers.h"
#include "common/text.h"
#include "platform/platform.h"
#include "processing/processing_commands.h"
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
    const size_t points = filled_count(show.store.points());
    // Files and commands count points in 31 bits.
    if (points > size_t{std::numeric_limits<int32_t>::max()}) return out_of_memory();
    VectorStore filled;
    if (!filled.allocate(show.store.count(), points)) return out_of_memory();
    for (size_t i = 0; i < filled.count(); ++i) std::ranges::copy(show.store.vector(i), filled.vector(i).begin());
    show.store = std::move(filled);
    show.dims[0].points = static_cast<int32_t>(points);
    return true;
}

int cmd_zf(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  ZF");
    const WaitCursor wait;
    if (!zero_fill()) return 0;
    mark_changed();
    return 1;
}

}  // namespace zolt
