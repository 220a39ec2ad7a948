// Links on every slice, macros at keys and at the start, sent keys, and what ends a playback.
#include "app/keystrokes.h"
#include "app/link_player.h"
#include "app/main_loop.h"
#include "app/startup.h"
#include "config/settings.h"
#include "datafile/native_file.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::sample_points;

class LinkTest : public CommandTest {
protected:
    void keys(std::string_view text) {
        post_keys(text, LineSource::user);
        run_main_loop();
    }
    /// What was typed by links and macros, one a line.
    std::string played(const std::string& line) {
        platform_.lines.clear();
        run(line);
        std::string lines;
        for (size_t i = 1; i < platform_.lines.size(); ++i) lines += platform_.lines[i] + " ";
        return lines;
    }
    /// A 2D set of three slices as File A, the first one current.
    void open_slices() {
        load(sample_points(8));
        show.dims[1].points = 3;
        DataSet whole;
        static_cast<DataRecord&>(whole) = show;
        ASSERT_TRUE(whole.store.allocate(3, 8));
        const std::string path = root_.path("s.zolt");
        File file(path, "wb");
        NativeLayout layout;
        ASSERT_TRUE(write_native_file(file, whole, layout) && file.close());
        ASSERT_EQ(run("GA s.zolt"), 1);
        ASSERT_EQ(show.dims[1].points, 3);
    }
};

TEST_F(LinkTest, OnceForEachSliceFromTheCurrentOneOn) {
    settings.links[1] = "SF 1;";
    settings.links[2] = "SL +;";  // goes on by itself
    settings.links[3] = "SL 2;NOSUCH;SF 9;";
    EXPECT_EQ(run("L1"), 0) << "there are no slices";
    open_slices();
    EXPECT_EQ(played("L1"), "SF 1 SF 1 SF 1 ");
    EXPECT_EQ(show.slice, 2);
    EXPECT_EQ(played("L1"), "SF 1 ") << "the last slice is the current one";
    run("SL 2");
    EXPECT_EQ(played("L1"), "SF 1 SF 1 ");
    run("SL 1");
    EXPECT_EQ(played("L2"), "SL + SL + SL + ") << "the last one fails and is the end";
    run("SL 1");
    EXPECT_EQ(played("L3"), "SL 2 NOSUCH ") << "a failed step ends it at once";
    run("SL 1");
    session.macro_values["LINKLIMIT"] = "2";
    EXPECT_EQ(played("l1"), "SF 1 SF 1 ");
    EXPECT_EQ(platform_.statuses.back(), "0 Link Finished");
}

TEST_F(LinkTest, WhatIsTypedByTextsWithAndWithoutEnter) {
    settings.links[1] = "SF 1;SF 2";
    settings.links[2] = "SF 3;A2;";
    EXPECT_EQ(played("A1"), "SF 1 ");
    run("5");
    EXPECT_EQ(show.dims[0].sf, 25) << "SF 2 was typed, not entered";
    EXPECT_EQ(played("A2"), "SF 3 A2 ");
    EXPECT_EQ(platform_.results.back(), 0) << "a playback that runs is not restarted";
    root_.write("m.mac", "ZOLTMACRO\nA1\nDO ENTER\nSF 4");
    EXPECT_EQ(played("RU m"), "A1 SF 1 SF 2 SF 4 ") << "a macro waits for its link";
}

TEST_F(LinkTest, StopOnErrorEndsLinkAndMacroAtTheFirstFailedLine) {
    settings.links[1] = "NOSUCH;SF 1;";
    EXPECT_EQ(played("A1"), "NOSUCH SF 1 ");
    root_.write("goes_on.mac", "ZOLTMACRO\nSET STOP_ON_ERROR FALSE\nSF 2;NOSUCH;SF 3\nSF 4");
    EXPECT_EQ(played("RU goes_on"), "SF 2 NOSUCH SF 3 SF 4 ");
    EXPECT_EQ(session.failed_macros, 0);
    root_.write("stops.mac", "ZOLTMACRO\nSET STOP_ON_ERROR TRUE\nSF 2;NOSUCH;SF 3\nSF 4");
    EXPECT_EQ(played("RU stops"), "SF 2 NOSUCH ");
    EXPECT_EQ(platform_.messages.back(), "Macro error on line # 3");
    EXPECT_EQ(played("A1"), "NOSUCH ");
    root_.write("in_statement.mac", "ZOLTMACRO\nSET STOP_ON_ERROR TRUE\nSET ARRAY_ON\nSF 4");
    EXPECT_EQ(played("RU in_statement"), "AR on ");
    EXPECT_EQ(platform_.messages.back(), "Macro error on line # 3");
    EXPECT_EQ(session.failed_macros, 2);
    EXPECT_EQ(played("RU goes_on"), "SF 2 NOSUCH SF 3 SF 4 ");
}

TEST_F(LinkTest, EscapeOfTheUserAbortsWhatPlays) {
    root_.write("m.mac", "ZOLTMACRO\n:a\nLOOP 1000000000\nSF 1\nEND_LOOP\nGOTO a");
    platform_.answers = {"yes"};
    keys("RU m.mac\\r\\e");
    EXPECT_EQ(platform_.questions.back(), "Abort macro?");
    EXPECT_EQ(platform_.statuses.back(), "0 Aborted Macro on line # 1");
    EXPECT_EQ(session.failed_macros, 1);
    root_.write("n.mac", "ZOLTMACRO\nSF 2");
    platform_.answers = {"no"};
    keys("RU n.mac\\r\\e");
    EXPECT_EQ(show.dims[0].sf, 2) << "it went on";
    settings.links[1] = "SF 3;";
    keys("A1\\r\\e");
    EXPECT_EQ(show.dims[0].sf, 2);
    keys("Sleep 1000s\\r\\e");
    EXPECT_FALSE(playback_held());
}

TEST_F(LinkTest, KeysRunTheirMacros) {
    root_.write("MAC/one.mac", "ZOLTMACRO\nSF 1");
    root_.write("twelve.mac", "ZOLTMACRO\nSENDKEY SF 12\\r\n");
    for (const char* line : {"ini set Macro_1 one", "ini set Macro_12 twelve.mac"}) run(line);
    keys("\\F1");
    EXPECT_EQ(show.dims[0].sf, 1);
    keys("\\F12");
    EXPECT_EQ(show.dims[0].sf, 12);
    keys("\\F13");
    EXPECT_EQ(platform_.lines.back(), "3SF 1") << "Ctrl+F1, and a 3 that comes before what the macro types";
    keys("\\F7");
    EXPECT_EQ(platform_.messages.back(), "No macro name in Control-F7 location");
    EXPECT_EQ(run("SENDKEY nu 1 \\\\^^x^H\\r"), 1);
    EXPECT_EQ(show.dims[0].nucleus, "\\^");
}

TEST_F(LinkTest, TheMacroOfTheStartAndALoneEnter) {
    root_.write("MAC/auto.mac", "ZOLTMACRO\nSF 41");
    root_.write("ZOLT.INI", "AutoExecMacro=auto\nCR_FOR_COMMANDS=TRUE\n");
    start_up(root_.path(), "");
    run_main_loop();
    EXPECT_EQ(show.dims[0].sf, 41);
    EXPECT_EQ(run("SF 42"), 1);
    show.dims[0].sf = 0;
    EXPECT_EQ(run(""), 1);
    EXPECT_EQ(show.dims[0].sf, 42);
    EXPECT_EQ(run(" "), 0) << "blanks are no command";
}

}  // namespace
}  // namespace zolt
