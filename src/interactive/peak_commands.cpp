// DP, MH, PL, ZL, NF: peaks by typed commands. What they pick is decided in analysis/, what is in view in display/.
#include <algorithm>
#include <cmath>
#include <optional>

#include "analysis/peak_list.h"
#include "common/numbers.h"
#include "common/text.h"
#include "config/settings.h"
#include "datafile/peaklist.h"
#include "display/view.h"
#include "interactive/interactive_commands.h"
#include "interactive/peak_region.h"
#include "interactive/routine.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr const char* dp_usage =
    "DP [from to] / add <at> [to] / delete <n> | at <position> | all / label <n> [text] / ppm | hz | axis / vertical | horizontal "
    "/ "
    "both | positive / show | hide";
constexpr const char* mh_usage = "MH <height> / -p <percent of tallest> / rms <times noise> / auto / on | off (line)";

using Range = std::pair<double, double>;

int done(const std::string& what) {
    platform().reply("  - " + what);
    return 1;
}

std::string peaks_text(size_t count) { return format_text("%zu peak%s", count, count == 1 ? "" : "s"); }

// True after its message for data that have no peaks to pick.
bool not_a_spectrum(const char* keyword) {
    if (show.dims[0].frequency) return false;
    refuse(format_text("%s needs a spectrum.\nTransform the data first (FT).", keyword));
    return true;
}

std::optional<double> finite_number(Arguments& args) {
    const auto value = leading_number(args.next());
    return value && std::isfinite(*value) ? value : std::nullopt;
}

// The points between two typed positions.
std::optional<Range> typed_region(double from, Arguments& args) {
    const auto to = finite_number(args);
    if (!to || *to == from) return std::nullopt;
    const AxisScale axis = peak_axis();
    const double one_end = axis.point(from), other_end = axis.point(*to);
    return Range{std::min(one_end, other_end), std::max(one_end, other_end)};
}

double height_of_today() { return minimum_height(height_scale(show, session.peaks), session.peaks); }

int pick_into_list(const Range& region) {
    const HeightScale scale = height_scale(show, session.peaks);
    const double height = minimum_height(scale, session.peaks);
    show.peaks = peaks_between(show, session.peaks, region.first, region.second, height);
    show.peak_origin = {};
    session.peaks.shown = true;
    return done(peaks_text(show.peaks.size()) + " above " + height_text(scale, height));
}

int pick_more(const Range& region) {
    const auto found = peaks_between(show, session.peaks, region.first, region.second, height_of_today());
    for (const Peak& peak : found) add_peak(show, peak);
    return done(format_text("%s added, %zu in the list", peaks_text(found.size()).c_str(), show.peaks.size()));
}

int add_at(double position) {
    const AxisScale axis = peak_axis();
    const double end = static_cast<double>(show.cvNMRdata().size()) - 1;
    double point = axis.point(position);
    if (!(point >= 0 && point <= end)) return refuse(format_text("%.7g is outside of the spectrum.", position));
    double height = height_at(show.cvNMRdata(), point);
    if (setting_switch("SNAP_TO_PEAK")) {
        const auto tops = peaks_between(show, session.peaks, 0, end, 0);
        if (const int nearest = nearest_peak(tops, point); nearest >= 0) {
            point = tops[static_cast<size_t>(nearest)].point;
            height = tops[static_cast<size_t>(nearest)].intensity;
        }
    }
    add_peak(show, peak_at(show, point, height));
    session.peaks.shown = true;
    return done("Peak added at " + axis_text(axis, axis.value(point)));
}

int add_peaks_typed(Arguments& args) {
    const auto from = finite_number(args);
    if (!from) return show_reply(dp_usage);
    if (args.peek().empty()) return add_at(*from);
    const auto region = typed_region(*from, args);
    return region ? pick_more(*region) : show_reply(dp_usage);
}

// Peak `n` of the list, counted from 1, as an index; -1 after its reply.
int numbered_peak(Arguments& args) {
    const int64_t n = integer_or_zero(args.next());
    if (n >= 1 && n <= static_cast<int64_t>(show.peaks.size())) return static_cast<int>(n - 1);
    show_reply(format_text("  - There is no such peak, the list has %zu.", show.peaks.size()));
    return -1;
}

int delete_peaks(Arguments& args) {
    int index = -1;
    if (same_word(args.peek(), "all")) {
        show.peaks.clear();
        return done("No peaks are left");
    }
    if (same_word(args.peek(), "at")) {
        args.next();
        const auto position = finite_number(args);
        if (!position) return show_reply(dp_usage);
        index = nearest_peak(show.peaks, peak_axis().point(*position));
        if (index < 0) return show_reply("  - There are no peaks.");
    } else {
        index = numbered_peak(args);
        if (index < 0) return 2;
    }
    const double at = show.peaks[static_cast<size_t>(index)].point;
    show.peaks.erase(show.peaks.begin() + index);
    const AxisScale axis = peak_axis();
    return done("Peak taken out at " + axis_text(axis, axis.value(at)));
}

int label_peak(Arguments& args) {
    const int index = numbered_peak(args);
    if (index < 0) return 2;
    show.peaks[static_cast<size_t>(index)].label = cut(one_line(std::string(trimmed(args.rest()))), 127);
    return 1;
}

int set_direction(LabelDirection direction) {
    session.peaks.direction = direction;
    for (Peak& peak : show.peaks) peak.horizontal = direction == LabelDirection::horizontal ? 1 : 0;
    return 1;
}

int set_unit(LabelUnit unit) {
    session.peaks.unit = unit;
    return 1;
}

int set_shown(bool shown) {
    session.peaks.shown = shown;
    return 1;
}

int set_negative(bool negative) {
    session.peaks.negative = negative;
    return done(negative ? "Lines that point down are picked, too" : "Lines that point up are picked");
}

// Words that DP knows; one row, one thing.
constexpr struct {
    const char* word;
    int (*act)(Arguments& args);
} dp_words[] = {
    {"add", add_peaks_typed},
    {"delete", delete_peaks},
    {"del", delete_peaks},
    {"clear", [](Arguments&) { return show.peaks.clear(), done("No peaks are left"); }},
    {"label", label_peak},
    {"list", cmd_pl},
    {"ppm", [](Arguments&) { return set_unit(LabelUnit::ppm); }},
    {"hz", [](Arguments&) { return set_unit(LabelUnit::hz); }},
    {"axis", [](Arguments&) { return set_unit(LabelUnit::axis); }},
    {"vertical", [](Arguments&) { return set_direction(LabelDirection::vertical); }},
    {"horizontal", [](Arguments&) { return set_direction(LabelDirection::horizontal); }},
    {"both", [](Arguments&) { return set_negative(true); }},
    {"positive", [](Arguments&) { return set_negative(false); }},
    {"show", [](Arguments&) { return set_shown(true); }},
    {"hide", [](Arguments&) { return set_shown(false); }},
};

bool set_minimum_height(HeightUnit unit, std::optional<double> value) {
    if (!value || !(*value >= 0) || !std::isfinite(*value)) return false;
    session.peaks.height_unit = unit;
    session.peaks.height = *value;
    return true;
}

}  // namespace

AxisScale peak_axis() {
    AxisScale axis = axis_scale(show, show.cvNMRdata().size());
    if (axis.kind == AxisKind::none) {
        const double end = static_cast<double>(show.cvNMRdata().size()) - 1;
        axis = {AxisKind::points, 0, end, end, "points"};
    }
    return axis;
}

std::string position_word(double point) {
    const AxisScale axis = peak_axis();
    return format_text("%.*f", axis.decimals() + 2, axis.value(point));
}

int cmd_dp(Arguments& args) {
    if (args.ask_usage()) return show_reply(format_text("%s   now: %s", dp_usage, peaks_text(show.peaks.size()).c_str()));
    for (const auto& row : dp_words)
        if (same_word(args.peek(), row.word)) {
            args.next();
            return row.act(args);
        }
    if (not_a_spectrum("DP")) return 0;
    if (setting_switch("DP_FIRSTARG") && !args.peek().empty() &&
        !set_minimum_height(HeightUnit::intensity, leading_number(args.next())))
        return show_reply(dp_usage);
    if (args.peek().empty()) return pick_into_list(shown_points(show));
    const auto from = finite_number(args);
    const auto region = from ? typed_region(*from, args) : std::nullopt;
    return region ? pick_into_list(*region) : show_reply(dp_usage);
}

int cmd_mh(Arguments& args) {
    const auto tell = [](const char* before) {
        const HeightScale scale = height_scale(show, session.peaks);
        return std::string(before) + height_text(scale, minimum_height(scale, session.peaks));
    };
    const bool asks = args.ask_usage();
    if (asks) return show_reply(std::string(mh_usage) + tell("   now: "));
    const std::string word = args.next();
    if (word.empty()) return not_a_spectrum("MH") ? 0 : enter_peak_picking();
    if (same_word(word, "on") || same_word(word, "off")) {
        session.peaks.line = same_word(word, "on");
        return 1;
    }
    bool set = true;
    if (same_word(word, "auto")) {
        session.peaks.height_unit = HeightUnit::automatic;
    } else if (same_word(word, "rms")) {
        set = set_minimum_height(HeightUnit::noise, args.peek().empty() ? 5.0 : leading_number(args.next()));
    } else if (same_word(word, "-p")) {
        set = set_minimum_height(HeightUnit::percent, leading_number(args.next()));
    } else {
        const bool percent = word.ends_with('%') || args.peek() == "%";
        set = set_minimum_height(percent ? HeightUnit::percent : HeightUnit::intensity, leading_number(word));
    }
    return set ? done(tell("Minimum height ")) : show_reply(std::string(mh_usage) + tell("   now: "));
}

namespace {

int list_peaks(const std::vector<Peak>& list, const char* none) {
    if (list.empty()) return show_reply(none);
    list_to_clipboard(peak_table(show, list, setting_switch("UseTabs")));
    platform().reply(peak_table(show, list, false));
    return 1;
}

}  // namespace

int cmd_pl(Arguments& args) {
    if (args.ask_usage()) return show_reply("PL [short]: the peak list in the reply line and on the clipboard");
    if (same_word(args.peek(), "short") && !show.peaks.empty()) {
        const std::string text = peak_listing(show);
        list_to_clipboard(text);
        platform().reply(text);
        return 1;
    }
    return list_peaks(show.peaks, "  - No peaks defined yet: DP picks them.");
}

int cmd_zl(Arguments& args) {
    if (args.ask_usage()) return show_reply("ZL: the peak list of what is shown");
    const auto [first, last] = shown_points(show);
    std::vector<Peak> list;
    for (const Peak& peak : show.peaks)
        if (peak.point >= first && peak.point <= last) list.push_back(peak);
    return list_peaks(list, "  - No peaks are defined in what is shown: DP picks them.");
}

int cmd_nf(Arguments& args) {
    constexpr const char* usage =
        "NF [from to]: tallest peak in view over twice the rms noise, of the region or of quiet stretches";
    if (args.ask_usage()) return show_reply(usage);
    if (not_a_spectrum("NF")) return 0;
    const auto vector = show.cvNMRdata();
    const AxisScale axis = peak_axis();
    double noise = noise_level(vector);
    std::string of = "quiet stretches";
    if (!args.peek().empty()) {
        const auto from = finite_number(args);
        const auto region = from ? typed_region(*from, args) : std::nullopt;
        if (!region) return show_reply(usage);
        const double end = static_cast<double>(vector.size());
        const auto first = static_cast<size_t>(std::clamp(std::ceil(region->first), 0.0, end)),
                   behind = static_cast<size_t>(std::clamp(std::floor(region->second) + 1, 0.0, end));
        noise = behind > first ? deviation_from_line(vector.subspan(first, behind - first)) : 0;
        of = axis_text(axis, axis.value(region->first), false) + " to " + axis_text(axis, axis.value(region->second));
    }
    if (!(noise > 0)) return refuse("There is no noise to measure.\nGive a region without signals: NF from to.");
    const auto [first, last] = shown_points(show);
    const SignalToNoise found =
        signal_to_noise(vector, static_cast<size_t>(std::ceil(first)), static_cast<size_t>(std::floor(last)) + 1, noise);
    return show_reply(format_text("  - Signal to noise %.4g: %.5g at %s over twice the rms noise %.4g of %s", found.ratio(),
                                  found.tallest, axis_text(axis, axis.value(static_cast<double>(found.tallest_at))).c_str(), noise,
                                  of.c_str()));
}

}  // namespace zolt
