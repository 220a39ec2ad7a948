// ASK: file dialogs and input boxes, one row for each keyword.
#include "common/file.h"
#include "common/text.h"
#include "macro/macro_host.h"
#include "macro/registers.h"
#include "macro/statements.h"
#include "platform/platform.h"
#include "state/session.h"

namespace zolt {

namespace {

struct AskKeyword {
    const char* word;
    Outcome (*ask)(const AskKeyword& keyword, Arguments& args);
    const char* prompt;
    const char* command = "";  // the command that takes the value; "": it is kept under the keyword
};

Outcome ask_file(const AskKeyword& keyword, Arguments& /*args*/) {
    const auto choice = same_word(keyword.word, "EXPORTFILE") ? FileChoice::save : FileChoice::open;
    const auto name = platform().file_dialog(choice, keyword.prompt);
    if (!name || name->empty()) return Outcome::aborted;
    session.macro_values[keyword.word] = absolute_path(typed_path(*name));
    return Outcome::done;
}

// Asks for a number; the outcome when there is none.
Outcome ask_number(const std::string& prompt, double& value) {
    const auto text = platform().input_box("Input_Box", prompt, "");
    if (!text) return Outcome::aborted;
    const auto number = number_of(*text);
    if (!number) return statement_error(*text + " is no number");
    value = *number;
    return Outcome::done;
}

Outcome ask_value(const AskKeyword& keyword, Arguments& /*args*/) {
    double value = 0;
    const Outcome outcome = ask_number(keyword.prompt, value);
    if (outcome != Outcome::done) return outcome;
    const std::string text = format_text("%.15g", value);
    if (*keyword.command == '\0')
        session.macro_values[keyword.word] = text;
    else if (macro_host.execute(keyword.command + text) == 0)
        return statement_error(keyword.command + text + " failed");
    return Outcome::done;
}

Outcome ask_math(const AskKeyword& keyword, Arguments& /*args*/) { return ask_number(keyword.prompt, registers.math); }

Outcome ask_place(const AskKeyword& keyword, Arguments& args) {
    const std::string number = next_token(args);
    const bool memory = same_word(keyword.word, "MEMORY");
    double* place = memory ? memory_numbered(number) : register_numbered(number);
    if (place == nullptr) return statement_error(format_text("ASK %s takes a number from 0 to 99", keyword.word));
    const auto index = static_cast<int>(place - (memory ? registers.memories : registers.registers));
    return ask_number(format_text("Enter value for %s %d.", keyword.prompt, index), *place);
}

constexpr AskKeyword keywords[] = {
    {"EXPORTFILE", ask_file, "Open Export File"},
    {"FILEA", ask_file, "Open File A"},
    {"FILEB", ask_file, "Open File B"},
    {"FILEC", ask_file, "Open File C"},
    {"FILEIMPORT", ask_file, "Open Import File"},
    {"LB", ask_value, "Enter desired value for line broadening (LB)", "LB "},
    {"GF", ask_value, "Enter desired value for Lorentz/Gauss Resolution Enhancement (GF)"},
    {"S#", ask_value, "Enter desired value for Sine Shift (S#)"},
    {"SLICE", ask_value, "Enter desired slice Number", "SL "},
    {"SHIFT", ask_value, "Enter desired shift in PPM for tallest peak in zoom region."},
    {"T1", ask_value, "Enter desired value for Trapezoidal Multiplcation (T1)."},
    {"T2", ask_value, "Enter desired value for Trapezoidal Multiplcation (T2)."},
    {"MATH", ask_math, "Enter value for the math register."},
    {"REGISTER", ask_place, "Register"},
    {"MEMORY", ask_place, "Memory"},
};

}  // namespace

Outcome ask_statement(Arguments& args) {
    const std::string word = next_token(args);
    for (const AskKeyword& keyword : keywords)
        if (same_word(keyword.word, word)) return keyword.ask(keyword, args);
    return statement_error("ASK does not know " + (word.empty() ? std::string("a keyword without a name") : word));
}

}  // namespace zolt
