// S2, SC, OC, CC and UH: slices into File C, and the header of File A.
#include "common/file.h"
#include "common/numbers.h"
#include "common/text.h"
#include "datafile/file_c.h"
#include "datafile/file_commands.h"
#include "datafile/sections.h"
#include "datafile/slice.h"
#include "platform/platform.h"
#include "state/dataset.h"

namespace zolt {

namespace {

std::string path_argument(Arguments& args, FileChoice choice, const char* title) {
    std::string name = args.next();
    if (name.empty()) name = platform().file_dialog(choice, title).value_or("");
    return name.empty() ? "" : absolute_path(typed_path(name));
}

int append_to_fileC() {
    if (write_slice_to_fileC()) return 1;
    close_fileC();
    return refuse("Trouble writing to File C.\n Flie closed.");
}

}  // namespace

int cmd_s2(Arguments& args) {
    if (args.ask_usage()) return show_reply("S2 [name]");
    if (show.dims[1].points < 2) return refuse("Not a 2D file.\n\nUse SA or SB command to\nsave a 1D file.\n");
    if (file_c.open) {
        const std::string name = args.next();
        if (!name.empty() && absolute_path(typed_path(name)) != file_c.name) return refuse("File C already opened!");
        return append_to_fileC();
    }
    const std::string path = path_argument(args, FileChoice::save, "Save File C");
    if (path.empty()) return 0;
    if (path == show.file_a) return refuse("File C is written while File A is read.\nGive another name.");
    if (!may_replace(path)) return 0;
    if (!create_fileC(path)) return refuse(format_text("Could not open File: %s", path.c_str()));
    if (append_to_fileC() == 0) return 0;
    platform().message("S2", Icon::information, "File opened for writing.\n Slice 1 written to file.");
    return 1;
}

int cmd_sc(Arguments& args) {
    if (args.ask_usage()) return show_reply("SC");
    if (!write_slice_to_fileC()) return 0;
    const bool last = show.slice + 1 >= show.dims[1].points;
    return last || set_sliceA(int64_t{show.slice} + 1) ? 1 : 0;
}

int cmd_oc(Arguments& args) {
    if (args.ask_usage()) return show_reply("OC [name] [slice, from 0; without it behind the last]");
    const std::string path = path_argument(args, FileChoice::open, "Open File C");
    if (path.empty()) return 0;
    if (path == show.file_a) return refuse("File C is written while File A is read.\nGive another name.");
    const std::string word = args.next();
    const int64_t k = word.empty() ? -1 : integer_or_zero(word);
    return open_fileC(path, k) ? 1 : 0;
}

int cmd_cc(Arguments& /*args*/) { return close_fileC() ? 1 : 0; }

int cmd_uh(Arguments& /*args*/) {
    if (CurrentArrayedLevel() != 0)
        return refuse(format_text("Update Header not supported in Arrayed mode level %d", CurrentArrayedLevel()));
    if (!UpdateHeaderA()) return 0;
    annotations_saved(show);
    // The slice is read again with its header; one that was worked on stays as it is.
    return show.changed || set_sliceA(show.slice) ? 1 : 0;
}

}  // namespace zolt
