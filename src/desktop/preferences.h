// The preferences, built from the table of configuration keys.
#pragma once

#include <QDialog>
#include <string>
#include <vector>

namespace zolt {

/// Shows the dialog; the command lines that make the changes, none when it was cancelled or nothing has changed.
std::vector<std::string> edit_preferences(QWidget* parent);

}  // namespace zolt
