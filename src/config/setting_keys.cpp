// The rows of the configuration keys, in the order of the sample file.
#include "config/settings.h"

#include "common/text.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr double any = 1e300;
constexpr double px = 100000;  // the largest coordinate of a window or a page

using Target = std::variant<std::monostate, bool*, int*, double*, std::string*>;

constexpr SettingKey toggle(const char* name, const char* fallback, const char* help, Target target = {},
                            const char* shipped = nullptr) {
    return {name, SettingType::toggle, fallback, 0, 0, "", help, target, shipped};
}
constexpr SettingKey whole(const char* name, const char* fallback, double lowest, double highest, const char* help,
                           Target target = {}) {
    return {name, SettingType::whole, fallback, lowest, highest, "", help, target};
}
constexpr SettingKey number(const char* name, const char* fallback, double lowest, double highest, const char* help,
                            Target target = {}) {
    return {name, SettingType::number, fallback, lowest, highest, "", help, target};
}
constexpr SettingKey text(const char* name, const char* fallback, const char* help, Target target = {},
                          const char* shipped = nullptr) {
    return {name, SettingType::text, fallback, 0, 0, "", help, target, shipped};
}
constexpr SettingKey path(const char* name, const char* help, Target target = {}) {
    return {name, SettingType::path, "", 0, 0, "", help, target};
}
constexpr SettingKey colour(const char* name, const char* fallback, const char* help) {
    return {name, SettingType::colour, fallback, 0, 0, "", help};
}
constexpr SettingKey choice(const char* name, const char* fallback, const char* words, const char* help) {
    return {name, SettingType::choice, fallback, 0, 0, words, help};
}

// The height of a contour level and its two colours: positive and negative.
#define LEVEL(n, height, r, g, b, mr, mg, mb)                                                       \
    number("IP_LEVEL_" #n, height, 0, 100, "height of level " #n ", percent of the largest value"), \
        whole("IP_RED_" #n, r, 0, 255, "red of the positive contours of level " #n),                \
        whole("IP_GREEN_" #n, g, 0, 255, "green of the positive contours of level " #n),            \
        whole("IP_BLUE_" #n, b, 0, 255, "blue of the positive contours of level " #n),              \
        whole("IP_RED_MINUS_" #n, mr, 0, 255, "red of the negative contours of level " #n),         \
        whole("IP_GREEN_MINUS_" #n, mg, 0, 255, "green of the negative contours of level " #n),     \
        whole("IP_BLUE_MINUS_" #n, mb, 0, 255, "blue of the negative contours of level " #n)

// clang-format off
const SettingKey keys[] = {
    toggle("UNDO", "FALSE", "TRUE: the state before each command is kept, up to ten of them, to step back to with Ctrl+Z", &session.undo_enabled, "TRUE"),
    toggle("ZOLT_LOG_COMMANDS", "FALSE", "TRUE: command lines that worked and lines of macros are appended to the command log", &session.log_on),
    toggle("EXPERT_MODE", "FALSE", "TRUE: start with the expert mode on", &session.expert),
    toggle("NO_FILE_OVERWRITE", "FALSE", "TRUE: no command writes over an existing file", &settings.no_file_overwrite),
    toggle("STOP_ON_ERROR", "FALSE", "TRUE: the first command that fails ends the link and the macro that it stands in"),
    toggle("CR_FOR_COMMANDS", "FALSE", "TRUE: Enter on an empty line repeats the last command"),
    toggle("AUTOTAILER", "FALSE", "TRUE: saves of header types 1 and 2 write the tailer anew even when only annotations have changed"),
    toggle("Exit_Windows", "FALSE", "TRUE: the end of the program ends the session of the system, too"),
    toggle("HTMLHELP", "TRUE", "TRUE: help opens in the browser, FALSE: in a window of the program"),
    whole("ZOLTBUG", "0", 0, 9, "diagnostic level: 0 none, larger numbers tell more"),

    path("DATADIR", "folder of data files; DATA of the root folder without it", &settings.data_dir),
    path("IMPORTDIR", "folder in which imports are looked for; that of the data files without it", &settings.import_dir),
    path("MACRODIR", "folder of macros; MAC of the root folder without it", &settings.macro_dir),
    path("DEFAULT_IMPORT_OUT_DIR", "folder that imported data go to; that of the data files without it", &settings.import_out_dir),
    path("ZZ_File_Path", "data file that the command ZZ reads; File A again without it", &settings.zz_file_path),
    text("ZZ_File_Type", "", "format key of the file of ZZ_File_Path; detected without it"),
    text("Browser", "xdg-open", "program that opens pages and help"),
    whole("ZOLT_HEADER_VERSION", "3", 1, 3, "header type of written data files", &session.header_type),
    whole("BYTE_ORDER", "1", 1, 3, "byte order of written data files: 1 Intel order, 2 or 3 big-endian", &session.byte_order),

    choice("CALCTYPE", "NATIVE", "NATIVE", "arithmetic of the transforms"),
    path("FFT_WISDOM", "file of measured plans for the transforms, made by scripts/make-wisdom; plans are estimated without it", &settings.fft_wisdom),
    toggle("BRUKER_FILTER", "TRUE", "FALSE: the transform leaves the group delay of digitally filtered data alone", &settings.bruker_filter),
    toggle("BRUKER_UNIX_BS", "FALSE", "TRUE: the bytes of Bruker data that do not tell their order are swapped"),
    toggle("BRUKER_ASPECT_RI", "FALSE", "TRUE: real and imaginary parts of Aspect data are exchanged on import", &settings.bruker_aspect_ri),
    toggle("BRUKER_XWIN_RI", "FALSE", "TRUE: real and imaginary parts of XWin-NMR data are exchanged on import", &settings.bruker_xwin_ri),
    toggle("RI_ON_IMPORT", "FALSE", "TRUE: real and imaginary parts are exchanged on every import", &settings.ri_on_import),
    number("DEFAULT_PA", "0", -any, any, "zero-order phase of a data set that brings none, degrees", &settings.default_pa),
    number("DEFAULT_PB", "0", -any, any, "first-order phase of a data set that brings none, degrees", &settings.default_pb),
    number("DEFAULT_PC", "0", -any, any, "second-order phase of a data set that brings none, degrees", &settings.default_pc),
    number("AS_MULT", "1", -any, any, "factor of the spectrum that AS adds"),
    number("AS_DC", "0", -any, any, "offset of the spectrum that AS adds"),
    number("DC_OFFSET", "0", -any, any, "vertical offset of a second trace"),
    toggle("FB_SYMPLEX", "FALSE", "TRUE: FB refines its fit by a simplex search"),
    toggle("CONTINUOUS_BASELINE", "FALSE", "TRUE: the fitted baseline is shown while its points are set"),
    number("Fraction_Lorentzian", "1", 0, 1, "starting share of the Lorentzian in a line fit; the rest is Gaussian"),

    text("AutoExecMacro", "", "macro that runs at the start of the program"),
    text("Macro_1", "", "macro that Ctrl+F1 runs"),
    text("Macro_2", "", "macro that Ctrl+F2 runs"),
    text("Macro_3", "", "macro that Ctrl+F3 runs"),
    text("Macro_4", "", "macro that Ctrl+F4 runs"),
    text("Macro_5", "", "macro that Ctrl+F5 runs"),
    text("Macro_6", "", "macro that Ctrl+F6 runs"),
    text("Macro_7", "", "macro that Ctrl+F7 runs"),
    text("Macro_8", "", "macro that Ctrl+F8 runs"),
    text("Macro_9", "", "macro that Ctrl+F9 runs"),
    text("Macro_10", "", "macro that Ctrl+F10 runs"),
    text("Macro_11", "", "macro that Ctrl+F11 runs"),
    text("Macro_12", "", "macro that Ctrl+F12 runs"),

    text("LINK0", "", "command lines that A0 plays, each ended by ; (from an imported FID to a phased spectrum)", &settings.links[0], "EM;FT;PC;BC;"),
    text("LINK1", "", "command lines that A1 plays, and L1 on every slice", &settings.links[1]),
    text("LINK2", "", "command lines that A2 plays", &settings.links[2]),
    text("LINK3", "", "command lines that A3 plays", &settings.links[3]),
    text("LINK4", "", "command lines that A4 plays", &settings.links[4]),
    text("LINK5", "", "command lines that A5 plays", &settings.links[5]),
    text("LINK6", "", "command lines that A6 plays", &settings.links[6]),
    text("LINK7", "", "command lines that A7 plays", &settings.links[7]),
    text("LINK8", "", "command lines that A8 plays", &settings.links[8]),
    text("LINK9", "", "command lines that A9 plays", &settings.links[9]),

    colour("BACKGROUND_COLOR", "#ffffff", "ground of the plot"),
    colour("AXIS_COLOR", "#3c4450", "axis and ticks"),
    colour("AXIS_FONT_COLOR", "#3c4450", "labels of the axis"),
    colour("REAL_COLOR", "#15467f", "real trace"),
    colour("IMAG_COLOR", "#b7791f", "imaginary trace"),
    colour("INTEGRAL_COLOR", "#2f7d4f", "integral curves"),
    colour("CLIPBOARD_FONT_COLOR", "#3c4450", "texts copied to the clipboard as a picture"),
    colour("PARAMETER_FONT_COLOR", "#3c4450", "parameters beside a printed plot"),
    colour("CMDLINE_FONT_COLOR", "#1c232c", "command line"),
    colour("PEAKPICK_FONT_COLOR", "#7a3e6e", "peak labels"),
    colour("INTEGRAL_FONT_COLOR", "#2f7d4f", "values of integrals"),
    toggle("LIGHT_COLOR_CURSORS", "FALSE", "TRUE: cursors in a light colour, for a dark ground"),

    number("PEN_WIDTH_SCREEN", "1.2", 0.1, 100, "width of traces on the screen, pixels"),
    number("PEN_WIDTH_PRINTER", "0.4", 0.01, 100, "width of traces on paper, millimetres"),

    text("NoteFont", "Times New Roman", "face of notes"),
    text("AxisFont", "Times New Roman", "face of axis labels"),
    whole("Axis_Ver", "10", 4, 96, "their size, points (the key Axis itself is the unit, below)"),
    text("ClipFont", "Times New Roman", "face of texts on the clipboard"),
    whole("Clip", "10", 4, 96, "their size, points"),
    text("CmdLineFont", "Times New Roman", "face of the command line"),
    whole("CmdLine", "11", 4, 96, "its size, points"),
    text("IntegralFont", "Times New Roman", "face of the values of integrals"),
    whole("INTEGRAL_HORIZONTAL", "9", 4, 96, "their size when written horizontally, points"),
    whole("INTEGRAL_VERTICAL", "9", 4, 96, "their size when written vertically, points"),
    text("ParmFont", "Times New Roman", "face of parameters"),
    whole("Parm", "8", 4, 96, "their size, points"),
    text("PeakFont", "Arial", "face of peak labels"),
    whole("Peak_HOR", "9", 4, 96, "their size when written horizontally, points"),
    whole("Peak_VER", "9", 4, 96, "their size when written vertically, points"),
    path("MetaObjectFile", "picture that is placed on every new plot"),

    choice("AXIS", "HEADER", "NONE POINTS HEADER", "axis of a new plot: none, points, or the unit that the data's header tells"),
    text("AXIS_LABEL_PPM", "ppm", "label of an axis in ppm"),
    text("AXIS_LABEL_HZ", "Hz", "label of an axis in Hz"),
    text("AXIS_LABEL_MM", "mm", "label of an axis in millimetres"),
    text("AXIS_LABEL_PTS", "points", "label of an axis in points"),
    text("AXIS_LABEL_SEC", "s", "label of an axis in seconds"),
    text("AXIS_LABEL_SLICE", "slice", "label of an axis in slices"),
    text("DIMLABEL1", "", "label of dimension 1"),
    text("DIMLABEL2", "", "label of dimension 2"),
    text("DIMLABEL3", "", "label of dimension 3"),
    text("DIMLABEL4", "", "label of dimension 4"),
    toggle("GRIDLINES", "FALSE", "TRUE: grid lines at the ticks"),
    toggle("DISPLAY_MONO", "FALSE", "TRUE: display in one colour"),
    toggle("SQUARE_2D", "FALSE", "TRUE: plots of 2D data are square"),
    whole("TOP_MARGIN", "8", 0, px, "margins of a 1D plot, pixels: top"),
    whole("BOTTOM_MARGIN", "48", 0, px, "bottom"),
    whole("LEFT_MARGIN", "8", 0, px, "left"),
    whole("RIGHT_MARGIN", "8", 0, px, "right"),
    whole("TOP_2D_MARGIN", "8", 0, px, "margins of a 2D plot, pixels: top"),
    whole("BOTTOM_2D_MARGIN", "48", 0, px, "bottom"),
    whole("LEFT_2D_MARGIN", "64", 0, px, "left"),
    whole("RIGHT_2D_MARGIN", "8", 0, px, "right"),
    whole("X_OFFSET", "0", -px, px, "step to the right from one stacked trace to the next, pixels"),
    whole("Y_OFFSET", "8", -px, px, "step upwards from one stacked trace to the next, pixels"),

    toggle("INTERPOLATE_PEAKS", "TRUE", "TRUE: peak positions are interpolated between points"),
    toggle("SNAP_TO_PEAK", "FALSE", "TRUE: a picked position moves to the nearest maximum"),
    toggle("DO_PP_WITH_M", "FALSE", "TRUE: the key M picks the peak under the cursor"),
    toggle("DP_PREVENT_OVERLAP", "TRUE", "TRUE: peak labels are spread so that none covers another"),
    toggle("DP_ONTOP", "FALSE", "TRUE: peak labels stand right on their peaks, FALSE: at the top of the plot"),
    toggle("DP_WITHLINE", "TRUE", "TRUE: a line leads from each label to its peak"),
    toggle("DP_ALWAYSINFO", "FALSE", "TRUE: the parameters are shown with every peak list"),
    toggle("DP_FIRSTARG", "FALSE", "TRUE: the first argument of DP is the threshold"),
    choice("1D_DP_Labels", "vertical", "vertical horizontal", "direction of peak labels in 1D plots"),
    choice("2D_DP_Labels", "horizontal", "vertical horizontal", "direction of peak labels in 2D plots"),
    choice("ID_DISPLAY", "BOTTOM", "BOTTOM TOP", "place of the values of integrals"),
    toggle("ID_HORIZONTAL_FONT", "TRUE", "TRUE: values of integrals are written horizontally"),

    whole("X0_START", "80", -px, px, "window at the start, pixels: left edge"),
    whole("Y0_START", "60", -px, px, "upper edge"),
    whole("XW_START", "1200", 100, px, "width"),
    whole("YW_START", "800", 100, px, "height"),
    choice("APPEARANCE", "SYSTEM", "SYSTEM LIGHT DARK", "light or dark colours, or as the system has them"),
    toggle("TOOLBAR", "TRUE", "TRUE: the toolbar is shown"),
    toggle("HORIZONTAL_SCROLL_BARS", "FALSE", "TRUE: expanded plots have a horizontal scroll bar"),
    toggle("UseTabs", "TRUE", "TRUE: columns of copied tables are separated by tabs, FALSE: padded with blanks"),
    number("MOUSE_SCALING_PH", "1", 0.001, 1000, "degrees of phase for one pixel of the mouse in PH"),
    number("MOUSE_SCALING_PE", "1", 0.001, 1000, "degrees of phase for one pixel of the mouse in PE"),
    choice("MOUSE_DIRECTION", "UP", "UP DOWN", "direction of the mouse that increases a value"),

    toggle("PRINT_BOX", "FALSE", "TRUE: a frame around printed plots"),
    toggle("PRINT_COLOR", "TRUE", "TRUE: print in colours"),
    toggle("PRINT_PARAMETERS", "TRUE", "TRUE: print the parameters beside the plot"),
    choice("PRINT_PAPER", "A4", "A4 LETTER", "paper of printed pages"),
    choice("PRINT_ORIENTATION", "LANDSCAPE", "LANDSCAPE PORTRAIT", "their long side lies or stands"),
    number("PRINT_MARGIN", "15", 0, 100, "their margins, millimetres"),
    number("INSERT_PRINTER_FUDGE", "1", 0.01, 100, "factor of the size of inserts on paper"),

    whole("IP_LEVELS", "10", 1, 10, "number of contour levels"),
    LEVEL(1, "3", "95", "168", "232", "240", "165", "143"),
    LEVEL(2, "4.3", "86", "156", "219", "229", "152", "130"),
    LEVEL(3, "6.3", "76", "144", "205", "218", "138", "117"),
    LEVEL(4, "9.1", "67", "132", "192", "207", "125", "104"),
    LEVEL(5, "13.3", "58", "120", "178", "196", "112", "91"),
    LEVEL(6, "19.2", "48", "108", "165", "184", "98", "77"),
    LEVEL(7, "27.9", "39", "96", "151", "173", "85", "64"),
    LEVEL(8, "40.4", "30", "84", "138", "162", "72", "51"),
    LEVEL(9, "58.6", "20", "72", "124", "151", "58", "38"),
    LEVEL(10, "85", "11", "60", "111", "140", "45", "25"),
};

constexpr struct {
    std::string_view first;
    std::string_view title;
} groups[] = {
    {"UNDO", "Behaviour"},
    {"DATADIR", "Folders and files"},
    {"CALCTYPE", "Import and processing"},
    {"AutoExecMacro", "Macros: a name is looked for in the macro folder"},
    {"LINK0", "Links: what the commands A0 to A9 play, ; standing for Enter"},
    {"BACKGROUND_COLOR", "Colours: r,g,b or #rrggbb"},
    {"PEN_WIDTH_SCREEN", "Pens"},
    {"NoteFont", "Fonts"},
    {"AXIS", "Plots"},
    {"INTERPOLATE_PEAKS", "Peaks and integrals"},
    {"X0_START", "Window"},
    {"PRINT_BOX", "Printing"},
    {"IP_LEVELS", "Contours of 2D plots"},
};
// clang-format on

}  // namespace

std::span<const SettingKey> setting_keys() { return keys; }

std::string_view group_title(const SettingKey& key) {
    for (const auto& group : groups)
        if (same_word(group.first, key.name)) return group.title;
    return {};
}

}  // namespace zolt
