// IE: the next file of a numbered series.
#include <string>

#include "common/file.h"
#include "common/text.h"
#include "import/import_commands.h"
#include "platform/platform.h"
#include "state/dataset.h"

namespace zolt {

int cmd_incrementext(Arguments& args) {
    if (args.ask_usage()) return show_reply("IE or IncrementExt [A / B]");
    const std::string which = args.next();
    const bool b = same_word(which, "B");
    if (!b && !which.empty() && !same_word(which, "A")) return show_reply("IE or IncrementExt [A / B]");
    const std::string& present = b ? show.file_b : show.file_a;
    if (present.empty()) return refuse(b ? "There is no File B." : "No FileName A.");
    const std::string next = next_in_series(present);
    if (next.empty()) return refuse(format_text("The name of %s holds no number to increment.", present.c_str()));
    const std::string line = '"' + next + '"';
    Arguments file(line);
    return b ? cmd_getfileb(file) : cmd_getfile(file);
}

}  // namespace zolt
