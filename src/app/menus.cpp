// The rows of the menus. Commands that are planned stand among them, greyed.
#include "app/menus.h"

#include "app/command_line.h"
#include "app/commands.h"
#include "common/text.h"
#include "config/settings.h"
#include "platform/platform.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr const char* file = "&File";
constexpr const char* exports = "&File/&Export";
constexpr const char* edit = "&Edit";
constexpr const char* view = "&View";
constexpr const char* axis = "&View/&Axis";
constexpr const char* store = "&View/&Store Region";
constexpr const char* recall = "&View/&Recall Region";
constexpr const char* beside = "&View/O&verlays";
constexpr const char* look = "&View/Appearan&ce";
constexpr const char* process = "&Process";
constexpr const char* values = "&Process/&Values";
constexpr const char* array = "&Process/&Arrayed Mode";
constexpr const char* analyze = "&Analyze";
constexpr const char* macro = "&Macro";
constexpr const char* link = "&Macro/&Links";
constexpr const char* help = "&Help";

std::string number_text(double value) { return format_text("%.7g", value); }
std::string broadening() { return number_text(static_cast<double>(show.lb())); }
std::string empty_text() { return {}; }
std::string phase_a() { return number_text(static_cast<double>(show.phase[0])); }
std::string phase_b() { return number_text(static_cast<double>(show.phase[1])); }

// clang-format off
constexpr MenuItem items[] = {
    {file, "&Open…", Item::line, "GA", "Ctrl+O", "open"},
    {file, "&Import…", Item::line, "IM", "Ctrl+Shift+O", "import"},
    {file, "Open &Recent", Item::recent},
    {file, "Open File &B…", Item::line, "GB"},
    {file, "Ex&change File A and B", Item::line, "EXC"},
    {file, "Next E&xtension", Item::line, "IE"},
    {file, "", Item::separator},
    {file, "&Save As…", Item::line, "SA", "Ctrl+S", "save"},
    {file, "Update &Header", Item::line, "UH"},
    {exports, "&Picture (SVG, PDF, PNG)…", Item::line, "metafile"},
    {exports, "Printed Pa&ge (SVG, PDF, PNG)…", Item::line, "metafile \"\" page"},
    {exports, "&JCAMP-DX…", Item::line, "EJ"},
    {exports, "JCAMP-DX&B…", Item::line, "E6"},
    {exports, "&Text: ppm and Real Part…", Item::line, "E5"},
    {exports, "Text: Real and I&maginary Parts…", Item::line, "E4"},
    {file, "", Item::separator},
    {file, "&Print…", Item::line, "Print", "Ctrl+P"},
    {file, "", Item::separator},
    {file, "I&nformation", Item::line, "info"},
    {file, "", Item::separator},
    {file, "&Quit", Item::line, "EX", "Ctrl+Q"},

    {edit, "&Undo", Item::line, "^Z", "Ctrl+Z", "undo"},
    {edit, "&Redo", Item::line, "^Y", "Ctrl+Y", "redo"},
    {edit, "", Item::separator},
    {edit, "&Copy Picture", Item::line, "^C", "Ctrl+C"},
    {edit, "Copy &Points", Item::line, "CB text"},
    {edit, "", Item::separator},
    {edit, "Read Con&figuration Again", Item::line, "ini"},
    {edit, "Sa&ve Configuration", Item::line, "ini save"},
    {edit, "&Preferences…", Item::panel, "preferences", "Ctrl+,"},

    {view, "&Whole Spectrum", Item::line, "XYZ FULL", "Ctrl+0", "full"},
    {view, "&Zoom by Keys", Item::line, "ZO", "", "zoom"},
    {view, "&Next Trace", Item::line, "^A", "Ctrl+A", "traces"},
    {axis, "&ppm", Item::line, "Axis PPM"},
    {axis, "&Hz", Item::line, "Axis HZ"},
    {axis, "&Seconds", Item::line, "Axis SECONDS"},
    {axis, "P&oints", Item::line, "Axis POINTS"},
    {axis, "&None", Item::line, "Axis NONE"},
    {view, "&Grid", Item::toggle, "GRIDLINES"},
    {store, "Region &0", Item::line, "X0"}, {store, "Region &1", Item::line, "X1"}, {store, "Region &2", Item::line, "X2"},
    {store, "Region &3", Item::line, "X3"}, {store, "Region &4", Item::line, "X4"}, {store, "Region &5", Item::line, "X5"},
    {store, "Region &6", Item::line, "X6"}, {store, "Region &7", Item::line, "X7"}, {store, "Region &8", Item::line, "X8"},
    {store, "Region &9", Item::line, "X9"},
    {recall, "Region &0", Item::line, "Z0"}, {recall, "Region &1", Item::line, "Z1"}, {recall, "Region &2", Item::line, "Z2"},
    {recall, "Region &3", Item::line, "Z3"}, {recall, "Region &4", Item::line, "Z4"}, {recall, "Region &5", Item::line, "Z5"},
    {recall, "Region &6", Item::line, "Z6"}, {recall, "Region &7", Item::line, "Z7"}, {recall, "Region &8", Item::line, "Z8"},
    {recall, "Region &9", Item::line, "Z9"},
    {view, "", Item::separator},
    {beside, "&Keep in Buffer 1", Item::line, "B1"},
    {beside, "Keep in B&uffer 2", Item::line, "B2"},
    {beside, "", Item::separator},
    {beside, "&Show File B", Item::line, "BV show"},
    {beside, "&Hide File B", Item::line, "BV hide"},
    {beside, "Scale File B to File &A", Item::line, "BV scale auto"},
    {beside, "Show Buffer &1", Item::line, "B1 show"},
    {beside, "Hide Buffer 1", Item::line, "B1 hide"},
    {beside, "Show Buffer &2", Item::line, "B2 show"},
    {beside, "Hide Buffer 2", Item::line, "B2 hide"},
    {beside, "", Item::separator},
    {beside, "&Close File B", Item::line, "BV clear"},
    {view, "", Item::separator},
    {view, "Next S&lice", Item::line, "SL +"},
    {view, "Previo&us Slice", Item::line, "SL -"},
    {view, "Next P&lane", Item::line, "Plane +"},
    {view, "Previous Plan&e", Item::line, "Plane -"},
    {view, "", Item::separator},
    {view, "1&D", Item::line, "1D"},
    {view, "Contour &Plot", Item::line, "CONTOUR"},
    {view, "&Intensity Plot", Item::line, "XC"},
    {view, "Stac&ked Plot", Item::line, "SP"},
    {view, "", Item::separator},
    {look, "As the &System", Item::line, "ini set APPEARANCE SYSTEM"},
    {look, "&Light", Item::line, "ini set APPEARANCE LIGHT"},
    {look, "&Dark", Item::line, "ini set APPEARANCE DARK"},
    {view, "&Toolbar", Item::toggle, "TOOLBAR"},
    {view, "&Output", Item::panel, "output"},

    {process, "&Automatically", Item::line, "Process"},
    {process, "", Item::separator},
    {process, "&Exponential Weighting", Item::line, "EM", "", "weight"},
    {process, "&Gaussian Weighting", Item::line, "GM"},
    {process, "&Cosine Window", Item::line, "COSINE"},
    {process, "&Zero Fill", Item::line, "ZF", "", "fill"},
    {process, "", Item::separator},
    {process, "&Fourier Transform", Item::line, "FT", "", "transform"},
    {process, "&Inverse Fourier Transform", Item::line, "FT INVERSE"},
    {process, "&Real Fourier Transform", Item::line, "REALFT"},
    {process, "Take Out Group &Delay", Item::line, "BR"},
    {process, "", Item::separator},
    {process, "&Phase with Stored Values", Item::line, "PC", "", "phase"},
    {process, "Phase with the &Mouse", Item::line, "PH"},
    {process, "Phase what Is Sho&wn", Item::line, "PE"},
    {process, "Automatic P&hase", Item::line, "AP"},
    {process, "Total Phase", Item::line, "TP"},
    {process, "Take Phase Bac&k", Item::line, "ZP"},
    {process, "", Item::separator},
    {process, "&Baseline", Item::line, "BC", "", "baseline"},
    {process, "Fitted Base&line", Item::line, "FB"},
    {process, "Linear Predicti&on", Item::line, "LP"},
    {process, "Reverse &Spectrum", Item::line, "SR"},
    {process, "", Item::separator},
    {values, "&Line Broadening…", Item::ask, "LB", "", "", "Line broadening, Hz", broadening},
    {values, "Zero-&Order Phase…", Item::ask, "PA", "", "", "Zero-order phase, degrees", phase_a},
    {values, "&First-Order Phase…", Item::ask, "PB", "", "", "First-order phase, degrees", phase_b},
    {process, "Add or S&ubtract Spectra", Item::line, "AS"},
    {process, "Zero I&maginaries", Item::line, "ZI"},
    {process, "Zero Reals", Item::line, "ZR"},
    {process, "Zero Negatives", Item::line, "ZN"},
    {process, "", Item::separator},
    {array, "&Enter or Leave", Item::line, "AR"},
    {array, "&Complex", Item::line, "AR complex"},
    {array, "&Pairwise", Item::line, "AR pairwise"},
    {array, "&TPPI to Pairwise", Item::line, "AR tppi2pairwise"},
    {array, "&3D", Item::line, "AR 3D"},
    {array, "&Off", Item::line, "AR off"},
    {process, "&Transpose…", Item::line, "TD"},

    {analyze, "&Peak Picking", Item::line, "DP"},
    {analyze, "&Minimum Height", Item::line, "MH"},
    {analyze, "Pea&k List", Item::line, "PL"},
    {analyze, "Cl&ear Peaks", Item::line, "DP clear"},
    {analyze, "", Item::separator},
    {analyze, "&Integrate…", Item::line, "ID"},
    {analyze, "&Automatic Integrals", Item::line, "AI", "", "integrals"},
    {analyze, "&List Integrals", Item::line, "ID list"},
    {analyze, "Sho&w Integrals", Item::line, "ID show"},
    {analyze, "Hid&e Integrals", Item::line, "ID hide"},
    {analyze, "&Clear Integrals", Item::line, "ID clear"},
    {analyze, "", Item::separator},
    {analyze, "&Notes", Item::line, "NO"},
    {analyze, "Add N&ote…", Item::ask, "NO", "", "", "Text of the note", empty_text},
    {analyze, "", Item::separator},
    {analyze, "Line &Fitting", Item::line, "LF"},
    {analyze, "S&ummary", Item::line, "SUMMARY"},
    {analyze, "&Noise Figure", Item::line, "NF"},
    {analyze, "&Spin Simulation", Item::line, "NS"},
    {analyze, "S&hift Database", Item::line, "JJ"},

    {macro, "&Run…", Item::line, "RU"},
    {link, "LINK&0", Item::line, "A0"}, {link, "LINK&1", Item::line, "A1"}, {link, "LINK&2", Item::line, "A2"},
    {link, "LINK&3", Item::line, "A3"}, {link, "LINK&4", Item::line, "A4"}, {link, "LINK&5", Item::line, "A5"},
    {link, "LINK&6", Item::line, "A6"}, {link, "LINK&7", Item::line, "A7"}, {link, "LINK&8", Item::line, "A8"},
    {link, "LINK&9", Item::line, "A9"},
    {macro, "", Item::separator},
    {macro, "Command Log &On", Item::line, "cmdlog on"},
    {macro, "Command Log O&ff", Item::line, "cmdlog off"},
    {macro, "&Show Command Log", Item::line, "cmdlog show"},

    {help, "&Commands", Item::panel, "commands", "F1"},
    {help, "Program &Folders", Item::line, "WP"},
    {help, "", Item::separator},
    {help, "&About ZOLT", Item::panel, "about"},
};
// clang-format on

// The row of the command that a line reaches; nullptr for control keys and unknown words.
const Command* command_of(std::string_view line) {
    Arguments args(line);
    const Command* command = find_command(args.next());
    return command != nullptr ? command : find_fallback(line);
}

}  // namespace

std::span<const MenuItem> menu_items() { return items; }

std::string line_of(const MenuItem& item) {
    if (item.kind == Item::toggle) return std::string("ini set ") + item.line + (setting_switch(item.line) ? " FALSE" : " TRUE");
    return item.kind == Item::line || item.kind == Item::ask ? item.line : "";
}

bool is_available(const MenuItem& item) {
    if (item.kind != Item::line && item.kind != Item::ask) return true;
    if (item.line[0] == '^') return show.loaded;
    const Command* command = command_of(item.line);
    return command != nullptr && command->handler != nullptr && ((command->flags & needs_data) == 0 || show.loaded);
}

int run_menu_line(std::string_view line) {
    if (session.sub_routine != nullptr) return refuse("A Sub-Routine is active.\nExit first.");
    return run_line(line, LineSource::menu);
}

}  // namespace zolt
