// Places are read and written in the unit of the axis that is shown.
#include "display/note_commands.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "common/numbers.h"
#include "common/text.h"
#include "display/axis_scale.h"
#include "display/plot_notes.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

const char* const note_usage = "NO <text> / at <x> <y / percent%> <text> / <n> <text> / move <n> <x> <y> / delete <n / all> / list";

namespace {

constexpr size_t longest_note = 127, most_notes = 1000;

AxisScale note_axis() {
    AxisScale axis = axis_scale(show, show.cvNMRdata().size());
    const double end = static_cast<double>(show.cvNMRdata().size()) - 1;
    if (axis.kind == AxisKind::none) axis = {AxisKind::points, 0, end, end, "points"};
    return axis;
}

Note::Unit unit_of(AxisKind kind) {
    if (kind == AxisKind::ppm) return Note::Unit::ppm;
    if (kind == AxisKind::hz) return Note::Unit::hz;
    return kind == AxisKind::seconds ? Note::Unit::seconds : Note::Unit::points;
}

// The rest of the line; quotes let a note begin with a number or a word of the command.
std::string text_of(const Arguments& args) {
    std::string_view text = trimmed(args.rest());
    if (text.size() >= 2 && text.starts_with('"') && text.ends_with('"')) text = text.substr(1, text.size() - 2);
    return std::string(cut(trimmed(text), longest_note));
}

std::string height_text(const Note& note) {
    return note.y_is_share ? format_text("%.4g%%", note.y * 100) : format_text("%.6g", note.y);
}

// x and y of the line; nothing where one is no number.
bool take_place(Arguments& args, Note& note) {
    const std::string x_word = args.next(), y_word = args.next();
    const auto x = leading_number(x_word), y = leading_number(y_word);
    if (!x || !y || !std::isfinite(*x) || !std::isfinite(*y)) return false;
    note.unit = unit_of(note_axis().kind);
    note.x = *x;
    note.y_is_share = y_word.ends_with('%');
    note.y = note.y_is_share ? *y / 100 : *y;
    return true;
}

// The number of a note of the list; 0, after its message, when there is none of it.
size_t take_number(Arguments& args) {
    const int64_t number = integer_or_zero(args.next());
    if (number >= 1 && static_cast<size_t>(number) <= show.notes.size()) return static_cast<size_t>(number);
    refuse(show.notes.empty() ? std::string("There are no notes.\nNO text writes one.")
                              : format_text("There is no note %lld: they are numbered from 1 to %zu.",
                                            static_cast<long long>(number), show.notes.size()));
    return 0;
}

std::string at_line(const Note& note, int decimals) {
    return format_text("NO at %.*f %s ", decimals, note.x, height_text(note).c_str()) + note.text;
}

int add_note(Note note) {
    if (note.text.empty()) return show_reply(note_usage);
    if (show.notes.size() >= most_notes) return refuse("There is no room for more notes.");
    // The place belongs to the line, when the log is run again over another view.
    session.log_line = at_line(note, note_axis().decimals() + 1);
    show.notes.push_back(std::move(note));
    platform().reply(format_text("  - Note %zu", show.notes.size()));
    return 1;
}

// In the middle of what is shown, below the notes that are there already.
Note note_in_the_middle() {
    const AxisScale axis = note_axis();
    const std::pair<double, double> view = shown_points(show);
    const double first = view.first, last = view.second;
    Note note;
    note.unit = unit_of(axis.kind);
    note.x = axis.value((first + last) / 2);
    constexpr double highest = 0.9, lowest = 0.1, line = 0.08;
    const auto taken = [&](double y) {
        return std::any_of(show.notes.begin(), show.notes.end(), [&](const Note& other) {
            const auto point = point_of_note(show, other);
            return point && other.y_is_share && *point >= first && *point <= last && std::abs(other.y - y) < line / 2;
        });
    };
    for (note.y = highest; note.y > lowest && taken(note.y); note.y -= line) {
    }
    return note;
}

int note_at(Arguments& args) {
    Note note;
    if (!take_place(args, note)) return show_reply(note_usage);
    note.text = text_of(args);
    return add_note(std::move(note));
}

int move_note(Arguments& args) {
    const size_t number = take_number(args);
    if (number == 0) return 0;
    Note moved = show.notes[number - 1];
    if (!take_place(args, moved)) return show_reply(note_usage);
    show.notes[number - 1] = moved;
    return 1;
}

int delete_note(Arguments& args) {
    if (same_word(args.peek(), "all")) {
        show.notes.clear();
        return 1;
    }
    const size_t number = take_number(args);
    if (number == 0) return 0;
    show.notes.erase(show.notes.begin() + static_cast<std::ptrdiff_t>(number) - 1);
    return 1;
}

int edit_note(Arguments& args) {
    const size_t number = take_number(args);
    if (number == 0) return 0;
    const std::string text = text_of(args);
    if (text.empty()) return show_reply(note_usage);
    show.notes[number - 1].text = text;
    return 1;
}

int list_notes(Arguments& /*args*/) {
    if (show.notes.empty()) return show_reply("  - No notes.");
    static constexpr const char* units[] = {"ppm", "Hz", "s", "points"};
    std::string text;
    for (size_t i = 0; i < show.notes.size(); ++i) {
        const Note& note = show.notes[i];
        text += format_text("%s%3zu  %.7g %s  %s  ", i > 0 ? "\r\n" : "", i + 1, note.x, units[static_cast<size_t>(note.unit)],
                            height_text(note).c_str()) +
                note.text;
    }
    return show_reply(text);
}

constexpr struct {
    const char* word;
    int (*act)(Arguments& args);
} words[] = {{"at", note_at}, {"move", move_note}, {"delete", delete_note}, {"del", delete_note}, {"list", list_notes}};

bool is_whole_number(const std::string& word) {
    return !word.empty() && std::all_of(word.begin(), word.end(), [](char c) { return c >= '0' && c <= '9'; });
}

double share_of(const PlotLayout& layout, double y_pixel) {
    return layout.bottom > layout.top ? (layout.bottom - y_pixel) / (layout.bottom - layout.top) : 0;
}

}  // namespace

int note_command(Arguments& args) {
    if (args.ask_usage()) return show_reply(note_usage);
    const std::string word = args.peek();
    const bool quoted = trimmed(args.rest()).starts_with('"');
    for (const auto& row : words) {
        if (quoted || !same_word(word, row.word)) continue;
        args.next();
        return row.act(args);
    }
    if (!quoted && is_whole_number(word)) return edit_note(args);
    Note note = note_in_the_middle();
    note.text = text_of(args);
    return add_note(std::move(note));
}

std::string move_note_line(const PlotLayout& layout, size_t number, double point, double y_pixel) {
    const AxisScale axis = note_axis();
    Note moved;
    moved.y_is_share = number < 1 || number > show.notes.size() || show.notes[number - 1].y_is_share;
    moved.y = moved.y_is_share ? std::round(share_of(layout, y_pixel) * 1000) / 1000 : layout.value(y_pixel);
    return format_text("NO move %zu %.*f %s", number, axis.decimals() + 1, axis.value(point), height_text(moved).c_str());
}

std::string new_note_line(const PlotLayout& layout, double point, double y_pixel, const std::string& text) {
    Note note;
    note.x = note_axis().value(point);
    note.y = std::round(share_of(layout, y_pixel) * 1000) / 1000;
    note.text = text;
    return at_line(note, note_axis().decimals() + 1);
}

}  // namespace zolt
