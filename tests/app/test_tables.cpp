// Laws that hold for every row of the command table.
#include <map>
#include <set>

#include "app/command_line.h"
#include "app/commands.h"
#include "common/text.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::sample_points;

class TableTest : public CommandTest {};

TEST_F(TableTest, NoWordTwiceButTheMarkedDoubles) {
    std::set<std::string> words, shadowed;
    for (const Command& command : command_table()) {
        const bool fresh = words.insert(upper(command.keyword)).second;
        EXPECT_EQ(fresh, !command.shadowed) << command.keyword;
        if (command.shadowed) shadowed.insert(command.keyword);
    }
    EXPECT_EQ(shadowed, (std::set<std::string>{"D1", "F1", "F2", "F3"}));
    EXPECT_STREQ(command_table().front().keyword, "1D");
    for (const char* word : {"brickwall", "/2", "expand", "*2", "JJH", "S#", "B+", "XYZ", "ZeroDiagonal"})
        EXPECT_NE(find_command(word), nullptr) << word;
    for (const Command& command : fallback_table())
        EXPECT_EQ(find_command(command.keyword), nullptr) << command.keyword << " is never reached";
}

TEST_F(TableTest, EveryRowHasUsageAndSummary) {
    for (const auto table : {command_table(), fallback_table()})
        for (const Command& command : table) {
            EXPECT_GT(std::string_view(command.usage).size(), 0u) << command.keyword;
            EXPECT_GT(std::string_view(command.summary).size(), 0u) << command.keyword;
        }
}

// Whatever is typed behind a command, the program goes on; with "no" to every question and cancel in every dialog.
TEST_F(TableTest, EveryHandlerSurvivesOddArguments) {
    const std::string arguments[] = {
        "", " ?", " " + std::string(240, 'x'), " -1e308", " nan", " 1e308 1e308 1e308", " \"", " 2D -1", " /dev/null"};
    for (const bool loaded : {false, true})
        for (const auto table : {command_table(), fallback_table()})
            for (const Command& command : table)
                for (const std::string& argument : arguments) {
                    if (command.handler == nullptr) continue;
                    show = DataSet();
                    session.log_on = false;
                    session.sub_routine = nullptr;  // ZO takes the keys
                    ResetCommandText();  // SENDKEY leaves what it has typed
                    if (loaded) load(sample_points(5));
                    if (std::string_view(command.summary) == "ends the program") continue;
                    const int result = run(command.keyword + argument);
                    EXPECT_TRUE(result >= 0 && result <= 2) << command.keyword << argument;
                }
}

}  // namespace
}  // namespace zolt
