// Stages of the JCAMP-DX translator.
#pragma once

#include "import/format.h"

namespace zolt {

/// Parameters, counts and axes of the first NMR block; further blocks are listed to the user.
bool JCAMP_Parm(Translation& t);
/// Points of that block into the temporary files.
bool JCAMP_Data(Translation& t);

}  // namespace zolt
