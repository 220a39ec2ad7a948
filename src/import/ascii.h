// Stages of the ASCII translator: text with a labelled header, and plain tables of numbers.
#pragma once

#include "import/format.h"

namespace zolt {

/// Labels, counts and the axis.
bool ASC_Parm(Translation& t);
/// Points into the temporary files.
bool ASC_Data(Translation& t);

}  // namespace zolt
