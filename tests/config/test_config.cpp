// ZOLT.INI, its table of keys, and the scratch folder of a process.
#include <filesystem>
#include <set>

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

TEST_F(ConfigTest, EveryKeyIsNamedOnceExplainedAndInTheFileWeShip) {
    std::set<std::string> names;
    const std::string shipped = test::read_file(ZOLT_INI);
    for (const SettingKey& key : setting_keys()) {
        EXPECT_TRUE(names.insert(upper(key.name)).second) << key.name << " stands twice";
        EXPECT_GT(std::string(key.help).size(), 10u) << key.name;
        EXPECT_NE(shipped.find("\n" + std::string(key.name) + "="), shipped.find("\n;" + std::string(key.name) + "=")) << key.name;
    }
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
