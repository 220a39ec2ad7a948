// SET: one row for each keyword. Keywords of work that is not there yet leave their value in session.macro_values.
#include <algorithm>
#include <cmath>

#include "common/file.h"
#include "common/numbers.h"
#include "common/text.h"
#include "config/paths.h"
#include "config/settings.h"
#include "datafile/integrals.h"
#include "macro/macro_host.h"
#include "macro/registers.h"
#include "macro/statements.h"
#include "platform/platform.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr double any = 1e300;
constexpr double day = 86400e3;  // milliseconds

struct SetKeyword {
    const char* word;
    Outcome (*apply)(const SetKeyword& keyword, Arguments& args);
    const char* detail = "";  // what the row's function makes of it
    double lowest = -any, highest = any;
};

void keep(const SetKeyword& keyword, const std::string& value) { session.macro_values[upper(keyword.word)] = value; }

Outcome set_axis(const SetKeyword& keyword, Arguments& /*args*/) {
    show.dims[0].axis_unit = static_cast<int>(integer_or_zero(keyword.detail));
    macro_host.redraw();
    return Outcome::done;
}

Outcome carry_out(const SetKeyword& keyword, Arguments& /*args*/) {
    return macro_host.execute(keyword.detail) != 0 ? Outcome::done : statement_error(std::string(keyword.detail) + " failed");
}

// What the display shows: one of four words.
Outcome set_display(const SetKeyword& keyword, Arguments& /*args*/) {
    session.macro_values["DISPLAY"] = keyword.detail;
    macro_host.redraw();
    return Outcome::done;
}

Outcome set_text(const SetKeyword& keyword, Arguments& args) {
    const std::string text = rest_of_line(args);
    if (text.empty()) return statement_error(std::string("SET ") + keyword.word + " needs a value");
    keep(keyword, text);
    return Outcome::done;
}

// A value of the row's range; nothing, after its reason, for another.
std::optional<double> take_number(const SetKeyword& keyword, Arguments& args) {
    const std::string text = next_token(args);
    const auto value = operand(text);
    if (value && *value >= keyword.lowest && *value <= keyword.highest) return value;
    statement_error(std::string("SET ") + keyword.word + " does not take the value " + text);
    return std::nullopt;
}

Outcome set_number(const SetKeyword& keyword, Arguments& args) {
    const auto value = take_number(keyword, args);
    if (!value) return Outcome::error;
    keep(keyword, format_text("%.15g", *value));
    return Outcome::done;
}

Outcome set_file(const SetKeyword& keyword, Arguments& args) {
    const std::string name = next_token(args);
    if (name.empty()) return statement_error(std::string("SET ") + keyword.word + " needs a file name");
    // FULLFILEA and FILEA name the same file: the one by its full path, the other within its folder.
    session.macro_values[keyword.detail] =
        starts_with_word(keyword.word, "FULL") ? absolute_path(typed_path(name)) : file_of_keyword(keyword.detail, name);
    return Outcome::done;
}

Outcome set_direction(const SetKeyword& keyword, Arguments& args) {
    const std::string word = next_token(args);
    const auto words = split_fields(keyword.detail, " ");
    for (const std::string_view allowed : words) {
        if (!same_word(word, allowed)) continue;
        keep(keyword, std::string(allowed));
        return Outcome::done;
    }
    refuse(format_text("Macro error on %s.\nOnly %s or %s allowed.", keyword.word, std::string(words[0]).c_str(),
                       std::string(words[1]).c_str()));
    return Outcome::error;
}

// TRUE and FALSE, also ON and OFF.
std::optional<bool> switch_of(std::string_view word) {
    if (same_word(word, "TRUE") || same_word(word, "ON")) return true;
    if (same_word(word, "FALSE") || same_word(word, "OFF")) return false;
    return std::nullopt;
}

Outcome set_switch(const SetKeyword& keyword, Arguments& args) {
    const auto on = switch_of(next_token(args));
    if (!on) return statement_error(std::string("SET ") + keyword.word + " takes TRUE or FALSE");
    if (!apply_setting(keyword.word, *on ? "TRUE" : "FALSE")) keep(keyword, *on ? "TRUE" : "FALSE");
    return Outcome::done;
}

Outcome set_integral(const SetKeyword& /*keyword*/, Arguments& args) {
    const std::string word = next_token(args);
    if (same_word(word, "clear")) {
        show.integrals.clear();
        macro_host.redraw();
        return Outcome::done;
    }
    const auto start = operand(word), end = operand(next_token(args));
    if (!start || !end) return statement_error("SET Integral takes clear, or the two ends of a region");
    if (!define_integral(show.integrals, show, *start, *end)) return Outcome::error;
    macro_host.redraw();
    return Outcome::done;
}

Outcome set_math(const SetKeyword& keyword, Arguments& args) {
    const auto value = take_number(keyword, args);
    if (!value) return Outcome::error;
    registers.math = *value;
    return Outcome::done;
}

Outcome set_decimals(const SetKeyword& keyword, Arguments& args) {
    const auto value = take_number(keyword, args);
    if (!value) return Outcome::error;
    registers.decimals = static_cast<int>(*value);
    return Outcome::done;
}

Outcome set_place(double* place, Arguments& args) {
    const auto value = operand(next_token(args));
    if (place == nullptr || !value) return statement_error("SET REGISTER and SET MEMORY take a number from 0 to 99 and a value");
    *place = *value;
    return Outcome::done;
}

Outcome set_register(const SetKeyword& /*keyword*/, Arguments& args) {
    double* place = register_numbered(next_token(args));
    return set_place(place, args);
}

Outcome set_memory(const SetKeyword& /*keyword*/, Arguments& args) {
    double* place = memory_numbered(next_token(args));
    return set_place(place, args);
}

Outcome set_comment(const SetKeyword& /*keyword*/, Arguments& args) {
    show.comment = cut(rest_of_line(args), 127);
    show.changed = show.loaded;
    return Outcome::done;
}

constexpr SetKeyword keywords[] = {
    {"AXISHZ", set_axis, "2"},
    {"AXISNONE", set_axis, "0"},
    {"AXISPPM", set_axis, "3"},
    {"AXISPT", set_axis, "1"},
    {"ARRAY_ON", carry_out, "AR on"},
    {"ARRAY_COMPLEX", carry_out, "AR complex"},
    {"ARRAY_PAIRWISECOMPLEX", carry_out, "AR pairwise"},
    {"ARRAY_OFF", carry_out, "AR off"},
    {"DISPLAYALL", set_display, "ALL"},
    {"DISPLAYFULL", set_display, "FULL"},
    {"DISPLAYIMAG", set_display, "IMAG"},
    {"DISPLAYZOOM", set_display, "ZOOM"},
    {"FONT_AXIS", set_text},
    {"FONT_CLIP", set_text},
    {"FONT_PEAK_VERTICAL", set_text},
    {"FONT_PEAK_HORIZONTAL", set_text},
    {"FONT_INTEGRAL_VERTICAL", set_text},
    {"FONT_INTEGRAL_HORIZONTAL", set_text},
    {"FONT_CmdLine", set_text},
    {"EXPORTFILE", set_file, "EXPORTFILE"},
    {"FULLFILEA", set_file, "FILEA"},
    {"FULLFILEB", set_file, "FILEB"},
    {"FULLFILEC", set_file, "FILEC"},
    {"FULLFILEIMPORT", set_file, "FILEIMPORT"},
    {"FILEA", set_file, "FILEA"},
    {"FILEB", set_file, "FILEB"},
    {"FILEC", set_file, "FILEC"},
    {"LF_GET_FILENAME", set_file, "LF_GET_FILENAME"},
    {"LF_WRITE_FILENAME", set_file, "LF_WRITE_FILENAME"},
    {"FILEIMPORT", set_file, "FILEIMPORT"},
    {"DP_INFO_STRING", set_text},
    {"TWO_LETTERED_COMMANDS", set_switch},
    {"Integral", set_integral},
    {"LinkLimit", set_number, "", 0, 1e9},
    {"LNpts", set_number, "", 0, 1e9},
    {"LNmdim", set_number, "", 0, 1e9},
    {"LNnsig", set_number, "", 0, 1e9},
    {"LNdirection", set_direction, "FORWARD BACKWARD"},
    {"RDpts", set_number, "", 0, 1e9},
    {"RDdirection", set_direction, "RIGHT LEFT"},
    {"SLEEPTIME", set_number, "", 0, day},
    {"POINTS_TO_AVERAGE", set_number, "", 1, 1e9},
    {"SHIFT", set_number},
    {"SPPLOTX", set_number},
    {"SPPLOTY", set_number},
    {"ZOF1PT", set_number},
    {"ZOF2PT", set_number},
    {"ZOF1PPM", set_number},
    {"ZOF2PPM", set_number},
    {"ZOF1HZ", set_number},
    {"ZOF2HZ", set_number},
    {"ZOF1SL", set_number},
    {"ZOF2SL", set_number},
    {"ZOF12DPPM", set_number},
    {"ZOF22DPPM", set_number},
    {"ZOF12DHZ", set_number},
    {"ZOF22DHZ", set_number},
    {"ZOOM_REGION", set_number, "", 0, 9},
    {"MATH", set_math},
    {"DECPLACES", set_decimals, "", 0, 15},
    {"REGISTER", set_register},
    {"MEMORY", set_memory},
    {"COMMENT", set_comment},
    {"STOP_ON_ERROR", set_switch},
};

}  // namespace

std::string file_of_keyword(std::string_view keyword, const std::string& name) {
    const std::string path = typed_path(name);
    if (path.starts_with('/')) return absolute_path(path);
    return absolute_path((keyword == "FILEIMPORT" ? import_path() : data_path(true)) + "/" + path);
}

std::string rest_of_line(Arguments& args) {
    std::string_view rest = args.rest();
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t="), rest.size()));
    rest = trimmed(rest);
    if (rest.size() > 1 && ((rest.front() == '"' && rest.back() == '"') || (rest.front() == '(' && rest.back() == ')')))
        rest = rest.substr(1, rest.size() - 2);
    return std::string(rest);
}

Outcome statement_error(const std::string& reason) {
    platform().reply("  - Macro: " + reason);
    return Outcome::error;
}

Outcome set_statement(Arguments& args) {
    const std::string word = next_token(args);
    for (const SetKeyword& keyword : keywords)
        if (same_word(keyword.word, word)) return keyword.apply(keyword, args);
    return statement_error("SET does not know " + (word.empty() ? std::string("a keyword without a name") : word));
}

}  // namespace zolt
