// File C, the native file that processed slices are written to one by one, and the rewriting of File A's header.
#pragma once

#include <cstdint>
#include <string>

#include "common/file.h"
#include "datafile/native_file.h"
#include "state/dataset.h"

namespace zolt {

struct FileC {
    File file;
    std::string name;  ///< absolute path
    bool open = false;
    bool created = false;  ///< not on disk yet: the first slice puts header and slice in place of what was there
    DataRecord header;     ///< as the file has it; its count of slices may be ahead of those written
    NativeLayout layout;
    int64_t slice = 0;  ///< the next slice to be written, from 0
};

/// The one File C.
extern FileC file_c;

/// Creates File C in the configured form with the header of the current data set. From its first slice to close_fileC the
/// file holds every slice written so far and can be read; until then a file of that name stays. False, after its message.
bool create_fileC(const std::string& path);

/// Opens an existing file to write its slices from slice k (from 0) on; k below 0: behind its last one. False, after
/// its message.
bool open_fileC(const std::string& path, int64_t k);

/// Writes the current slice to File C and goes on to the next. False, after its message.
bool write_slice_to_fileC();

/// Completes File C: its header states as many slices as the file holds. The file is replaced as a whole. False, after
/// its message; File C is closed in any case.
bool close_fileC();

/// Rewrites File A with the header of the current data set, in File A's own form, its slices and its tailer kept.
bool UpdateHeaderA();

}  // namespace zolt
