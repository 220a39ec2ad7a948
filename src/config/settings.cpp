// How each type of key reads and writes its text, and where the values are.
#include "config/settings.h"

#include <charconv>
#include <cmath>

#include "common/numbers.h"
#include "common/text.h"
#include "state/session.h"

namespace zolt {

namespace {

std::string shortest(double value) {
    char text[40];
    const auto [end, error] = std::to_chars(text, text + sizeof text, value);
    return error == std::errc{} ? std::string(text, end) : "0";
}

std::optional<uint32_t> hex_colour(std::string_view digits) {
    uint32_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (digits.size() != 6 || error != std::errc{} || end != digits.data() + digits.size()) return std::nullopt;
    return value;
}

std::optional<std::string> canonical_number(const SettingKey& key, std::string_view text) {
    const auto value = leading_number(text);
    if (!value || !(*value >= key.lowest && *value <= key.highest)) return std::nullopt;
    return shortest(key.type == SettingType::whole ? std::trunc(*value) : *value);
}

// The value's text in the field it lives in.
struct FieldText {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(const bool* field) const { return *field ? "TRUE" : "FALSE"; }
    std::string operator()(const int* field) const { return std::to_string(*field); }
    std::string operator()(const double* field) const { return shortest(*field); }
    std::string operator()(const std::string* field) const { return *field; }
};

// Puts a canonical text into the field it lives in.
struct SetField {
    const SettingKey& key;
    const std::string& text;

    void operator()(std::monostate) const { settings.values[upper(key.name)] = text; }
    void operator()(bool* field) const { *field = text == "TRUE"; }
    void operator()(int* field) const { *field = static_cast<int>(integer_or_zero(text)); }
    void operator()(double* field) const { *field = number_or_zero(text); }
    void operator()(std::string* field) const { *field = text; }
};

}  // namespace

const SettingKey* find_setting(std::string_view name) {
    for (const SettingKey& key : setting_keys())
        if (same_word(key.name, name)) return &key;
    return nullptr;
}

std::optional<uint32_t> colour_of(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('#')) return hex_colour(text.substr(1));
    const auto parts = split_fields(text, ", \t");
    if (parts.size() != 3) return std::nullopt;
    uint32_t colour = 0;
    for (const std::string_view part : parts) {
        const auto value = leading_number(part);
        if (!value || !(*value >= 0 && *value <= 255)) return std::nullopt;
        colour = colour << 8 | static_cast<uint32_t>(*value);
    }
    return colour;
}

std::optional<std::string> canonical_value(const SettingKey& key, std::string_view text) {
    text = trimmed(text);
    switch (key.type) {
        case SettingType::toggle:
            return same_word(text, "TRUE") ? "TRUE" : "FALSE";
        case SettingType::whole:
        case SettingType::number:
            return canonical_number(key, text);
        case SettingType::colour:
            if (const auto colour = colour_of(text)) return format_text("#%06x", *colour);
            return std::nullopt;
        case SettingType::choice:
            for (const std::string_view word : split_fields(key.words, " "))
                if (same_word(word, text)) return std::string(word);
            return std::nullopt;
        case SettingType::text:
        case SettingType::path:
            break;
    }
    return std::string(text);
}

bool apply_setting(std::string_view name, std::string_view value) {
    const SettingKey* key = find_setting(name);
    const auto text = key != nullptr ? canonical_value(*key, value) : std::nullopt;
    if (text) std::visit(SetField{*key, *text}, key->target);
    return text.has_value();
}

std::string setting_text(const SettingKey& key) {
    if (key.target.index() != 0) return std::visit(FieldText{}, key.target);
    const auto set = settings.values.find(upper(key.name));
    return set != settings.values.end() ? set->second : key.fallback;
}

std::string setting_text(std::string_view name) {
    const SettingKey* key = find_setting(name);
    return key != nullptr ? setting_text(*key) : std::string();
}

bool setting_switch(std::string_view name) { return setting_text(name) == "TRUE"; }

double setting_number(std::string_view name) { return number_or_zero(setting_text(name)); }

uint32_t setting_colour(std::string_view name) { return colour_of(setting_text(name)).value_or(0); }

std::string numbered_key(const char* stem, int number) { return format_text("%s%d", stem, number); }

}  // namespace zolt
