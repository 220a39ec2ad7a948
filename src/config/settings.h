// The one table of configuration keys: name, what it sets, its range and a line of help.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace zolt {

struct SettingKey {
    const char* name;
    std::variant<bool*, int*, double*, std::string*> target;
    double lowest, highest;  ///< of a number; a value outside leaves the setting as it was
    const char* help;
};

/// Every key, in the order of the sample file.
std::span<const SettingKey> setting_keys();

/// Applies one pair of a configuration file; unknown keys and values that do not fit are skipped.
void apply_setting(std::string_view key, std::string_view value);

}  // namespace zolt
