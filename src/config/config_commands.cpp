// zoltini: reads, shows, sets and saves the configuration. WhichPath: the program's paths.
#include "config/config_commands.h"

#include <algorithm>

#include "common/file.h"
#include "common/text.h"
#include "config/ini.h"
#include "config/paths.h"
#include "config/settings.h"
#include "platform/platform.h"

namespace zolt {

namespace {

constexpr const char* usage = "ini or zoltini [file / list [word] / set KEY VALUE / save [file] / sample file]";

bool holds_word(std::string_view text, const std::string& word) { return upper(text).find(word) != std::string::npos; }

int list_settings(Arguments& args) {
    const std::string word = upper(args.next());
    std::string list;
    for (const SettingKey& key : setting_keys()) {
        if (!holds_word(key.name, word) && !holds_word(key.help, word)) continue;
        list += format_text("%s=%s    %s", key.name, setting_text(key).c_str(), key.help);
        if (key.type == SettingType::choice) list += format_text(" (%s)", key.words);
        list += "\n";
    }
    if (list.empty()) return show_reply("  - No key of ZOLT.INI has to do with " + word + ".");
    list.pop_back();
    return show_reply(list);
}

int change_setting(Arguments& args) {
    const std::string name = args.next();
    const SettingKey* key = find_setting(name);
    if (key == nullptr) return refuse("ZOLT.INI has no key " + name + ".\nThe command ini list shows them.");
    std::string_view value = args.rest();
    value.remove_prefix(std::min(value.find_first_not_of("= \t"), value.size()));
    if (!apply_setting(name, value))
        return refuse(format_text("%s does not take the value %s", key->name, std::string(value).c_str()));
    platform().reply(format_text("  - %s=%s", key->name, setting_text(*key).c_str()));
    return 1;
}

int save_settings(Arguments& args) {
    std::string path = typed_path(args.next());
    if (!save_ini(path)) return refuse("The configuration could not be written to\n" + path);
    platform().reply("  - Configuration saved in " + path);
    return 1;
}

int write_sample(Arguments& args) {
    const std::string name = typed_path(args.next());
    if (name.empty()) return show_reply(usage);
    const std::string path = absolute_path(name);
    if (file_facts(path).exists) return refuse(path + "\nis there already.");
    ReplacedFile file;
    return file.open(path) && file.write(sample_ini()) && file.commit() ? 1 : refuse("Could not open File: " + path);
}

constexpr struct {
    const char* word;
    int (*handler)(Arguments& args);
} words[] = {{"list", list_settings}, {"set", change_setting}, {"save", save_settings}, {"sample", write_sample}};

}  // namespace

int cmd_zoltini(Arguments& args) {
    if (args.ask_usage()) return show_reply(usage);
    const std::string name = args.next();
    for (const auto& row : words)
        if (same_word(row.word, name)) return row.handler(args);
    if (name.empty()) return read_configuration_again() ? 1 : 0;
    return read_ini(absolute_path(typed_path(name))) ? 1 : 0;
}

int cmd_whichpath(Arguments& /*args*/) {
    platform().message("ZOLT", Icon::information,
                       "ZOLT Root Path =   " + root_path() + "\nData Path =   " + data_path(true) +
                           "\nImport Path = " + import_path() + "\nTemp File Path = " + temporary_file_path() +
                           "\nDefault Macro Path = " + macro_path() + "\n");
    return 2;
}

}  // namespace zolt
