// Stages of the JCAMP-DX translator.
#pragma once

#include "import/format.h"

namespace zolt {

/// A text that says of itself that it is JCAMP-DX and holds XYDATA or NTUPLES, or NMR data linked together.
bool JCAMP_file_test(Candidate& file);
/// Parameters, counts and axes of the first NMR block; further blocks are listed to the user.
bool JCAMP_Parm(Translation& t);
/// Points of that block into the temporary files.
bool JCAMP_Data(Translation& t);

}  // namespace zolt
