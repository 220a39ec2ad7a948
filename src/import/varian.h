// Stages of the Varian and Agilent translator: an experiment folder with `fid` or `phasefile`, `procpar` and `text`.
#pragma once

#include "import/format.h"

namespace zolt {

/// Parameters from the file header, procpar and text.
bool VARU_procpar(Translation& t);
/// Points of all blocks into the temporary files, in the order of the file. Rows come as they stand, unless the experiment
/// asks for a combination of each pair that no process type describes.
bool VARUData(Translation& t);

}  // namespace zolt
