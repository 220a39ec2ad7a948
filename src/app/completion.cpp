// Everything comes from the rows of the command table.
#include "app/completion.h"

#include <algorithm>

#include "app/commands.h"
#include "common/text.h"

namespace zolt {

namespace {

std::string_view first_word(std::string_view line) { return line.substr(0, line.find_first_of(" =")); }

// The row that Enter would reach; nullptr for none.
const Command* command_of(std::string_view word) {
    const Command* command = find_command(word);
    return command != nullptr || word.size() != 2 ? command : find_fallback(word);
}

std::string about(const Command& command) {
    if (command.handler == nullptr)
        return std::string(command.summary) + (std::string_view(command.summary) == "planned" ? "" : " (planned)");
    return std::string(command.usage) + "  \u2013  " + command.summary;
}

}  // namespace

std::vector<std::string> words_beginning(std::string_view start) {
    std::vector<std::string> words;
    for (const auto table : {command_table(), fallback_table()})
        for (const Command& command : table)
            if (command.handler != nullptr && !command.shadowed && starts_with_word(command.keyword, start))
                words.emplace_back(command.keyword);
    std::sort(words.begin(), words.end(), [](const std::string& a, const std::string& b) {
        return a.size() != b.size() ? a.size() < b.size() : upper(a) < upper(b);
    });
    return words;
}

std::string completed(std::string_view line) {
    const std::string_view word = first_word(line);
    if (word.empty() || word.size() != line.size()) return std::string(line);
    const auto words = words_beginning(word);
    if (words.empty()) return std::string(line);
    std::string common = words.front();
    for (const std::string& other : words) {
        size_t same = 0;
        while (same < std::min(common.size(), other.size()) && upper(common[same]) == upper(other[same])) ++same;
        common.resize(same);
    }
    if (words.size() == 1) return common + " ";
    return common.size() > word.size() ? common : std::string(line);
}

std::string hint_for(std::string_view line) {
    constexpr size_t most_words = 9;
    const std::string_view word = first_word(line);
    if (word.empty()) return {};
    const bool whole = word.size() != line.size();
    const auto words = words_beginning(word);
    const Command* command = command_of(word);
    if (command == nullptr && words.size() == 1) command = find_command(words[0]);
    if (command != nullptr) return about(*command);
    if (whole || words.empty()) return {};
    std::string all;
    for (size_t i = 0; i < std::min(words.size(), most_words); ++i) all += (i > 0 ? "   " : "") + words[i];
    return words.size() > most_words ? all + "   \u2026" : all;
}

}  // namespace zolt
