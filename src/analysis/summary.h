// SUMMARY: what is known of the data set as one page of text.
#pragma once

#include <string>

#include "common/arguments.h"
#include "state/dataset.h"

namespace zolt {

/// Title, file, parameters of each dimension, processing, signal to noise, integrals, peaks. Lines end with CR LF.
std::string summary_text(const DataSet& data);

/// SUMMARY, DT, DataTable: shows it and puts it on the clipboard, or writes it to a text file.
int cmd_summary(Arguments& args);

}  // namespace zolt
