// The parameter stage of processed Bruker data.
#pragma once

#include <string>

#include "import/bruker_parameters.h"

namespace zolt {

/// A file named as one of the quadrants of a processed plane: 2rr, 2ri, 2ir, 2ii.
bool is_processed_plane(const std::string& path);

/// Parameters of processed data of one or two indirect dimensions: counts, tiles and axes by procs to proc3s.
bool processed_parameters(Translation& t, size_t indirect_dimensions);

/// What procs says of a spectrum's dimension 1: offset, O1, title, scale, kind of the words.
void take_procs_of_spectrum(Translation& t, const Acquisition& acquisition, const std::optional<Processing>& procs);

}  // namespace zolt
