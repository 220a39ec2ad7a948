// The temporary files of a translation, and putting their parts together as the slices of a native file.
#pragma once

#include <array>
#include <string>

#include "common/file.h"
#include "datafile/dxb.h"
#include "state/dataset.h"

namespace zolt {

/// Temporary files 1 to 3 of a translation: real parts, imaginary parts, and a spare for translators that assemble
/// their output. Removed with the object.
class TemporaryFiles {
public:
    TemporaryFiles() = default;
    ~TemporaryFiles();
    TemporaryFiles(const TemporaryFiles&) = delete;
    TemporaryFiles& operator=(const TemporaryFiles&) = delete;

    /// False, with the message, when the scratch folder does not take them.
    bool open(std::string& message);
    File& file(int number) { return files_[static_cast<size_t>(number - 1)]; }

private:
    std::array<File, 3> files_;
    std::array<std::string, 3> paths_;
};

/// Goes once over the parts for what a header of type 3 says of the points. False with the message.
bool summarize_parts(File& real, File& imaginary, const DataSet& parameters, bool swap, DataSummary& summary, std::string& message);

/// Writes the slices of a native file behind its header: for every row of dimensions 2 to 4 the complex pairs of both
/// temporary files. `swap` puts the value of the second file first in each pair. False with the message.
bool merge_parts(File& real, File& imaginary, const DataSet& parameters, bool swap, File& output, std::string& message);

}  // namespace zolt
