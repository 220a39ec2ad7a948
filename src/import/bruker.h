// Stages of the Bruker translators: data of the UNIX, XWinNMR, TopSpin, X32 and WinNMR software.
#pragma once

#include <string>

#include "import/format.h"

namespace zolt {

/// 1 for a data file that XWinNMR wrote, 2 for TopSpin, 0 for neither, by name and the first lines of its acqus.
int xwin_test(const Candidate& file);
/// The X32 layout: a data file that begins with "A000".
bool BRUX_Test(Candidate& file);
/// A `ser` of three dimensions: acqu3s beside it.
bool BRUU_3D_Test(Candidate& file);

/// Parameters of a 1D `fid`: acqus, and pdata/1/procs and title where they are.
bool BRUU_Parm(Translation& t);
/// Of a `1r`.
bool BRUU_1R_Parm(Translation& t);
/// Of a `ser` of two or three dimensions, or of `2rr` or `3rrr` and their quadrants.
bool BRUU_2D_Parm(Translation& t);
bool BRUU_3D_Parm(Translation& t);
/// Of data of either directory software, by the name of the file.
bool XWIN_Parm(Translation& t);
/// Of an X32 data file, whose acqus is text as that of the others: its points stand behind a header.
bool BRUX_Parm_1D(Translation& t);
bool BRUX_Parm_2D(Translation& t);
/// Of a WinNMR set whose parameter file is a text of labelled records.
bool WINNMR_Parm(Translation& t);

/// Points of `fid` and `ser`, of `1r` and of `2rr` or `3rrr` into the temporary files, as the parameter stage planned it.
bool BRUUData(Translation& t);

}  // namespace zolt
