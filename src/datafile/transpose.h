// Transposition: File A with dimension 1 and another one exchanged, as a new file.
#pragma once

#include <string>

#include "common/file.h"
#include "datafile/native_file.h"

namespace zolt {

/// How rows become columns.
enum class Pairing {
    plain,   ///< out[i][k] = in[k][i]
    paired,  ///< slices 2m and 2m+1 are the real and imaginary parts of point m along dimension 2; in the output those of
             ///< dimension 1 make the pairs, so that a second transposition gives the file back
};

/// The pairing that a process type calls for.
Pairing pairing_of(const std::string& process_type);

/// The record of the data with dimension 1 and dimension `other` (2 to 4) exchanged: every parameter goes with its
/// dimension.
DataRecord transposed_record(const DataRecord& record, int other, Pairing pairing);

/// Writes an open file with dimension 1 and dimension `other` exchanged, header and end included, to `out` in the
/// configured form. At most about `memory` bytes of points are held at a time; more data take several sequential passes
/// over the file. `paired` data are 2D. An empty text on success, else the message of the failure.
std::string transpose_file(File& in, const NativeLayout& layout, const DataRecord& record, int other, Pairing pairing,
                           uint64_t memory, File& out);

}  // namespace zolt
