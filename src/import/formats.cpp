// The one table of foreign formats. A new translator is three functions and their names in its row here.
#include "common/text.h"
#include "import/ascii.h"
#include "import/bruker.h"
#include "import/detect_content.h"
#include "import/format.h"
#include "import/jcamp.h"
#include "import/jeol.h"
#include "import/native.h"
#include "import/varian.h"
#include "state/session.h"

namespace zolt {

namespace {

constexpr const char* aqs_phrase = "of Bruker WinNMR conversion type *.AQS.";

constexpr Format table[] = {
    {1, "NTDEX", "NT Dexter", nullptr, 1},
    {2, "NTTMON", "NT TMON", nullptr, 1},
    {3, "GN", "GE GN", "of GE 1280 GN data type.", 1},
    {4, "QE", "GE QE", "of GE 1280 QE data type.", 1},
    {5, "", "NT Dexter using NicNet", nullptr, 1},
    {6, "", "NT TMON using NicNet", nullptr, 1},
    {7, "", "GE GN using NicNet", nullptr, 1},
    {8, "", "GE QE using NicNet", nullptr, 1},
    {9, "OMEGA_ONE_FILE", "GE Omega 1-file export", "of Raw GE Omega one File data type.", 1, OMEGA_ONE_test},
    {10, "OMEGA_TWO_FILE", "GE Omega 2-file export", nullptr, 1},
    {11, "BRUKERASPECT", "Bruker Aspect", nullptr, -1},
    {12, "FELIXNEW", "unknown", nullptr, 1},
    {13, "ASC", "ASCII", "of ASC Data Pairs type.", 1, nullptr, ASC_Parm, ASC_Data},
    {14, "CDFFDOS", "CDFF DOS", nullptr, 0, nullptr, CDFF_Parm, CDFF_Data},
    {15, "CDFFUNIX", "CDFF Unix", nullptr, 0, nullptr, CDFF_Parm, CDFF_Data},
    {16, "JEOL", "JEOL", nullptr, 1},
    {17, "JEOL_GENERIC", "JEOL Generic Export", nullptr, 1},
    {18, "ATI", "ATI", nullptr, 1, ATI_test},
    {19, "BRUKERASPECTBS", "Bruker Aspect Byte Swapped", nullptr, -1},
    {20, "BRUKERETHERNET", "Bruker Ethernet", nullptr, -1},
    {21, "SMIS", "SMIS", nullptr, 1},
    // FIDs turn with sense 1; the second dimension as the experiment says.
    {22, "VARUNIX", "Varian Unix", nullptr, 0, nullptr, VARU_procpar, VARUData},
    {23, "BRUKERUNIX1", "1D Bruker Unix", nullptr, -1, nullptr, BRUU_Parm, BRUUData},
    {24, "BRUKERUNIX2", "2D Bruker Unix", nullptr, -1, nullptr, BRUU_2D_Parm, BRUUData},
    {25, "BRUKERUNIXSGI1", "1D Bruker Unix SGI", nullptr, -1, nullptr, BRUU_Parm, BRUUData},
    {26, "BRUKERUNIXSGI2", "2D Bruker Unix SGI", nullptr, -1, nullptr, BRUU_2D_Parm, BRUUData},
    {27, "BRUKERX32_1D", "Bruker X32 1D", nullptr, -1, BRUX_Test, BRUX_Parm_1D, BRUUData},
    {28, "BRUKERX32_2D", "Bruker X32 2D", nullptr, -1, nullptr, BRUX_Parm_2D, BRUUData},
    {29, "BRUKNET", "Bruker Aspect BrukNet", nullptr, -1},
    {30, "PCT", "Process Control Technology", nullptr, 1},
    {31, "FXQ", "JEOL FXQ", nullptr, 1, FXQ_test},
    {32, "ANALOGIC", "Analogic", nullptr, 1, ANALOGIC_test},
    {33, "LYBRICS", "Lybrics", nullptr, 1, LYBRICS_test},
    {34, "", "unknown", nullptr, 1},
    {35, "CHEMAGNETICS2", "Chemagnetics Type 2", nullptr, 1},
    {36, "CHEMAGNETICS3", "Chemagnetics Type 3", nullptr, 1},
    {37, "GALACTIC", "Galactic Industries SPC", nullptr, 1, GALACTIC_test},
    {38, "IRIS_FELIX", "Iris Felix", nullptr, 1, IRIS_FELIX_test},
    {39, "CDFFINT", "CDFF integer", nullptr, 0, nullptr, CDFF_Parm, CDFF_Data},
    {40, "MACFID1", "MacFID type 1", nullptr, 1, MACFID1_test},
    {41, "MACFID2", "MacFID type 2", nullptr, 1, MACFID2_test},
    {42, "MACNMR1", "MacNMR type 1", nullptr, 1, MACNMR1_test},
    {43, "MACNMR2", "MacNMR type 2", nullptr, 1, MACNMR2_test},
    {44, "GEMS", "GE Medical Systems", nullptr, 1, GEMS_test},
    {45, "FLXAII", "AII Felix", nullptr, 1, FLX_AII_test},
    {46, "NMRI", "NMRi", nullptr, 1, NMRI_test},
    {47, "PHILIP_MR", "Philips MR", nullptr, 1, PHIL_test},
    {48, "JEOL_LAMBDA", "JEOL Lambda", nullptr, 1, JEOL_LAMBDA_test},
    {49, "WINNMR1DOF", "Bruker WinNMR 1D old", nullptr, -1, nullptr, WINNMR_Parm, BRUUData},
    {50, "WINNMR1DOS", "Bruker WinNMR 1D old", nullptr, -1, nullptr, WINNMR_Parm, BRUUData},
    {51, "WINNMR2DOF", "Bruker WinNMR 2D old", nullptr, -1, nullptr, WINNMR_Parm, BRUUData},
    {52, "WINNMR2DOS", "Bruker WinNMR 2D old", nullptr, -1, nullptr, WINNMR_Parm, BRUUData},
    {53, "WINNMR1DNF", "Bruker WinNMR 1D new", nullptr, -1, nullptr, WINNMR_Parm, BRUUData},
    {54, "WINNMR1DNS", "Bruker WinNMR 1D new", nullptr, -1, nullptr, WINNMR_Parm, BRUUData},
    {55, "WINNMR2DNF", "Bruker WinNMR 2D new", nullptr, -1, nullptr, WINNMR_Parm, BRUUData},
    {56, "WINNMR2DNS", "Bruker WinNMR 2D new", nullptr, -1, nullptr, WINNMR_Parm, BRUUData},
    {57, "", "Bruker WinNMR .aqs", aqs_phrase, -1, nullptr, WINNMR_Parm, BRUUData},
    {58, "", "Bruker WinNMR .aqs", aqs_phrase, -1, nullptr, WINNMR_Parm, BRUUData},
    {59, "", "Bruker WinNMR .aqs", aqs_phrase, -1, nullptr, WINNMR_Parm, BRUUData},
    {60, "", "Bruker WinNMR .aqs", aqs_phrase, -1, nullptr, WINNMR_Parm, BRUUData},
    {61, "WINNMR1D97", "unknown", nullptr, -1},
    {62, "WINNMR2D97", "unknown", nullptr, -1},
    {63, "WINNMRFQS", "Bruker WinNMR .fqs", nullptr, -1, nullptr, WINNMR_Parm, BRUUData},
    {64, "", "unknown", nullptr, 1},
    {65, "", "Bruker Unix 1R", "of Bruker Unix conversion type 1R.", -1, nullptr, BRUU_1R_Parm, BRUUData},
    {66, "JEOL_ALS", "JEOL ALS", nullptr, 1, JEOL_ALS_test},
    {67, "JEOL_ALPHA", "JEOL Alpha", nullptr, 1, JEOL_ALPHA_test},
    {68, "JEOL_DELTA", "JEOL Delta", nullptr, 1, JEOL_DELTA_Test, JEOL_DELTA_Parm, JEOL_DELTA_Data},
    {69, "JCAMP", "JCAMP", nullptr, 0, JCAMP_file_test, JCAMP_Parm, JCAMP_Data},
    // Both directory formats carry the older software's name; only the phrase tells them apart.
    {70, "XWINNMR", "Bruker XWinNMR", "of Xwin NMR type.", -1, nullptr, XWIN_Parm, BRUUData},
    {71, "TOPSPIN", "Bruker XWinNMR", "of TopSpin NMR type.", -1, nullptr, XWIN_Parm, BRUUData},
    {72, "", "Tecmag NT-NMR", "of TecMag NTNMR type.", 1, NTNMR_test},
    {73, "AZARA", "Azara Unix Real Import", nullptr, 1, AZARA_test},
    {74, "ELCINT", "Elcint Import", nullptr, 1, ELCINT_test},
    {75, "PHILIPS2", "Philips-2 Import", "of Philips Spectroscopy data - Type II.", 1, PHILIPS2_test},
    {76, "SIEMENS", "Siemens Import", nullptr, 1, SIEMENS_test},
    {77, "", "GE MEDI Import", "of GE MEDI MRi Spectroscopy data.", 1, GE_MEDI_test},
    {78, "HITACHI", "Hitachi R-1500 Import", nullptr, 1, HITACHI_test},
    {79, "ARC_NEMA_IMAGE", "ARC-NEMA image Import", nullptr, 1, ARC_NEMA_test},
    {80, "BRUKERUNIX3", "3D Bruker Unix", nullptr, -1, BRUU_3D_Test, BRUU_3D_Parm, BRUUData},
    {81, "DDF_RAW", "DDF_RAW CSI Import", nullptr, 1, DDF_test},
    {82, "GAML", "Philips-2 Import", "of GAML XML data.", 1, GAML_test},
    {83, "SIEMENS_RDA", "Siemens RDA Import", nullptr, 1, SIEMENS_RDA_test},
};

constexpr bool numbered_in_order() {
    int number = 0;
    for (const Format& row : table)
        if (row.number != ++number) return false;
    return number == 83;
}
static_assert(numbered_in_order(), "a format's number is its place in the table");

}  // namespace

std::span<const Format> formats() { return table; }

const Format* format_of_number(int number) { return number >= 1 && number <= 83 ? &table[number - 1] : nullptr; }

const Format* format_of_key(std::string_view key) {
    for (const Format& row : table)
        if (!key.empty() && same_word(row.key, key)) return &row;
    return nullptr;
}

std::string description(const Format& format) {
    return format.phrase != nullptr ? format.phrase : format_text("of %s data type.", format.name);
}

bool parts_swapped_by_default(const Format& format) {
    const int n = format.number;
    const bool xwin = n == 70 || n == 71, aspect = n == 11 || n == 19 || n == 20 || n == 29;
    // Native files of another machine are no foreign data.
    return (settings.ri_on_import && format.sense != 0) || (settings.bruker_xwin_ri && xwin) ||
           (settings.bruker_aspect_ri && aspect);
}

std::string not_importable(const Format& format) {
    return format_text("Recognised %s data, which cannot be imported yet.", format.name);
}

}  // namespace zolt
