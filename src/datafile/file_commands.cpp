// SA and header: what is asked before a file is written, and the configured header type.
#include "datafile/file_commands.h"

#include "common/file.h"
#include "common/numbers.h"
#include "common/text.h"
#include "datafile/dxb.h"
#include "datafile/header.h"
#include "datafile/native_file.h"
#include "datafile/sections.h"
#include "datafile/slice.h"
#include "platform/platform.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

bool agreed(const char* caption, const std::string& text) {
    return platform().question(caption, text, Buttons::yes_no) == Answer::yes;
}

// Whether File A has slices that the current level does not hold.
bool file_holds_more() { return record_of_level(show).all_slices() < show.all_slices(); }

// What the user has to agree to before this name is written to; true when it may be.
bool may_save_as(const std::string& path) {
    if (path == show.file_a && file_holds_more()) {
        const char* what = CurrentArrayedLevel() == 0 ? "The displayed slice" : "The part in memory";
        refuse(what + (" would replace the whole file\n" + path) + "\nGive another name.");
        return false;
    }
    if (playing_back()) return true;
    if (path == show.file_a)
        return agreed(
            "Save File A",
            "Slected name has the same name as File A.\nProceeding saves the entire 2D data set\nAre you REALLY sure?\n\n");
    return may_replace(path);
}

}  // namespace

bool may_replace(const std::string& path) {
    return playing_back() || !file_facts(path).exists || settings.no_file_overwrite ||
           agreed("Replace?", "Target file name already exists: " + path + "\nOverwrite?");
}

namespace {

// Level 0: the current slice, as a 1D file of its own name when there are more.
int save_slice(const std::string& path) {
    const bool slice_only = file_holds_more();
    if (slice_only)
        platform().message(
            "Save File A", Icon::exclamation,
            "2D file in Non Arrayed Mode  ! !\n\nThe displayed file slice\nwill be saved as a 1D file\nusing a new name.\n");
    if (!may_save_as(path) || !FileWrite(path, show)) return 0;
    mark_saved(show);
    if (!slice_only) show.file_a = path;
    return 1;
}

// An Arrayed level: all that it holds. The saved file becomes File A.
int save_arrayed(const std::string& path) {
    const WaitCursor wait;
    if (!may_save_as(path) || !write_MD_file(path, show)) return 0;
    if (path == show.file_a) return 1;
    static_cast<DataRecord&>(show) = record_of_level(show);
    if (show.level <= 2) show.slice_3 = 0;
    if (show.level <= 3) show.slice_4 = 0;
    show.file_a = path;
    return 1;
}

}  // namespace

int cmd_savefile(Arguments& args) {
    if (args.ask_usage()) return show_reply("SA or SaveFile [name]");
    std::string name = args.next();
    if (name.empty()) name = platform().file_dialog(FileChoice::save, "Save File A").value_or("");
    if (name.empty()) return 0;
    const std::string path = absolute_path(typed_path(name));
    if (CurrentArrayedLevel() == 0) return save_slice(path);
    if (save_arrayed(path) == 0) return 0;
    mark_saved(show);
    return 1;
}

int cmd_savefileb(Arguments& args) {
    if (args.ask_usage()) return show_reply("SB or SaveFileB [name]");
    if (!show_b.loaded) return refuse("There is no File B to save.\nOpen one with GB.");
    std::string name = args.next();
    if (name.empty()) name = platform().file_dialog(FileChoice::save, "Save File B").value_or("");
    if (name.empty()) return 0;
    const std::string path = absolute_path(typed_path(name));
    if (!may_replace(path) || !FileWrite(path, show_b)) return 0;
    mark_saved(show_b);
    if (show_b.all_slices() == 1) show_b.file_a = path;
    show.file_b = path;
    return 1;
}

int cmd_header(Arguments& args) {
    const std::string word = args.next();
    if (word.empty() || word == "?" || word == "/?")
        return show_reply(format_text(" - Current header version is %d", session.header_type));
    if (same_word(word, "length")) {
        const size_t bytes = session.header_type == 1   ? short_header_bytes
                             : session.header_type == 2 ? full_header_bytes
                                                        : encode_dxb_header(record_of_level(show), DataSummary(), false).size();
        return show_reply(format_text(" - Header length is %d", static_cast<int>(bytes)));
    }
    const int64_t type = integer_or_zero(word);
    if (type < 1 || type > 3) {
        session.header_type = 3;
        return show_reply(format_text(" - Error setting Header Version.  Set to default of %d", session.header_type));
    }
    session.header_type = static_cast<int>(type);
    platform().reply(format_text("  - Header Version set to %d", session.header_type));
    return 1;
}

int cmd_slice(Arguments& args) {
    if (args.ask_usage()) return show_reply("SL or Slice [number / + / -]");
    const std::string word = args.next();
    if (word.empty()) return show_reply(format_text("  - Slice %d of %d", show.slice + 1, show.dims[1].points));
    // The user counts from 1.
    if (word == "+") return set_sliceA(int64_t{show.slice} + 1) ? 1 : 0;
    if (word == "-") return set_sliceA(int64_t{show.slice} - 1) ? 1 : 0;
    const auto number = leading_number(word);
    if (!number) return show_reply("  - " + word + " is no slice number.");
    return set_sliceA(integer_or_zero(word) - 1) ? 1 : 0;
}

int cmd_plane(Arguments& args) {
    if (args.ask_usage()) return show_reply("Plane [number [cube] / + / next / - / last]");
    const std::string word = args.next();
    if (word.empty())
        return show_reply(format_text("  - Plane %d of %d, cube %d of %d", show.slice_3 + 1, show.dims[2].points, show.slice_4 + 1,
                                      show.dims[3].points));
    if (word == "+" || same_word(word, "next")) return set_planeA(int64_t{show.slice_3} + 1, show.slice_4) ? 1 : 0;
    if (word == "-" || same_word(word, "last")) return set_planeA(int64_t{show.slice_3} - 1, show.slice_4) ? 1 : 0;
    if (!leading_number(word)) return show_reply("  - " + word + " is no plane number.");
    const std::string cube = args.next();
    return set_planeA(integer_or_zero(word) - 1, cube.empty() ? show.slice_4 : integer_or_zero(cube) - 1) ? 1 : 0;
}

}  // namespace zolt
