// ID and AI: the typed forms of integration.
#include "analysis/integral_commands.h"

#include <optional>
#include <string>

#include "analysis/auto_integrals.h"
#include "common/numbers.h"
#include "common/text.h"
#include "datafile/integrals.h"
#include "platform/platform.h"
#include "state/dataset.h"

namespace zolt {

namespace {

constexpr const char* id_usage =
    "ID <from> <to> / list / clear / del <n> / scale <n> <value> / at <position> / sub <from> <to> | list | columns | clear";

std::optional<double> number_argument(Arguments& args) { return leading_number(args.next()); }

// Region `n` of the list, counted from 1; nullptr after its reply.
Integral* region_argument(Arguments& args) {
    const int64_t n = integer_or_zero(args.next());
    if (n >= 1 && n <= static_cast<int64_t>(show.integrals.size())) return &show.integrals[static_cast<size_t>(n - 1)];
    show_reply(format_text("  - There is no such integral, the list has %zu.", show.integrals.size()));
    return nullptr;
}

int define(std::vector<Integral>& list, const std::string& first, Arguments& args) {
    const auto from = leading_number(first), to = number_argument(args);
    if (!from || !to) return show_reply(id_usage);
    return define_integral(list, show, *from, *to) ? 1 : 0;
}

int list_integrals() {
    if (show.integrals.empty()) return show_reply("  - No integrals defined yet.");
    return show_reply(integral_listing(show.integrals, show.dims[0], double{show.rel_value}, ListForm::columns));
}

int delete_integral(Arguments& args) {
    const Integral* region = region_argument(args);
    if (region == nullptr) return 2;
    show.integrals.erase(show.integrals.begin() + (region - show.integrals.data()));
    return 1;
}

// The scale at which a region shows the value.
int scale_integrals(Arguments& args) {
    const Integral* region = region_argument(args);
    if (region == nullptr) return 2;
    const auto value = number_argument(args);
    if (!value) return show_reply(id_usage);
    if (region->value == 0.0F) return refuse("The integral is 0: no scale gives it another value.");
    show.rel_value = static_cast<float>(*value / double{region->value});
    return 1;
}

int read_out(Arguments& args) {
    const auto position = number_argument(args);
    if (!position) return show_reply(id_usage);
    int64_t point = 0, same = 0;
    if (!integral_range(show.dims[0], *position, *position, point, same)) return 0;
    return show_reply(integral_readout(show, point));
}

// The list goes to the clipboard; the reply line shows it.
int copy_sub_integrals(ListForm form) {
    if (show.sub_integrals.empty()) return refuse("No Sub-Integrals defined yet.");
    const std::string text = integral_listing(show.sub_integrals, show.dims[0], double{show.rel_value}, form);
    platform().clipboard(text);
    platform().reply(text);
    return 1;
}

int sub_integrals(Arguments& args) {
    const std::string word = args.next();
    if (same_word(word, "list")) return copy_sub_integrals(ListForm::tabs);
    if (same_word(word, "columns")) return copy_sub_integrals(ListForm::columns);
    if (!same_word(word, "clear")) return define(show.sub_integrals, word, args);
    show.sub_integrals.clear();
    return 1;
}

}  // namespace

int cmd_id(Arguments& args) {
    if (args.ask_usage()) return show_reply(id_usage);
    const std::string word = args.next();
    if (word.empty() || same_word(word, "list")) return list_integrals();
    if (same_word(word, "del")) return delete_integral(args);
    if (same_word(word, "scale")) return scale_integrals(args);
    if (same_word(word, "at")) return read_out(args);
    if (same_word(word, "sub")) return sub_integrals(args);
    if (!same_word(word, "clear")) return define(show.integrals, word, args);
    show.integrals.clear();
    return 1;
}

int cmd_ai(Arguments& args) {
    if (args.ask_usage()) return show_reply("Usage: AI <segments> <# segments>");
    int64_t segments = 32;
    if (same_word(args.next(), "segments")) {
        const auto number = number_argument(args);
        if (!number) return refuse("No argument for AI segments");
        if (*number < 4) return refuse("Illegal argument for AI segments, must be 4 or more.");
        segments = static_cast<int64_t>(std::min(*number, 1e9));
    }
    const auto regions = find_regions(show.cvNMRdata(), show.dims[0].axis(), segments);
    if (regions.empty()) return show_reply("  - No signal stands out of the noise.");
    show.integrals.clear();
    show.integral_points = show.pts1d();
    for (const auto& [first, last] : regions) add_integral(show.integrals, show, first, last);
    platform().reply(format_text("  - %zu integrals", regions.size()));
    return 1;
}

}  // namespace zolt
