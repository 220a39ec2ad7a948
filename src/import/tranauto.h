// The one translation entry: from a foreign data file to a native file.
#pragma once

#include <string>

#include "import/format.h"

namespace zolt {

/// What detection found, or why it stopped.
struct Detection {
    const Format* format = nullptr;
    const char* step = "";  ///< what decided, or stopped it
    std::string message;    ///< without a format
};

/// Recognises a file by its name, its companions and its first kilobytes. `may_ask` allows the one question there is.
Detection detect_format(const std::string& path, bool may_ask = true);

/// Translates the file `input` into the native file `output`. An unknown or empty key has the format recognised.
/// `parameters` is a fresh record; on success it describes the output and holds what no native file carries. False with
/// the reason in `message` (empty when it has been shown already); the output is then as it was.
bool TRANAUTO(const std::string& input, const std::string& output, const std::string& key, const ImportOptions& options,
              DataSet& parameters, std::string& message);

}  // namespace zolt
