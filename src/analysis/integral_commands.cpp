// ID and AI: the typed forms of integration.
#include "analysis/integral_commands.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "analysis/auto_integrals.h"
#include "common/numbers.h"
#include "common/text.h"
#include "datafile/integrals.h"
#include "platform/platform.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr const char* id_usage =
    "ID <from> <to> / list / delete <n>, at <position> or all / split <position> / move <n> <from> <to> / calibrate <n> <value> / "
    "REL_VALUE <scale> / at <position> / show / hide / sub <from> <to>, list, columns, delete <n> or clear";

int usage() { return show_reply(id_usage); }

// Refused with a line instead of a message: the list stays as it is.
int no(const std::string& why) {
    platform().reply("  - " + why);
    return 0;
}

std::optional<double> number_argument(Arguments& args) {
    const auto value = leading_number(args.next());
    return value && std::isfinite(*value) ? value : std::nullopt;
}

struct Limits {
    int64_t start = 0, end = 0;
};

// Two positions in the axis unit; nothing, after usage or message and with its result, without them.
std::optional<Limits> limits_argument(const std::string& first, Arguments& args, int& result) {
    const auto from = leading_number(first), to = number_argument(args);
    Limits limits;
    result = from && std::isfinite(*from) && to ? 0 : usage();
    if (result != 0 || !integral_range(show.dims[0], *from, *to, limits.start, limits.end)) return std::nullopt;
    return limits;
}

// A region by its number, counted from 1, or by "at" and a position within it; nothing after a reply.
std::optional<size_t> region_argument(const std::vector<Integral>& list, Arguments& args) {
    const std::string word = args.next();
    if (same_word(word, "at")) {
        const auto position = number_argument(args);
        int64_t point = 0, same = 0;
        if (!position || !integral_range(show.dims[0], *position, *position, point, same)) return std::nullopt;
        const auto found = integral_at(list, point);
        if (!found) no("There is no integral at this place.");
        return found;
    }
    const int64_t n = integer_or_zero(word);
    if (n >= 1 && n <= static_cast<int64_t>(list.size())) return static_cast<size_t>(n - 1);
    no(format_text("There is no such integral, the list has %zu.", list.size()));
    return std::nullopt;
}

int define(std::vector<Integral>& list, const std::string& first, Arguments& args) {
    int result = 0;
    const auto limits = limits_argument(first, args, result);
    if (!limits) return result;
    const int64_t label = std::clamp<int64_t>(integer_or_zero(args.next()), INT32_MIN, INT32_MAX);
    add_integral(list, show, limits->start, limits->end, static_cast<int32_t>(label));
    session.integrals_shown = true;
    return 1;
}

int remove_region(std::vector<Integral>& list, Arguments& args) {
    const auto region = region_argument(list, args);
    if (!region) return 0;
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(*region));
    return 1;
}

int list_integrals(Arguments& /*args*/) {
    if (show.integrals.empty()) return show_reply("  - No integrals defined yet.");
    return show_reply(integral_listing(show.integrals, show.dims[0], double{show.rel_value}, ListForm::columns));
}

int clear_integrals(Arguments& /*args*/) {
    show.integrals.clear();
    return 1;
}

int delete_integral(Arguments& args) {
    if (args.peek().empty()) return usage();
    return same_word(args.peek(), "all") ? clear_integrals(args) : remove_region(show.integrals, args);
}

int split_region(Arguments& args) {
    if (same_word(args.peek(), "at")) args.next();
    const auto position = number_argument(args);
    if (!position) return usage();
    int64_t point = 0, same = 0;
    if (!integral_range(show.dims[0], *position, *position, point, same)) return 0;
    const auto region = integral_at(show.integrals, point);
    if (!region || point <= show.integrals[*region].start) return no("There is no integral to be split at this place.");
    split_integral(show.integrals, show, *region, point);
    return 1;
}

int move_region(Arguments& args) {
    if (args.peek().empty()) return usage();
    const auto region = region_argument(show.integrals, args);
    if (!region) return 0;
    int result = 0;
    const auto limits = limits_argument(args.next(), args, result);
    if (!limits) return result;
    const int32_t label = show.integrals[*region].label;
    show.integrals.erase(show.integrals.begin() + static_cast<std::ptrdiff_t>(*region));
    add_integral(show.integrals, show, limits->start, limits->end, label);
    return 1;
}

// The scale at which a region shows the value.
int calibrate(Arguments& args) {
    if (args.peek().empty()) return usage();
    const auto region = region_argument(show.integrals, args);
    if (!region) return 0;
    const auto value = number_argument(args);
    if (!value || *value == 0) return usage();
    const double stored = double{show.integrals[*region].value};
    const auto scale = static_cast<float>(*value / stored);
    if (stored == 0 || !std::isfinite(scale) || scale == 0.0F)
        return refuse(format_text("The integral is %g: no scale gives it the value %g.", stored, *value));
    show.rel_value = scale;
    return 1;
}

int set_scale(Arguments& args) {
    if (args.peek().empty()) return show_reply(format_text("  - REL_VALUE = %.9g", double{show.rel_value}));
    const auto value = number_argument(args);
    if (!value || !std::isfinite(static_cast<float>(*value))) return usage();
    show.rel_value = static_cast<float>(*value);
    return 1;
}

int read_out(Arguments& args) {
    const auto position = number_argument(args);
    if (!position) return usage();
    int64_t point = 0, same = 0;
    if (!integral_range(show.dims[0], *position, *position, point, same)) return 0;
    return show_reply(integral_readout(show, point));
}

template <bool shown>
int draw_integrals(Arguments& /*args*/) {
    session.integrals_shown = shown;
    return 1;
}

// The list goes to the clipboard; the reply line shows it.
int copy_sub_integrals(ListForm form) {
    if (show.sub_integrals.empty()) return refuse("No Sub-Integrals defined yet.");
    const std::string text = integral_listing(show.sub_integrals, show.dims[0], double{show.rel_value}, form);
    list_to_clipboard(text);
    platform().reply(text);
    return 1;
}

int sub_integrals(Arguments& args) {
    std::string word = args.next();
    if (same_word(word, "list")) return copy_sub_integrals(ListForm::tabs);
    if (same_word(word, "columns")) return copy_sub_integrals(ListForm::columns);
    if (same_word(word, "delete")) return remove_region(show.sub_integrals, args);
    if (same_word(word, "add")) word = args.next();
    if (!same_word(word, "clear")) return define(show.sub_integrals, word, args);
    show.sub_integrals.clear();
    return 1;
}

// One row, one action; anything else is the first limit of a new region.
constexpr struct {
    const char* word;
    int (*act)(Arguments& args);
} actions[] = {
    {"list", list_integrals},        {"delete", delete_integral},
    {"del", delete_integral},        {"clear", clear_integrals},
    {"split", split_region},         {"move", move_region},
    {"calibrate", calibrate},        {"scale", calibrate},
    {"REL_VALUE", set_scale},        {"at", read_out},
    {"sub", sub_integrals},          {"show", draw_integrals<true>},
    {"hide", draw_integrals<false>},
};

}  // namespace

int typed_id(Arguments& args) {
    if (args.ask_usage()) return usage();
    const std::string word = args.next();
    for (const auto& row : actions)
        if (same_word(row.word, word)) return row.act(args);
    return define(show.integrals, word, args);
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
    for (const auto& [first, last] : regions) add_integral(show.integrals, show, first, last);
    session.integrals_shown = true;
    platform().reply(format_text("  - %zu integrals", regions.size()));
    return 1;
}

}  // namespace zolt
