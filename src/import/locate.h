// From the path that a user names to the data file that it means.
#pragma once

#include <string>

namespace zolt {

/// The data file that a path means: itself, or the one data file of an experiment's, a processed data set's or a sample's
/// folder. "" with the reason as one sentence.
std::string data_file_of(const std::string& path, std::string& reason);

/// Whether a folder's name is a number, as those of experiments and of processed data are.
bool all_digits(const std::string& text);

}  // namespace zolt
