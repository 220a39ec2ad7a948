// B1, B2, BV and Exchange: what stands beside File A, and how it is drawn.
#include <cmath>
#include <optional>
#include <utility>

#include "common/file.h"
#include "common/numbers.h"
#include "common/text.h"
#include "datafile/file_commands.h"
#include "datafile/placed.h"
#include "platform/platform.h"
#include "state/dataset.h"
#include "state/overlay.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr const char* look_usage = "show / hide / scale <factor / auto> / offset <intensity / percent%> / color <r g b / auto>";

// What the words change, of File B or of a buffer.
struct Look {
    int number;
    bool& shown;
    double& scale;
    double& offset;
    std::array<int, 3>& color;
    double amplitude;  // that the scale is multiplied by
};

std::optional<double> number_of(const std::string& word) {
    const auto value = leading_number(word);
    return value && std::isfinite(*value) && std::abs(*value) <= 1e30 ? value : std::nullopt;
}

bool set_shown(Look& look, Arguments&) { return look.shown = true; }
bool set_hidden(Look& look, Arguments&) { return look.shown = false, true; }

// auto: the tallest signal is drawn as tall as that of File A.
bool set_scale(Look& look, Arguments& args) {
    const std::string word = args.next();
    if (!same_word(word, "auto")) {
        const auto factor = number_of(word);
        if (factor) look.scale = *factor;
        return factor.has_value();
    }
    const double highest = tallest(show.cvNMRdata()), other = tallest(companion_of(show, look.number)->points) * look.amplitude;
    if (highest > 0 && other > 0) look.scale = highest / other;
    return true;
}

// 20% lifts it by a fifth of the tallest signal of File A.
bool set_offset(Look& look, Arguments& args) {
    const std::string word = args.next();
    const auto value = number_of(word);
    if (value) look.offset = word.ends_with('%') ? *value / 100 * tallest(show.cvNMRdata()) : *value;
    return value.has_value();
}

bool set_color(Look& look, Arguments& args) {
    std::array<int, 3> color = usual_overlay_colour(look.number);
    if (!same_word(args.peek(), "auto"))
        for (int& part : color) {
            const auto value = leading_number(args.next(" ,\r\n="));
            if (!value || !(*value >= 0 && *value <= 255)) return false;
            part = static_cast<int>(*value);
        }
    look.color = color;
    return true;
}

constexpr struct {
    const char* word;
    bool (*set)(Look& look, Arguments& args);
} look_words[] = {{"show", set_shown},    {"hide", set_hidden}, {"scale", set_scale},
                  {"offset", set_offset}, {"color", set_color}, {"colour", set_color}};

std::string look_text(const Look& look) {
    return format_text("%s, scale %.6g, offset %.6g, color %d %d %d", look.shown ? "shown" : "hidden", look.scale, look.offset,
                       look.color[0], look.color[1], look.color[2]);
}

// Why it does not appear on the plot, although it is to be shown; "" when it does.
std::string why_not_drawn(int number) {
    const auto other = companion_of(show, number);
    return other && other->look.shown ? align(show, *other).refusal : std::string();
}

// The words of the commands; nothing for another word.
std::optional<int> change_look(Look look, const std::string& label, const std::string& usage, Arguments& args) {
    const std::string word = args.peek();
    for (const auto& row : look_words) {
        if (!same_word(word, row.word)) continue;
        args.next();
        if (!row.set(look, args)) return show_reply(usage);
        const std::string hindrance = why_not_drawn(look.number);
        platform().reply("  - " + label + ": " + look_text(look) + (hindrance.empty() ? "" : "   " + hindrance));
        return 1;
    }
    return std::nullopt;
}

}  // namespace

int store_buffer(int number, Arguments& args) {
    const std::string usage = format_text("B%d [comment / clear / ", number) + look_usage + "]";
    if (args.ask_usage()) return show_reply(usage);
    const std::string label = format_text("Buffer %d", number);
    if (same_word(args.peek(), "clear")) {
        std::erase_if(show.buffers, [&](const DataBuffer& b) { return b.number == number; });
        platform().reply("  - " + label + " cleared");
        return 1;
    }
    bool is_look = false;
    for (const auto& row : look_words) is_look = is_look || same_word(args.peek(), row.word);
    if (is_look) {
        for (DataBuffer& b : show.buffers)
            if (b.number == number && !b.points.empty())
                return *change_look({number, b.shown, b.scale, b.offset_y, b.color, b.amplitude}, label, usage, args);
        return refuse(label + " is empty.\n" + format_text("B%d keeps the current data in it.", number));
    }
    const std::string comment(trimmed(args.rest()));
    set_buffer(show, buffer_of(show, number, comment.empty() ? name_of(show.file_a) : comment));
    platform().reply(format_text("  - Buffer %d holds %d points", number, show.pts1d()));
    return 1;
}

int cmd_bv(Arguments& args) {
    const std::string usage = std::string("BV [clear / ") + look_usage + "]";
    if (args.ask_usage()) return show_reply(usage);
    if (!companion_of(show, 0)) return refuse("There is no File B.\nOpen one with GB.");
    const Look look{0, look_b.shown, look_b.factor, look_b.constant, look_b.color, 1};
    if (args.peek().empty()) return show_reply("  - File B: " + look_text(look));
    if (same_word(args.peek(), "clear")) {
        if (!agreed_to_drop_b("BV")) return 0;
        show_b = DataSet();
        show.file_b.clear();
        platform().reply("  - File B closed");
        return 1;
    }
    const auto result = change_look(look, "File B", usage, args);
    return result ? *result : show_reply(usage);
}

bool agreed_to_drop_b(const char* caption) {
    return !show_b.loaded || !show_b.changed || playing_back() ||
           platform().question(caption, "File B has been modified and NOT saved to disk.\n\nYES will drop it from memory\n",
                               Buttons::yes_no) == Answer::yes;
}

void report_file_b() {
    const std::string hindrance = show.loaded ? why_not_drawn(0) : std::string();
    if (!hindrance.empty()) platform().reply("  - Not drawn over File A: " + hindrance);
}

int cmd_exchange(Arguments& args) {
    if (args.ask_usage()) return show_reply("EXC or Exchange");
    if (CurrentArrayedLevel() != 0)
        return refuse(format_text("Exchange not supported in Arrayed mode level %d", CurrentArrayedLevel()));
    if (!show_b.loaded) return refuse("There is no File B.\nOpen one with GB.");
    std::swap(show, show_b);
    show.file_b = show_b.file_a;
    show_b.file_b.clear();
    report_file_b();
    return 1;
}

}  // namespace zolt
