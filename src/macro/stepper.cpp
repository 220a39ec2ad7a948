// Steps through macro files; the statements that decide which line is next are here.
#include "macro/stepper.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "common/arguments.h"
#include "common/file.h"
#include "common/text.h"
#include "config/paths.h"
#include "config/settings.h"
#include "macro/command_log.h"
#include "macro/expansion.h"
#include "macro/file_pattern.h"
#include "macro/macro_host.h"
#include "macro/question.h"
#include "macro/registers.h"
#include "macro/script.h"
#include "macro/statements.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

MacroHost macro_host = {};

namespace {

constexpr size_t deepest_call = 20;
constexpr double most_rounds = 1e15;

// A LOOP that runs: its body, and what its rounds count or walk through.
struct Loop {
    ScriptPlace body, end;
    uint64_t round = 1, rounds = 0;
    double* counter = nullptr;
    std::vector<std::string> files;

    bool holds(ScriptPlace place) const { return place.position >= body.position && place.position < end.position; }
};

// A macro file on the way, and the loops around its next line.
struct Frame {
    Script script;
    std::vector<Loop> loops;
    bool strict = false;  // its first failed line ends it
};

std::vector<Frame> frames;  // the running macro last, those that called it before it

void leave_macros() {
    frames.clear();
    if (std::exchange(session.macro_running, false)) platform().wait_cursor(false);
}

void macro_failed(const char* text, bool aborted) {
    if (frames.empty()) return;  // ended already, by a line that failed within its statement
    const int line = frames.back().script.line();
    leave_macros();
    session.link_running = false;
    ++session.failed_macros;
    const std::string message = format_text(text, line);
    if (aborted)
        platform().status(0, message);
    else
        refuse(message);
}

// Opens a macro as the innermost one and reads its first line; false, with the macro ended, when it is none.
bool enter_macro(const std::string& path) {
    Frame frame;
    if (!frame.script.open(path)) {
        refuse(format_text("Unable to open Macro file pointer for %s.", path.c_str()));
        if (!frames.empty())
            MacroError();
        else
            ++session.failed_macros;
        return false;
    }
    frames.push_back(std::move(frame));
    if (!std::exchange(session.macro_running, true)) platform().wait_cursor(true);
    append_to_command_log(path);
    std::string_view first;
    if (!frames.back().script.next(first) || !same_word(first_word(first), "ZOLTMACRO")) {
        MacroError();
        return false;
    }
    return true;
}

// The path of a macro named within another: as found, or as typed for the message.
std::string macro_named(const std::string& name) {
    const std::string beside = frames.empty() ? std::string() : folder_of(frames.back().script.path());
    const std::string found = find_macro(name, beside);
    return found.empty() ? typed_path(name) : found;
}

LineContext context() {
    LineContext context{frames.back().script.line(), {}};
    for (const Frame& frame : frames)
        for (const Loop& loop : frame.loops)
            if (!loop.files.empty()) context.file = loop.files[static_cast<size_t>(loop.round) - 1];
    return context;
}

// ------------------------------------------------------------------------------------------ statements that choose the line

// The signs that compare numbers; the longer ones are looked for first.
constexpr struct {
    std::string_view sign;
    bool (*holds)(double a, double b);
} comparisons[] = {
    {"<=", [](double a, double b) { return a <= b; }}, {">=", [](double a, double b) { return a >= b; }},
    {"==", [](double a, double b) { return a == b; }}, {"!=", [](double a, double b) { return a != b; }},
    {"<", [](double a, double b) { return a < b; }},   {">", [](double a, double b) { return a > b; }},
};

// Whether `a <= b` holds; false for a text that is no comparison of two numbers.
bool compare(std::string_view text, bool& holds) {
    for (const auto& row : comparisons) {
        const size_t at = text.find(row.sign);
        if (at == std::string_view::npos) continue;
        const auto a = operand(text.substr(0, at)), b = operand(text.substr(at + row.sign.size()));
        if (a && b) holds = row.holds(*a, *b);
        return a && b;
    }
    return false;
}

Outcome if_statement(Arguments& args) {
    std::vector<std::string> texts;
    for (const std::string_view field : split_fields(args.rest(), "(),\r\n"))
        if (!trimmed(field).empty()) texts.emplace_back(trimmed(field));
    bool holds = false;
    if (texts.size() == 2)
        holds = texts[0] == texts[1];
    else if (texts.size() != 1 || !compare(texts[0], holds))
        return statement_error("IF takes (text,text), or (number < number) with < > <= >= == or !=");
    if (!holds) frames.back().script.skip_line();
    return Outcome::done;
}

Outcome goto_statement(Arguments& args) {
    const auto fields = split_fields(args.rest(), "(),=\r\n");
    std::string_view name;
    for (const std::string_view field : fields)
        if (name.empty()) name = trimmed(field);
    if (name.starts_with(':')) name.remove_prefix(1);
    Frame& frame = frames.back();
    ScriptPlace place;
    if (name.empty() || !frame.script.find_label(name, place)) return statement_error("GOTO finds no line :" + std::string(name));
    frame.script.go_to(place);
    std::erase_if(frame.loops, [&](const Loop& loop) { return !loop.holds(place); });
    return Outcome::done;
}

Outcome call_statement(Arguments& args) {
    const std::string name = rest_of_line(args);
    if (name.empty()) return statement_error("CALL needs the name of a macro");
    if (frames.size() > deepest_call) return statement_error("CALL nests more than 20 macros");
    // Its failure has ended this macro, too.
    enter_macro(macro_named(name));
    return Outcome::done;
}

// The rounds of LOOP FILES pattern, or of LOOP n [register].
bool take_rounds(const std::string& text, Loop& loop) {
    const auto words = split_fields(text, " \t");
    if (words.empty()) return false;
    if (same_word(words[0], "FILES")) {
        Arguments pattern(std::string_view(words[0].data() + words[0].size(), text.data() + text.size()));
        loop.files = files_matching(typed_path(rest_of_line(pattern)));
        loop.rounds = loop.files.size();
        return words.size() > 1;
    }
    const auto count = operand(words[0]);
    if (!count || !(*count >= 0 && *count <= most_rounds) || *count != std::floor(*count) || words.size() > 2) return false;
    loop.rounds = static_cast<uint64_t>(*count);
    if (words.size() < 2) return true;
    loop.counter = register_named(words[1]);
    if (loop.counter == nullptr) loop.counter = register_numbered(words[1]);
    return loop.counter != nullptr;
}

void begin_round(Frame& frame) {
    Loop& loop = frame.loops.back();
    if (loop.counter != nullptr) *loop.counter = static_cast<double>(loop.round);
    frame.script.go_to(loop.body);
}

Outcome loop_statement(Arguments& args) {
    const std::string text = rest_of_line(args);
    Frame& frame = frames.back();
    Loop loop;
    loop.body = frame.script.place();
    if (!take_rounds(text, loop)) return statement_error("LOOP takes: n, n register, or FILES pattern");
    if (!frame.script.find_loop_end(loop.end)) return statement_error("LOOP has no END_LOOP");
    if (loop.rounds == 0) {
        frame.script.go_to(loop.end);
        return Outcome::done;
    }
    // Loops that an IF has stepped out of.
    std::erase_if(frame.loops, [&](const Loop& left) { return !left.holds(loop.body); });
    frame.loops.push_back(std::move(loop));
    begin_round(frame);
    return Outcome::done;
}

Outcome end_loop_statement(Arguments& /*args*/) {
    Frame& frame = frames.back();
    const ScriptPlace place = frame.script.place();
    std::erase_if(frame.loops, [&](const Loop& left) { return !left.holds(place) && left.end.position != place.position; });
    if (frame.loops.empty() || frame.loops.back().end.position != place.position) return statement_error("END_LOOP without LOOP");
    Loop& loop = frame.loops.back();
    if (loop.round++ < loop.rounds)
        begin_round(frame);
    else
        frame.loops.pop_back();
    return Outcome::done;
}

Outcome question_statement(Arguments& /*args*/) {
    Script& script = frames.back().script;
    Question question;
    const bool asked = read_question(script, question, [](std::string_view line) { return expanded(line, context()); });
    if (!asked) return Outcome::done;
    const std::string action = ask_question(question);
    if (same_word(action, "ABORT")) return Outcome::aborted;
    if (same_word(action, "CONTINUE")) return Outcome::done;
    // The named macro takes the place of this one.
    const std::string path = macro_named(action);
    platform().status(0, "Macro Completed Successfully");
    frames.pop_back();
    if (frames.empty()) leave_macros();
    enter_macro(path);
    return Outcome::done;
}

Outcome end_statement(Arguments& /*args*/) {
    EndMacro();
    return Outcome::done;
}

constexpr struct {
    const char* word;
    Outcome (*carry_out)(Arguments& args);
} statements[] = {
    {"DO", do_statement},   {"SET", set_statement},           {"IF", if_statement},     {"GOTO", goto_statement},
    {"ASK", ask_statement}, {"CALL", call_statement},         {"LOOP", loop_statement}, {"QUESTION", question_statement},
    {"END", end_statement}, {"END_LOOP", end_loop_statement},
};

void carry_out_line(const std::string& line) {
    Arguments args(line);
    const std::string word = args.next(statement_delimiters);
    for (const auto& statement : statements) {
        if (!same_word(statement.word, word)) continue;
        switch (statement.carry_out(args)) {
            case Outcome::done:
                return;
            case Outcome::error:
                return MacroError();
            case Outcome::aborted:
                return AbortMacro();
        }
    }
    if (!macro_host.play_line(line)) MacroError();
}

}  // namespace

bool StartMacro(const std::string& path) {
    session.link_running = false;
    leave_macros();
    for (const char* name : {"FILEA", "FILEB", "FILEC", "FILEIMPORT", "EXPORTFILE"}) session.macro_values.erase(name);
    return enter_macro(path);
}

bool run_own_macro(const std::string& path) {
    if (frames.size() > deepest_call) return refuse("CALL nests more than 20 macros") != 0;
    if (!enter_macro(path)) return false;
    frames.back().strict = true;
    return true;
}

bool stops_on_error() { return setting_switch("STOP_ON_ERROR") || (!frames.empty() && frames.back().strict); }

bool MacroStep() {
    if (frames.empty()) return false;
    std::string_view piece;
    do {
        if (!frames.back().script.next(piece)) {
            EndMacro();
            return true;
        }
    } while (is_comment(piece));
    // Text files have no such character: somebody has named a binary file.
    if (piece.find('\0') != std::string_view::npos) {
        MacroError();
        return true;
    }
    append_to_command_log(std::string(macro_host.command_text()) + " " + std::string(piece));
    if (!piece.starts_with(':')) carry_out_line(expanded(piece, context()));
    return true;
}

void EndMacro() {
    if (frames.size() > 1) {
        frames.pop_back();
        return;
    }
    leave_macros();
    platform().status(0, "Macro Completed Successfully");
}

void AbortMacro() { macro_failed("Aborted Macro on line # %d", true); }

void MacroError() { macro_failed("Macro error on line # %d", false); }

void reset_macros() {
    frames.clear();
    registers = {};
    reset_command_log();
}

}  // namespace zolt
