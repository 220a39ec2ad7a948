// DO: one row for each action.
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <set>

#include <sys/stat.h>

#include "common/file.h"
#include "common/numbers.h"
#include "common/text.h"
#include "config/paths.h"
#include "macro/expansion.h"
#include "macro/macro_host.h"
#include "macro/registers.h"
#include "macro/script.h"
#include "macro/statements.h"
#include "platform/platform.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace fs = std::filesystem;

namespace {

constexpr double day = 86400e3;  // milliseconds

// ----------------------------------------------------------------------------------------------------------------- files

// Only what belongs to the program's own folders may be deleted, whatever links and ".." the name holds.
bool within(const std::string& folder, const fs::path& file) {
    std::error_code error;
    const fs::path inside = file.lexically_relative(fs::weakly_canonical(folder, error));
    return !error && !inside.empty() && inside != "." && *inside.begin() != "..";
}

Outcome delete_file(Arguments& args) {
    const std::string name = next_token(args);
    if (name.empty()) return statement_error("DO DELETEFILE needs a file name");
    const std::string path = file_of_keyword("", name);
    std::error_code error;
    const fs::path file = fs::weakly_canonical(path, error);
    const std::string folders[] = {data_path(false), import_path(), macro_path()};
    const bool own = std::any_of(std::begin(folders), std::end(folders), [&](const auto& folder) { return within(folder, file); });
    if (error || !own) return statement_error("DO DELETEFILE deletes only in the data, import and macro folders, not " + path);
    const FileFacts facts = file_facts(path);
    if (!facts.exists) return Outcome::done;
    if (!facts.regular || !fs::remove(path, error)) return statement_error("DO DELETEFILE could not delete " + path);
    return Outcome::done;
}

// The next name of a series; one without a number begins it: run.txt becomes run1.txt.
std::string incremented(const std::string& path) {
    const std::string next = next_in_series(path), stem = without_extension(path);
    return next.empty() ? stem + "1" + path.substr(stem.size()) : next;
}

template <const char* const& keyword>
Outcome increment_name(Arguments& /*args*/) {
    const std::string name = macro_value(keyword);
    if (name.empty()) return statement_error(std::string("no name has been set for ") + keyword);
    session.macro_values[keyword] = incremented(name);
    return Outcome::done;
}

constexpr const char* export_file = "EXPORTFILE";
constexpr const char* lf_get_file = "LF_GET_FILENAME";
constexpr const char* lf_write_file = "LF_WRITE_FILENAME";

// Appends a line to the export file.
Outcome write_line(Arguments& args) {
    static std::set<std::string> begun;  // files of this run: they are not foreign ones that have to be kept
    const std::string path = macro_value(export_file);
    if (path.empty()) return statement_error("DO WRITE needs a file; SET EXPORTFILE names it");
    if (settings.no_file_overwrite && file_facts(path).exists && !begun.contains(path)) {
        refuse("System configured to prevent Overwriting of existing files.");
        return Outcome::error;
    }
    const FileFacts facts = file_facts(path);
    if (facts.exists && !facts.regular) return statement_error(path + " is no file that could be written to");
    File file(path, "ab");
    if (!file || !file.write(rest_of_line(args) + "\r\n") || !file.close())
        return statement_error(path + ": " + std::strerror(errno));
    begun.insert(path);
    return Outcome::done;
}

// ------------------------------------------------------------------------------------------------------------- arithmetic

struct Operation {
    const char* sign;
    bool binary;
    double (*value)(double a, double b);
};

constexpr Operation operations[] = {
    {"+", true, [](double a, double b) { return a + b; }},
    {"-", true, [](double a, double b) { return a - b; }},
    {"*", true, [](double a, double b) { return a * b; }},
    {"/", true, [](double a, double b) { return a / b; }},
    {"POWER", true, [](double a, double b) { return std::pow(a, b); }},
    {"RECIPROCAL", false, [](double a, double) { return 1 / a; }},
    {"SQRT", false, [](double a, double) { return std::sqrt(a); }},
    {"LOG", false, [](double a, double) { return std::log(a); }},
    {"EXP", false, [](double a, double) { return std::exp(a); }},
    {"ABS", false, [](double a, double) { return std::abs(a); }},
};

const Operation* operation_named(std::string_view sign) {
    for (const Operation& row : operations)
        if (same_word(row.sign, sign)) return &row;
    return nullptr;
}

// `n op m into register`, `n op into register`, `op n into register`; what is left out is the math register.
Outcome do_math(Arguments& args) {
    std::string token = next_token(args);
    if (same_word(token, "clear")) {
        std::fill(std::begin(registers.registers), std::end(registers.registers), 0.0);
        registers.math = 0;
        return Outcome::done;
    }
    std::optional<double> a = registers.math, b = 0.0;
    const Operation* operation = operation_named(token);
    if (operation == nullptr) {
        a = operand(token);
        operation = operation_named(next_token(args));
    } else if (!operation->binary && operand(args.peek(statement_delimiters))) {
        a = operand(next_token(args));
    }
    if (operation != nullptr && operation->binary) b = operand(next_token(args));
    token = next_token(args);
    if (same_word(token, "into")) token = next_token(args);
    double* target = token.empty() ? &registers.math : register_named(token);
    if (operation == nullptr || !a || !b || target == nullptr || !next_token(args).empty())
        return statement_error("DO MATH takes: clear, or number operator number register, as in DO MATH R3 + 2.5 R4");
    const double value = operation->value(*a, *b);
    if (!std::isfinite(value)) return statement_error("DO MATH has no finite result");
    *target = value;
    return Outcome::done;
}

Outcome show_place(const char* kind, const double* place, const std::string& number) {
    if (place == nullptr) return statement_error(format_text("DO %s takes a number from 0 to 99", kind));
    platform().reply(format_text("%s %s = %s", kind, number.c_str(), number_text(*place).c_str()));
    return Outcome::done;
}

Outcome show_register(Arguments& args) {
    const std::string number = next_token(args);
    return show_place("Register", register_numbered(number), number);
}

Outcome show_memory(Arguments& args) {
    const std::string number = next_token(args);
    return show_place("Memory", memory_numbered(number), number);
}

// --------------------------------------------------------------------------------------------------------------- integrals

// The integral with a number from 1, as it is shown: times REL_VALUE.
std::optional<double> integral(std::string_view number) {
    const auto n = operand(number);
    if (!n || !(*n >= 1 && *n <= static_cast<double>(show.integrals.size()))) return std::nullopt;
    return double{show.integrals[static_cast<size_t>(*n) - 1].value} * double{show.rel_value};
}

Outcome get_integral(Arguments& args) {
    const std::string number = next_token(args);
    const auto value = integral(number);
    if (!value) return statement_error("there is no integral " + number);
    const std::string name = next_token(args);
    double* place = register_named(name);
    if (place == nullptr) place = register_numbered(name);
    if (place == nullptr) return statement_error("DO GET_INT takes the number of an integral and a register");
    *place = *value;
    return Outcome::done;
}

Outcome show_integral(Arguments& args) {
    const std::string number = next_token(args);
    const auto value = integral(number);
    if (!value) return statement_error("there is no integral " + number);
    platform().reply("Integral " + number + " = " + number_text(*value));
    return Outcome::done;
}

// ------------------------------------------------------------------------------------------------------------------- time

Outcome do_sleep(Arguments& args) {
    const std::string typed = next_token(args);
    const auto time = operand(typed.empty() ? macro_value("SLEEPTIME") : typed);
    if (!time || !(*time >= 0 && *time <= day)) return statement_error("DO SLEEP takes milliseconds, or SET SLEEPTIME before it");
    macro_host.wait(*time, nullptr);
    return Outcome::done;
}

// The state of the file of ZZ_File_Path when DO ZZWAIT last found it new.
struct SeenFile {
    int64_t seconds = 0, nanoseconds = 0;
    bool operator==(const SeenFile&) const = default;
} seen;

SeenFile zz_file_now() {
    struct stat s = {};
    if (::stat(absolute_path(typed_path(settings.zz_file_path)).c_str(), &s) != 0 || !S_ISREG(s.st_mode)) return {};
    return {int64_t{s.st_mtim.tv_sec}, int64_t{s.st_mtim.tv_nsec}};
}

bool zz_file_is_new() {
    const SeenFile now = zz_file_now();
    if (now == SeenFile{} || now == seen) return false;
    seen = now;
    return true;
}

Outcome wait_for_zz_file(Arguments& args) {
    if (settings.zz_file_path.empty())
        return statement_error("DO ZZWAIT waits for the file of the key ZZ_File_Path, which is not set");
    const std::string limit = next_token(args);
    const auto time = operand(limit);
    if (!limit.empty() && (!time || !(*time >= 0 && *time <= day)))
        return statement_error("DO ZZWAIT takes milliseconds, or nothing");
    macro_host.wait(time.value_or(-1), zz_file_is_new);
    return Outcome::done;
}

Outcome press_enter(Arguments& /*args*/) {
    macro_host.post_key(13);
    return Outcome::done;
}

// ----------------------------------------------------------------------------------------------- kept for the work to come

template <const char* const& keyword>
Outcome keep_text(Arguments& args) {
    session.macro_values[keyword] = rest_of_line(args);
    macro_host.redraw();
    return Outcome::done;
}

constexpr const char* extract_ppm = "EXTRACT_PPM";
constexpr const char* zoom_region = "ZOOM_REGION";
constexpr const char* note = "NOTE";
constexpr const char* line_fit_areas = "GET_LF_AREAS";

constexpr struct {
    const char* word;
    Outcome (*act)(Arguments& args);
} actions[] = {
    {"DELETEFILE", delete_file},
    {"EXTRACT_PPM", keep_text<extract_ppm>},
    {"INCREMENT_EXPORT_FILENAME", increment_name<export_file>},
    {"INCREMENT_LF_GET_FILENAME", increment_name<lf_get_file>},
    {"INCREMENT_LF_WRITE_FILENAME", increment_name<lf_write_file>},
    {"MATH", do_math},
    {"ZOOM_REGION", keep_text<zoom_region>},
    {"NOTE", keep_text<note>},
    {"GET_INT", get_integral},
    {"GET_LF_AREAS", keep_text<line_fit_areas>},
    {"ENTER", press_enter},
    {"REGISTER", show_register},
    {"MEMORY", show_memory},
    {"INTEGRAL", show_integral},
    {"SLEEP", do_sleep},
    {"ZZWAIT", wait_for_zz_file},
    {"WRITE", write_line},
};

}  // namespace

Outcome do_statement(Arguments& args) {
    const std::string word = next_token(args);
    for (const auto& action : actions)
        if (same_word(action.word, word)) return action.act(args);
    return statement_error("DO does not know " + (word.empty() ? std::string("an action without a name") : word));
}

}  // namespace zolt
