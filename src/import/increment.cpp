// IE: the next file of a numbered series.
#include <algorithm>
#include <string>

#include "common/file.h"
#include "common/text.h"
#include "import/import_commands.h"
#include "platform/platform.h"
#include "state/dataset.h"

namespace zolt {

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// The name with the last number of its extension, or else of its stem, one higher and as wide; "" without a number.
std::string incremented(const std::string& name) {
    const size_t dot = std::min(name.find_last_of('.'), name.size());
    const auto last_digit = [&](size_t from, size_t end) {
        while (end > from && !is_digit(name[end - 1])) --end;
        return end > from ? end - 1 : std::string::npos;
    };
    size_t last = last_digit(dot, name.size());
    if (last == std::string::npos) last = last_digit(0, dot);
    if (last == std::string::npos) return {};
    std::string next = name;
    for (size_t at = last;; --at) {
        if (next[at] != '9') {
            ++next[at];
            return next;
        }
        next[at] = '0';
        if (at == 0 || !is_digit(next[at - 1])) return next.insert(at, 1, '1');
    }
}

}  // namespace

int cmd_incrementext(Arguments& args) {
    if (args.ask_usage()) return show_reply("IE or IncrementExt [A / B]");
    const std::string which = args.next();
    const bool b = same_word(which, "B");
    if (!b && !which.empty() && !same_word(which, "A")) return show_reply("IE or IncrementExt [A / B]");
    const std::string& present = b ? show.file_b : show.file_a;
    if (present.empty()) return refuse(b ? "There is no File B." : "No FileName A.");
    const std::string name = incremented(name_of(present));
    if (name.empty()) return refuse(format_text("The name of %s holds no number to increment.", present.c_str()));
    const std::string line = '"' + folder_of(present) + "/" + name + '"';
    Arguments file(line);
    return b ? cmd_getfileb(file) : cmd_getfile(file);
}

}  // namespace zolt
