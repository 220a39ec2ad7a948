// Keystrokes, the command line, the dispatcher's rules, links and the log.
#include "app/command_line.h"
#include "app/main_loop.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::sample_points;

class DispatcherTest : public CommandTest {
protected:
    void keys(std::string_view text) {
        for (const char c : text) post_character(static_cast<unsigned char>(c), LineSource::user);
        run_main_loop();
    }
};

TEST_F(DispatcherTest, UnknownAndEmptyLinesBeepAndSayNotAValidCommand) {
    for (const char* line : {"NOSUCHWORD", "", "   ", "=", " = ", "FTX", "X", "z", "^", "S F1 300"}) {
        const int beeps = platform_.beeps;
        EXPECT_EQ(run(line), 0) << line;
        EXPECT_EQ(platform_.beeps, beeps + 1) << line;
        EXPECT_EQ(platform_.statuses.back(), "0 Not a Valid Command") << line;
        EXPECT_EQ(platform_.lines.back(), line);
        EXPECT_STREQ(GetCommandText(), ">") << "the line is reset after every command";
    }
}

TEST_F(DispatcherTest, WordsInAnyCaseWholeWordsOnlyEqualsIsABlank) {
    for (const char* line : {"SF1 300.5", "sf1=300.5", "Sf = 300.5", "sF==300.5"}) {
        show.dims[0].sf = 0;
        EXPECT_EQ(run(line), 1) << line;
        EXPECT_EQ(show.dims[0].sf, 300.5F) << line;
    }
    show.dims[0].sf = 101;
    EXPECT_EQ(run("F1 300"), 0) << "F1 belongs to the acquisition entries";
    EXPECT_EQ(show.dims[0].sf, 101);
    EXPECT_EQ(run("F4 25"), 1);
    EXPECT_EQ(show.dims[3].sf, 25);
}

TEST_F(DispatcherTest, FallbackCommandsGoByTheFirstTwoCharacters) {
    const auto points = sample_points(24);
    for (const char* line : {"ZR", "zr", "zR", "ZRxyz", "zr anything"}) {
        load(points);
        platform_.answers = {"yes"};
        EXPECT_EQ(run(line), 1) << line;
        EXPECT_EQ(data()[3], Complex(0, points[3].imag())) << line;
    }
    EXPECT_EQ(run("ZQ"), 0);
    EXPECT_EQ(run("Z"), 0);
}

TEST_F(DispatcherTest, CommandsThatNeedDataSayHowToGetSome) {
    EXPECT_EQ(run("FT"), 0);
    EXPECT_EQ(platform_.messages.back(), "FT needs a data set.\nOpen one with GA or import one with IM.");
    EXPECT_EQ(run("FT ?"), 2) << "the usage is given all the same";
    EXPECT_EQ(run("Four"), 0);
    EXPECT_EQ(platform_.replies.back(), "  - There is no command Four. Beginning so: FourierTransform");
}

TEST_F(DispatcherTest, ControlKeyPrefixPostsTheKey) {
    EXPECT_EQ(run("^c"), 1);
    EXPECT_EQ(run("^C"), 1);
    EXPECT_EQ(platform_.posted, (std::vector<int>{3, 3}));
}

TEST_F(DispatcherTest, EditingKeysBuildTheLine) {
    keys("SF1 30\b12.5");
    EXPECT_EQ(typed_text(), "SF1 312.5");
    EXPECT_EQ(show.dims[0].sf, 0);
    keys("\n");
    EXPECT_EQ(show.dims[0].sf, 312.5F) << "line feed is Enter, too";
    keys("NU 1 \xc3\xbc\b");
    EXPECT_EQ(typed_text(), "NU 1 ") << "backspace takes a whole character";
    keys("\x1b");
    EXPECT_EQ(typed_text(), "");
    const int beeps = platform_.beeps;
    keys("\b");
    keys("<");
    keys("\x02");
    EXPECT_EQ(platform_.beeps, beeps + 3);
    keys("a<b>c");
    EXPECT_EQ(typed_text(), "a<b>c") << "within a line they are characters";
}

TEST_F(DispatcherTest, ALineThatDoesNotFitIsNotCarriedOutInPart) {
    EXPECT_EQ(run("SF1 300" + std::string(247, ' ')), 1);
    EXPECT_EQ(run("SF1 400" + std::string(249, ' ')), 0);
    EXPECT_EQ(show.dims[0].sf, 300);
    EXPECT_EQ(run("SF1 500"), 1);
}

TEST_F(DispatcherTest, LinksPlayTheirTextAsKeystrokesAndDoNotAsk) {
    settings.links[3] = "SF1 100.5;ZR;NOSUCH;";
    const auto points = sample_points(8);
    load(points);
    EXPECT_EQ(run("a3"), 1);
    EXPECT_EQ(show.dims[0].sf, 100.5F);
    EXPECT_TRUE(platform_.questions.empty());
    EXPECT_EQ(data()[1], Complex(0, points[1].imag()));
    EXPECT_EQ(platform_.lines, (std::vector<std::string>{"a3", "SF1 100.5", "ZR", "NOSUCH"}));
    EXPECT_EQ(platform_.statuses.back(), "0 Link Finished");
    EXPECT_FALSE(session.link_running);
    EXPECT_EQ(run("A4"), 0) << "a link without a text";
}

TEST_F(DispatcherTest, TheLogHoldsLinesThatWorkedWithTheirValues) {
    session.log_on = true;
    load(sample_points(64));
    for (const char* line : {"LB 2.5", "EM", "EM 1", "NOSUCH", "FT ?", "PC", "NU"}) run(line);
    EXPECT_EQ(test::read_file(root_.path("DATA/ZOLT.LOG")), "LB 2.5\r\nEM 2.500000\r\nEM 1\r\nPC 0.000000 0.000000 0.000000\r\n");
}

TEST_F(DispatcherTest, AnAnswerThatASubRoutineWaitsForIsNoCommand) {
    session.request_pending = true;
    EXPECT_EQ(run("SF1 300"), 0);
    EXPECT_EQ(show.dims[0].sf, 0) << "nothing is dispatched";
    EXPECT_STREQ(GetCommandText(), ">");
    EXPECT_EQ(run("SF1 300"), 1);
    EXPECT_EQ(run("AR ?"), 2);
    EXPECT_EQ(platform_.replies.back(), "Usage: ar < off / on /  complex /  pairwise / tppi2pairwise / 3D >");
}

TEST_F(DispatcherTest, CloseEndsTheLoop) {
    EXPECT_EQ(run("XX"), 1);
    EXPECT_EQ(platform_.closes, 1);
    EXPECT_FALSE(run_main_loop());
    EXPECT_EQ(run("SF1 300"), -1) << "nothing is carried out any more";
}

TEST_F(DispatcherTest, ClosingAsksAboutUnsavedChanges) {
    load(sample_points(8));
    show.changed = true;
    platform_.answers = {"cancel"};
    run("EX");
    EXPECT_EQ(platform_.questions.back(), "Save current changes in " + show.file_a + "?");
    EXPECT_EQ(platform_.closes, 0);
    platform_.answers = {"yes"};
    run("EX");
    EXPECT_EQ(platform_.closes, 1);
    EXPECT_FALSE(test::read_file(show.file_a).empty());
}

TEST_F(DispatcherTest, ClosingAsksAboutUnsavedAnnotations) {
    load(sample_points(64), domain_complex, true);
    show.dims[0].sw = 1000;
    platform_.default_answer = Answer::yes;
    ASSERT_EQ(run("SA a.nat"), 1);
    ASSERT_EQ(run("GA a.nat"), 1);
    platform_.questions.clear();
    for (const char* line : {"ID 0.1 -0.1", "NO a note"}) {
        ASSERT_NE(run(line), 0) << platform_.said();
        EXPECT_FALSE(show.changed);
        platform_.answers = {"cancel"};
        run("EX");
        ASSERT_EQ(platform_.questions, (std::vector<std::string>{"Save current changes in " + show.file_a + "?"})) << line;
        ASSERT_EQ(run("SA a.nat"), 1);
        platform_.questions.clear();
    }
    // A file that was File B when it was saved, too.
    for (const char* line : {"GB a.nat", "NO another note", "EXC", "SB a.nat", "EXC"})
        ASSERT_NE(run(line), 0) << line << ": " << platform_.said();
    platform_.questions.clear();
    run("EX");
    EXPECT_TRUE(platform_.questions.empty());
    EXPECT_EQ(platform_.closes, 1);
}

TEST_F(DispatcherTest, Help) {
    EXPECT_EQ(run("Help lb"), 2);
    EXPECT_EQ(platform_.replies.back(), "  - LB or LineBroadening [Hz]: sets the line broadening that EM and GM use");
    EXPECT_EQ(run("Help"), 2);
    EXPECT_NE(platform_.replies.back().find("IM or Import"), std::string::npos);
    EXPECT_EQ(run("Help LP"), 2);
    EXPECT_NE(platform_.replies.back().find("planned"), std::string::npos);
}

}  // namespace
}  // namespace zolt
