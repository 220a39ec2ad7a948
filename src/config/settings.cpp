// The rows of the configuration keys, and how each type of value is read.
#include "config/settings.h"

#include "common/numbers.h"
#include "common/text.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr double any = 1e300;

const SettingKey keys[] = {
    {"UNDO", &session.undo_enabled, 0, 0, "TRUE: the state before each command is kept, to step back to with Ctrl+Z"},
    {"ZOLT_LOG_COMMANDS", &session.log_on, 0, 0, "TRUE: every command line that worked is appended to the command log ZOLT.LOG"},
    {"EXPERT_MODE", &session.expert, 0, 0, "TRUE: start with the expert mode on"},
    {"NO_FILE_OVERWRITE", &settings.no_file_overwrite, 0, 0, "TRUE: no command writes over an existing file"},
    {"ZOLT_HEADER_VERSION", &session.header_type, 1, 3, "header type of written data files, 1 to 3"},
    {"BYTE_ORDER", &session.byte_order, 1, 3, "byte order of written data files: 1 Intel order, 2 or 3 big-endian"},
    {"BRUKER_FILTER", &settings.bruker_filter, 0, 0,
     "FALSE: the transform leaves the group delay of digitally filtered data alone"},
    {"RI_ON_IMPORT", &settings.ri_on_import, 0, 0,
     "TRUE: every import swaps real and imaginary parts, unless SR0 is typed with it"},
    {"BRUKER_XWIN_RI", &settings.bruker_xwin_ri, 0, 0, "TRUE: so does the import of XWinNMR and TopSpin data"},
    {"BRUKER_ASPECT_RI", &settings.bruker_aspect_ri, 0, 0, "TRUE: so does the import of Aspect data"},
    {"DEFAULT_PA", &settings.default_pa, -any, any, "zero-order phase of a data set that brings none, degrees"},
    {"DEFAULT_PB", &settings.default_pb, -any, any, "first-order phase, degrees"},
    {"DEFAULT_PC", &settings.default_pc, -any, any, "second-order phase, degrees"},
    {"DATADIR", &settings.data_dir, 0, 0, "folder of data files; DATA of the root folder without it"},
    {"ZZ_File_Path", &settings.zz_file_path, 0, 0, "data file that the command ZZ reads; File A again without it"},
    {"DEFAULT_IMPORT_OUT_DIR", &settings.import_out_dir, 0, 0, "folder for imported data; that of the data files without it"},
    {"LINK0", &settings.links[0], 0, 0, "command lines that A0 plays, each ended by ;"},
    {"LINK1", &settings.links[1], 0, 0, "command lines that A1 plays"},
    {"LINK2", &settings.links[2], 0, 0, "command lines that A2 plays"},
    {"LINK3", &settings.links[3], 0, 0, "command lines that A3 plays"},
    {"LINK4", &settings.links[4], 0, 0, "command lines that A4 plays"},
    {"LINK5", &settings.links[5], 0, 0, "command lines that A5 plays"},
    {"LINK6", &settings.links[6], 0, 0, "command lines that A6 plays"},
    {"LINK7", &settings.links[7], 0, 0, "command lines that A7 plays"},
    {"LINK8", &settings.links[8], 0, 0, "command lines that A8 plays"},
    {"LINK9", &settings.links[9], 0, 0, "command lines that A9 plays"},
};

// How each type of setting reads its text; a text that does not fit changes nothing.
struct FromText {
    const SettingKey& key;
    std::string_view text;

    bool inside(double value) const { return value >= key.lowest && value <= key.highest; }
    void operator()(bool* target) const { *target = same_word(text, "TRUE"); }
    void operator()(int* target) const {
        const auto value = leading_number(text);
        if (value && inside(*value)) *target = static_cast<int>(*value);
    }
    void operator()(double* target) const {
        const auto value = leading_number(text);
        if (value && inside(*value)) *target = *value;
    }
    void operator()(std::string* target) const { *target = text; }
};

}  // namespace

std::span<const SettingKey> setting_keys() { return keys; }

void apply_setting(std::string_view key, std::string_view value) {
    for (const SettingKey& row : keys)
        if (same_word(row.name, key)) std::visit(FromText{row, trimmed(value)}, row.target);
}

}  // namespace zolt
