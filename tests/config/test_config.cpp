// ZOLT.INI, its table of keys, and the scratch folder of a process.
#include <cstdlib>
#include <filesystem>
#include <set>

#include <unistd.h>

#include "common/file.h"
#include "common/text.h"
#include "config/ini.h"
#include "config/paths.h"
#include "config/settings.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using ConfigTest = CommandTest;

TEST_F(ConfigTest, PairsOfAnyCaseAndSeparatorTheLaterLineWins) {
    const auto ini =
        root_.write("other/a.ini",
                    "; a comment\r\nexpert_mode\ttrue\r\n= \r\nnonsense\r\nNO_SUCH_KEY=TRUE\r\nLINK3=LB=2;EM;\r\n"
                    "Default_PA=1.5\nDEFAULT_PA=-30.25\nZOLT_HEADER_VERSION=7\nDATADIR=/some where/x\nNO_FILE_OVERWRITE=yes");
    ASSERT_TRUE(read_ini(ini));
    EXPECT_TRUE(session.expert);
    EXPECT_EQ(settings.links[3], "LB=2;EM;") << "a text may hold the separator";
    EXPECT_EQ(settings.default_pa, -30.25);
    EXPECT_EQ(session.header_type, 3) << "a value out of range leaves the setting as it was";
    EXPECT_EQ(settings.data_dir, "/some where/x");
    EXPECT_FALSE(settings.no_file_overwrite) << "a switch is on for TRUE only";
}

TEST_F(ConfigTest, AMissingFileFallsBackOnTheFolderAboveThenIsReported) {
    root_.write("x/ZOLT.INI", "EXPERT_MODE=TRUE\n");
    EXPECT_TRUE(read_ini(root_.path("x/y/MISSING.INI")));
    EXPECT_TRUE(session.expert);
    EXPECT_EQ(platform_.beeps, 0);
    EXPECT_FALSE(read_ini(root_.path("p/q/ZOLT.INI")));
    EXPECT_EQ(platform_.beeps, 1);
    EXPECT_EQ(platform_.messages.back(), "No ZOLT.INI file found.");
    EXPECT_TRUE(session.expert) << "settings are kept";
}

TEST_F(ConfigTest, EveryKeyIsNamedOnceExplainedAndHoldsItsDefault) {
    std::set<std::string> names;
    for (const SettingKey& key : setting_keys()) {
        EXPECT_TRUE(names.insert(upper(key.name)).second) << key.name << " stands twice";
        EXPECT_GT(std::string(key.help).size(), 2u) << key.name;
        EXPECT_EQ(canonical_value(key, key.fallback), key.fallback) << key.name;
        EXPECT_EQ(setting_text(key), key.fallback) << key.name;
    }
    EXPECT_EQ(test::read_file(test::shipped_ini()), sample_ini()) << "the shipped file is written by: ini sample ZOLT.INI";
}

TEST_F(ConfigTest, ValuesOfEveryType) {
    const struct {
        const char *name, *text, *want;  // want: the value then, "" where it is refused
    } table[] = {{"axis", "points", "POINTS"},
                 {"AXIS", "ppm", ""},
                 {"REAL_COLOR", "1, 2,255", "#0102ff"},
                 {"REAL_COLOR", "#A0b1C2", "#a0b1c2"},
                 {"REAL_COLOR", "1,2,256", ""},
                 {"REAL_COLOR", "#12345", ""},
                 {"REAL_COLOR", "1,2", ""},
                 {"TOP_MARGIN", "12.9", "12"},
                 {"TOP_MARGIN", "-1", ""},
                 {"TOP_MARGIN", "nan", ""},
                 {"AS_MULT", "+2.50", "2.5"},
                 {"AS_MULT", "1e400", ""},
                 {"PeakFont", " A = B ", "A = B"},
                 {"UNDO", "true", "TRUE"},
                 {"UNDO", "yes", "FALSE"},
                 {"NO_SUCH_KEY", "1", ""}};
    for (const auto& row : table) {
        const std::string before = setting_text(row.name);
        EXPECT_EQ(apply_setting(row.name, row.text), *row.want != '\0') << row.name << row.text;
        EXPECT_EQ(setting_text(row.name), *row.want != '\0' ? row.want : before) << row.name << row.text;
    }
    EXPECT_EQ(setting_colour("REAL_COLOR"), 0xa0b1c2u);
    EXPECT_EQ(setting_number("AS_MULT"), 2.5);
    EXPECT_EQ(run("ini list contour levels"), 2);
    EXPECT_NE(platform_.replies.back().find("IP_LEVELS=10 "), std::string::npos);
    refused("ini set nosuch 1", "ZOLT.INI has no key nosuch.");
    refused("ini set AXIS ppm", "AXIS does not take the value ppm");
}

TEST_F(ConfigTest, SavingKeepsWhatItDoesNotChange) {
    const std::string text =
        "# mine\r\nLINK1=old\r\nlink1\t=  SF 1;\r\nUnknown=x\r\n;IP_LEVELS=10\r\nAS_MULT=2.50\r\n[odd]\r\nUNDO=FALSE";
    const auto ini = root_.write("ZOLT.INI", text);
    run("ini");
    EXPECT_EQ(run("ini save"), 1);
    EXPECT_EQ(test::read_file(ini), text + "\r\n") << "nothing has been set";
    for (const char* line : {"ini set LINK1 LB=2;EM;", "ini set ip_levels 7", "ini set BROWSER my browser", "UN", "header 2"})
        EXPECT_EQ(run(line), 1) << line;
    EXPECT_EQ(run("ini save"), 1);
    EXPECT_EQ(test::read_file(ini),
              "# mine\r\nLINK1=old\r\nlink1\t=  LB=2;EM;\r\nUnknown=x\r\n;IP_LEVELS=10\r\nIP_LEVELS=7\r\nAS_MULT=2.50\r\n[odd]\r\n"
              "UNDO=TRUE\r\nBrowser=my browser\r\nZOLT_HEADER_VERSION=2\r\n");
    std::filesystem::create_directories(root_.path("folder"));
    refused("ini save folder", "The configuration could not be written to\n");
    refused("ini sample ZOLT.INI", "is there already.");
}

TEST_F(ConfigTest, WhereTheRootIsNotWritableTheUsersOwnFolderServes) {
    root_.write("installed/ZOLT.INI", "EXPERT_MODE=TRUE\nLINK1=a;\n");
    setenv("XDG_CONFIG_HOME", root_.path("user").c_str(), 1);
    std::filesystem::permissions(root_.path("installed"), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    if (access(root_.path("installed").c_str(), W_OK) != 0) {  // always writable for the system's administrator
        root_.write("user/zolt/ZOLT.INI", "LINK1=b;\n");
        set_root_path(root_.path("installed"));
        EXPECT_TRUE(read_configuration(""));
        EXPECT_TRUE(session.expert) << "the installed file is read first";
        EXPECT_EQ(settings.links[1], "b;") << "the user's own over it";
        settings.links[2] = "c;";
        EXPECT_EQ(run("ini save"), 1);
        EXPECT_EQ(test::read_file(root_.path("user/zolt/ZOLT.INI")), "LINK1=b;\nLINK2=c;\n");
        EXPECT_EQ(data_path(false), root_.path("user/zolt/DATA"));
        EXPECT_EQ(find_macro("x", ""), "");
    }
    std::filesystem::permissions(root_.path("installed"), std::filesystem::perms::owner_all);
    setenv("ZOLT_ROOT", root_.path("elsewhere").c_str(), 1);
    set_root_path("");
    EXPECT_EQ(root_path(), root_.path("elsewhere"));
    set_root_path(root_.path());
    EXPECT_EQ(root_path(), root_.path()) << "a root that is named goes first";
    unsetenv("ZOLT_ROOT");
    unsetenv("XDG_CONFIG_HOME");
}

TEST_F(ConfigTest, ScratchFoldersOfDeadProcessesGoThoseOfLiveOnesStay) {
    const std::string mine = scratch_folder();
    ASSERT_TRUE(file_facts(mine).folder);
    EXPECT_EQ(folder_of(mine), root_.path());
    const std::string dead = folder_of(root_.write("zolt-scratch-999999-abcdef/CDFF1.TMP", "left over"));
    const std::string with_snapshot = folder_of(root_.write("zolt-scratch-999998-abcdef/Undo3.tmp", "a data set"));
    remove_leftovers_of_dead_processes(Snapshots::keep_recent);
    EXPECT_FALSE(file_facts(dead).exists);
    EXPECT_EQ(scratch_folders_of_dead_processes(), std::vector<std::string>{with_snapshot}) << "it may be recovered";
    remove_leftovers_of_dead_processes(Snapshots::remove);
    EXPECT_FALSE(file_facts(with_snapshot).exists);
    EXPECT_TRUE(file_facts(mine).folder) << "a living process's folder may not be taken";
    remove_scratch_folder();
    EXPECT_FALSE(file_facts(mine).exists);
}

}  // namespace
}  // namespace zolt
