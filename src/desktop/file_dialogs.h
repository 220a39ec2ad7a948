// The dialogs that open and save files, and what a file holds as far as it can be told without importing it.
#pragma once

#include <QWidget>
#include <optional>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace zolt {

/// Two lines about a data file or the folder of one: its format, and nucleus, frequency and points where they are told
/// in front of the data. "" for what is no data.
std::string describe_data(const std::string& path);

std::optional<std::string> choose_file(QWidget* parent, FileChoice choice, std::string_view title);

}  // namespace zolt
