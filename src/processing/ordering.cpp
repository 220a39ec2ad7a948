// SR, LS, RS, RD and AlternateSign: other places for the points, or other signs.
#include "processing/ordering.h"

#include <algorithm>
#include <string>

#include "common/numbers.h"
#include "common/text.h"
#include "datafile/integrals.h"
#include "platform/platform.h"
#include "processing/along.h"
#include "processing/processing_commands.h"
#include "processing/values.h"
#include "state/columns.h"
#include "state/dataset.h"

namespace zolt {

void shift(std::span<Complex> x, int64_t amount) {
    const auto size = static_cast<int64_t>(x.size());
    const auto n = static_cast<std::ptrdiff_t>(std::clamp(amount, -size, size));
    if (n >= 0)
        std::fill(std::copy(x.begin() + n, x.end(), x.begin()), x.end(), Complex());
    else
        std::fill(x.begin(), std::copy_backward(x.begin(), x.end() + n, x.end()), Complex());
}

namespace {

// Exchanges the vectors of a dimension end for end.
int reverse_along(int dimension) {
    const auto along = along_or_refuse(dimension, "Spectrum Reverse");
    if (!along) return 0;
    const WaitCursor wait;
    for (size_t o = 0; o < along->outer; ++o)
        for (size_t k = 0; k < along->length / 2; ++k)
            for (size_t i = 0; i < along->inner; ++i)
                std::ranges::swap_ranges(show.store.vector(along->vector(o, k, i)),
                                         show.store.vector(along->vector(o, along->length - 1 - k, i)));
    mark_changed();
    return 1;
}

// LS and RS: their number of points.
int shift_command(Arguments& args, const char* name, int64_t direction) {
    const std::string word = args.ask_usage() ? "" : args.next();
    if (word.empty()) return show_reply(format_text("  - USAGE:  %s   points", name));
    if (!leading_number(word)) return not_a_number(word);
    const int64_t amount = integer_or_zero(word);
    if (amount < 0) return refuse(format_text("%s takes a number of points that is not negative.", name));
    const int64_t to_left = direction * std::min<int64_t>(amount, INT32_MAX);
    if (apply_to_vectors(name, [=](std::span<Complex> x) { shift(x, to_left); }) == 0) return 0;
    move_integrals(show, 1, -to_left);
    return 1;
}

}  // namespace

int cmd_sr(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  SR   [2D / 3D / 4D]");
    if (show.level > 4) return refuse(format_text("Spectrum Reverse not supported in Arrayed mode level %d", show.level));
    const int dimension = take_dimension(args);
    if (dimension > 1) return reverse_along(dimension);
    if (apply_to_vectors("Spectrum Reverse", [](std::span<Complex> x) { std::ranges::reverse(x); }) == 0) return 0;
    move_integrals(show, -1, show.pts1d() - 1);
    return 1;
}

int cmd_ls(Arguments& args) { return shift_command(args, "LS", 1); }

int cmd_rs(Arguments& args) { return shift_command(args, "RS", -1); }

int cmd_rd(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  RD   points   [left / right]");
    const std::string word = args.next(), side = args.next();
    if (word.empty()) return show_reply(format_text("  - The next FT rotates by %d points to the left.", show.rotation));
    const bool right = same_word(side, "right");
    if (!leading_number(word) || (!side.empty() && !right && !same_word(side, "left")))
        return show_reply("  - USAGE:  RD   points   [left / right]");
    const int64_t points = std::max(show.pts1d(), 1);
    const int64_t amount = integer_or_zero(word) % points;
    // One turn is none: an amount to the right is the rest of a turn to the left.
    show.rotation = static_cast<int32_t>(((right ? -amount : amount) + points) % points);
    return 1;
}

int cmd_alternatesign(Arguments& args) {
    if (args.ask_usage()) return show_reply("  - USAGE:  AlternateSign   2D / 3D / 4D");
    const int dimension = take_dimension(args);
    if (dimension == 1) return show_reply("  - USAGE:  AlternateSign   2D / 3D / 4D");
    const auto along = along_or_refuse(dimension, "AlternateSign");
    if (!along) return 0;
    return apply_to_vectors("AlternateSign", [&](std::span<Complex> x, size_t i) {
        if (along->place(i) % 2 != 0) scale(x, -1);
    });
}

}  // namespace zolt
