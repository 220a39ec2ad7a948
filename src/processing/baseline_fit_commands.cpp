// FB: the fitted baseline is subtracted from every vector of the level.
#include <atomic>

#include "common/text.h"
#include "platform/platform.h"
#include "processing/along.h"
#include "processing/baseline_fit.h"
#include "processing/processing_commands.h"
#include "processing/values.h"
#include "state/dataset.h"

namespace zolt {

namespace {

constexpr const char* usage = "  - USAGE:  FB   [0 ... 8 / W [Lambda]]   (polynomial of an order / smooth curve; every vector)";

}  // namespace

int cmd_fb(Arguments& args) {
    if (args.ask_usage()) return show_reply(usage);
    BaselineCurve curve;
    const std::string word = args.next();
    if (same_word(word, "W")) {
        if (const std::string text = args.next(); !text.empty()) {
            const auto value = number_argument(text);
            if (!value) return not_a_number(text);
            if (!(*value > 0)) return show_reply("  - Lambda is a number above 0.");
            curve.lambda = double{*value};
        }
    } else if (!word.empty()) {
        if (word.size() != 1 || word[0] < '0' || word[0] > '8') return show_reply(usage);
        curve.order = word[0] - '0';
    }
    if (show.level > 4) return refuse(format_text("FB not supported in Arrayed mode level %d", show.level));
    if (!show.dims[0].frequency) return refuse("The fitted baseline correction needs a spectrum: transform the data first.");
    if (show.store.points() < BaselineCurve::fewest_points)
        return refuse(format_text("A baseline is fitted to %d points or more.", static_cast<int>(BaselineCurve::fewest_points)));
    const WaitCursor wait;
    std::atomic<size_t> left = 0;
    const bool done = for_each_vector(show.store, [&](std::span<Complex> x) {
        if (!correct_fitted_baseline(x, curve)) ++left;
    });
    if (!done) return cancelled("FB");
    if (left == show.store.count()) return refuse("The data hold values that are not numbers: no baseline was fitted.");
    mark_changed();
    return 1;
}

}  // namespace zolt
