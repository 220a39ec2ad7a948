// The one table of configuration keys: name, type, default, range and a line of help; and their present values.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace zolt {

enum class SettingType { toggle, whole, number, text, path, colour, choice };

struct SettingKey {
    const char* name;
    SettingType type;
    const char* fallback;    ///< the value without the key
    double lowest, highest;  ///< of a number; a value outside leaves the setting as it was
    const char* words;       ///< of a choice: the words allowed, separated by blanks
    const char* help;
    /// The field that holds the value; without one Settings::values does.
    std::variant<std::monostate, bool*, int*, double*, std::string*> target = {};
    const char* shipped = nullptr;  ///< the value that the sample file sets; nullptr: it shows the default as a comment
};

/// Every key, in the order of the sample file.
std::span<const SettingKey> setting_keys();
/// The title of the group that begins with this key; "" within a group.
std::string_view group_title(const SettingKey& key);
/// The row of a key in any case, or nullptr.
const SettingKey* find_setting(std::string_view name);

/// The value as the row's type writes it (2.50 becomes 2.5, true TRUE); nothing when the text does not fit the row.
std::optional<std::string> canonical_value(const SettingKey& key, std::string_view text);

/// Applies one pair of a configuration file; false, and nothing changed, for an unknown key or a value that does not fit.
bool apply_setting(std::string_view name, std::string_view value);

/// The present value of a key as text; "" for a name that is no key.
std::string setting_text(const SettingKey& key);
std::string setting_text(std::string_view name);
bool setting_switch(std::string_view name);
double setting_number(std::string_view name);
/// 0xRRGGBB.
uint32_t setting_colour(std::string_view name);

/// A colour written as `r,g,b` (0 to 255 each) or `#rrggbb`, as 0xRRGGBB.
std::optional<uint32_t> colour_of(std::string_view text);

/// A key of a numbered row: LINK0, Macro_1, DIMLABEL4.
std::string numbered_key(const char* stem, int number);

}  // namespace zolt
