// Stages of the Bruker translators: data in the directory layout of the UNIX, XWinNMR and TopSpin software.
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
/// The same for data of either directory software; 2D, 3D and processed files are refused.
bool XWIN_Parm(Translation& t);
/// Points of a `fid` into the temporary files.
bool BRUUData(Translation& t);

}  // namespace zolt
