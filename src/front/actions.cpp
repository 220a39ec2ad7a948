// Command lines, keys, macros, answers, the state record and raw data.
#include "front/actions.h"

#include <cstdio>

#include "app/keystrokes.h"
#include "app/main_loop.h"
#include "common/bytes.h"
#include "common/file.h"
#include "front/events.h"
#include "macro/macro_commands.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

// A name of the current folder goes before one of the macro folder. Not typed: a path may be longer than a command line.
void run_macro_file(const std::string& name) {
    const std::string path = absolute_path(name);
    if (!run_macro(file_facts(path).regular ? path : name)) ++session.failed_macros;
}

// Every vector in memory, real and imaginary parts as little-endian floats, no header.
bool write_data(const std::string& path, const char* program) {
    const auto points = show.store.all();
    ReplacedFile file;
    bool good = file.open(path);
    if constexpr (machine_order == ByteOrder::little) {
        good = good && file.write(points.data(), points.size_bytes());
    } else {
        for (size_t i = 0; good && i < points.size(); ++i) {
            Complex point = points[i];
            to_machine_order(&point, 2, ByteOrder::little);
            good = file.write(&point, sizeof point);
        }
    }
    good = good && file.commit();
    if (!good) std::fprintf(stderr, "%s: cannot write %s\n", program, path.c_str());
    return good;
}

}  // namespace

void post_line(std::string_view line) {
    for (const char c : line) post_character(static_cast<unsigned char>(c), LineSource::user);
    post_character(13, LineSource::user);
}

bool start_action(const Action& action, Answers& answers, const char* program) {
    switch (action.kind) {
        case Action::Kind::command:
            post_line(action.text);
            break;
        case Action::Kind::keys:
            post_keys(action.text, LineSource::user);
            break;
        case Action::Kind::macro:
            run_macro_file(action.text);
            break;
        case Action::Kind::answer:
            answers.queue.push_back(action.text);
            break;
        case Action::Kind::default_yes:
            answers.otherwise = Answer::yes;
            break;
        case Action::Kind::default_no:
            answers.otherwise = Answer::no;
            break;
        case Action::Kind::state:
            print_state();
            break;
        case Action::Kind::data:
            return write_data(action.text, program);
        case Action::Kind::lines_of_stdin:
        case Action::Kind::screenshot:
            break;
    }
    return true;
}

}  // namespace zolt
