// Translation of native files that are not read directly: byte-swapped ones and ones that hold integers.
#pragma once

#include "import/format.h"

namespace zolt {

bool CDFF_Parm(Translation& t);
bool CDFF_Data(Translation& t);

}  // namespace zolt
