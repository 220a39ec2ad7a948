// Macros from files through the real main loop: statements, the line that comes next, and how macros end.
#include <filesystem>

#include "app/main_loop.h"
#include "common/text.h"
#include "macro/command_log.h"
#include "macro/file_pattern.h"
#include "macro/registers.h"
#include "macro/script.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::sample_points;

constexpr const char* completed = "0 Macro Completed Successfully";

class MacroTest : public CommandTest {
protected:
    /// Runs a macro of these lines; all that it typed or issued, one a line.
    std::string played(const std::string& body, const std::string& name = "m.mac") {
        root_.write(name, "ZOLTMACRO\r\n" + body);
        platform_.lines.clear();
        platform_.forget();
        run("RU " + name);
        EXPECT_FALSE(session.macro_running || session.link_running) << body;
        std::string lines;
        for (size_t i = 1; i < platform_.lines.size(); ++i) lines += platform_.lines[i] + "\n";
        return lines;
    }
    std::string last_status() const { return platform_.statuses.empty() ? "" : platform_.statuses.back(); }
};

TEST_F(MacroTest, LinesThatAreTyped) {
    const std::string piece(128, 'q');
    const struct {
        std::string body, lines;
    } table[] = {
        {"; a comment\n SF 1\n\n\t\nSF 2\n;", "SF 2\n"},
        {"SF 1;SF 2\nSF 3;\nSF {{4", "SF 1\nSF 2\nSF 3\nSF {4\n"},
        {"LOOP 2 R1\nLOOP 2 7\nNU {R1}{R7}\nEND_LOOP\nEND_LOOP", "NU 11\nNU 12\nNU 21\nNU 22\n"},
        {"LOOP 0\nLOOP 3\nSF 1\nEND_LOOP\nQUESTION\nEND_LOOP\nEND_QUESTION\nEND_LOOP\nSF 2", "SF 2\n"},
        {"IF (a,a)\nSF 1\nIF (a,A)\nSF 2\nIF ( b c , b c )\nSF 3", "SF 1\nSF 3\n"},
        {"IF (2 <= 10)\nSF 1\nIF (2 > 10)\nSF 2\nIF ({M1}!=R50)\nSF 3\nIF (1e1 == 10)\nSF 4", "SF 1\nSF 4\n"},
        {"IF (a,b)\n; skipped as it is\nSF 1\nIF (a,b)\nLOOP 2\nSF 2\nEND_LOOP\nIF (a,b)\nQUESTION\nSF 3\nEND_QUESTION\nSF 4",
         "SF 4\n"},
        {"SET REGISTER 1 2\n:Again\nSF {R1}\nDO MATH R1 - 1 R1\nIF (R1 > 0)\nGOTO (AGAIN)\nSF 9", "SF 2\nSF 1\nSF 9\n"},
        {"LOOP 5\nSF 1\nGOTO out\nEND_LOOP\n:out\nLOOP 2\nSF 2\nEND_LOOP", "SF 1\nSF 2\nSF 2\n"},
        {"SF 1\nend of it\nSF 2", "SF 1\n"},
        {piece + "NU\nSF {LINE}", piece + "\nNU\nSF 4\n"},
        {"SF {NOPE} {R100} {INT 1} {\nSF {level}{slice}", "SF {NOPE} {R100} {INT 1} {\nSF 01\n"},
        {"SET DECPLACES 2\nSET REGISTER 0 1.005e3\nSET MEMORY 99=-0.001\nSF {R0} {M99}", "SF 1005 0\n"},
    };
    for (const auto& row : table) {
        EXPECT_EQ(played(row.body), row.lines) << row.body;
        EXPECT_EQ(last_status(), completed) << row.body;
    }
}

TEST_F(MacroTest, ErrorsNameTheirLineAndEndEverything) {
    const std::string binary("SF 1\n\0\x01\n", 8);
    const struct {
        std::string body;
        int line;
    } table[] = {{"IF", 2},
                 {"\n\nIF (a)\n", 4},
                 {"IF (1 < x)", 2},
                 {"GOTO nowhere", 2},
                 {"LOOP 3\nSF 1", 2},
                 {"LOOP -1\nEND_LOOP", 2},
                 {"LOOP 1.5\nEND_LOOP", 2},
                 {"LOOP 2 R100\nEND_LOOP", 2},
                 {"SF 1\nEND_LOOP", 3},
                 {"CALL nowhere", 2},
                 {"CALL m", 2},
                 {"DO", 2},
                 {"DO NOSUCH", 2},
                 {"DO MATH 1 / 0 R1", 2},
                 {"DO MATH 1 + R2 R100", 2},
                 {"DO GET_INT 1 R1", 2},
                 {"DO INCREMENT_EXPORT_FILENAME", 2},
                 {"DO ZZWAIT", 2},
                 {"SET NOSUCH 1", 2},
                 {"SET REGISTER 100 1", 2},
                 {"SET LinkLimit many", 2},
                 {"SET RDdirection Up", 2},
                 {"SET Integral 1 2", 2},
                 {"ASK REGISTER 100", 2},
                 {binary, 3}};
    for (const auto& row : table) {
        const int failed = session.failed_macros;
        played(row.body + "\nSF 77");
        EXPECT_EQ(platform_.messages.empty() ? "" : platform_.messages.back(), format_text("Macro error on line # %d", row.line))
            << row.body;
        EXPECT_EQ(session.failed_macros, failed + 1) << row.body;
        EXPECT_NE(show.dims[0].sf, 77) << row.body;
    }
    root_.write("no.mac", "ZOLTMACROS\nSF 77");
    refused("RU no", "Macro error on line # 1");
    refused("RU nowhere", "Could not open macro:\nnowhere");
    refused("RU /dev/null", "Could not run macro:\n/dev/null");
}

TEST_F(MacroTest, Arithmetic) {
    const struct {
        const char* statement;
        double value;
    } table[] = {{"R3 + 2.5 R4", 4.5},     {"R3 - M1 into R4", -1},   {"(R3)*(-3) R4", -6},  {"R3 / 8 R4", 0.25},
                 {"R3 POWER 10 R4", 1024}, {"R3 RECIPROCAL R4", 0.5}, {"SQRT 16 R4", 4},     {"EXP 0 into R4", 1},
                 {"-2.5 ABS R4", 2.5},     {"LOG 1 R4", 0},           {"1e400 + 1 R4", -99}, {"LOG 0 R4", -99},
                 {"SQRT -1 R4", -99},      {"R3 + 2.5 R4 R5", -99},   {"2 ** 3 R4", -99}};
    for (const auto& row : table) {
        played(std::string("SET REGISTER 3 2\nSET MEMORY 1 3\nSET REGISTER 4 -99\nDO MATH ") + row.statement);
        EXPECT_DOUBLE_EQ(registers.registers[4], row.value) << row.statement;
    }
    played("SET MATH 5\nDO MATH + 2\nDO MATH MATH * 2 R5\nDO REGISTER 5\nDO MATH clear\nDO REGISTER 5");
    EXPECT_EQ(platform_.replies, (std::vector<std::string>{"Register 5 = 14", "Register 5 = 0"}));
    EXPECT_EQ(registers.memories[1], 3) << "clear leaves the memories";
}

TEST_F(MacroTest, QuestionsTakeNineteenLinesAndTheirButtonsLead) {
    std::string text;
    for (int i = 1; i <= 17; ++i) text += format_text("text %d\n", i);
    platform_.answers = {"yes"};
    EXPECT_EQ(played("QUESTION\n" + text + "Yes_Button CONTINUE\nEND_QUESTION\nSF 1"), "SF 1\n");
    EXPECT_EQ(platform_.questions.back() + "\n", text);
    EXPECT_EQ(platform_.captions.back(), "Macro Question");
    platform_.answers = {"yes"};
    EXPECT_EQ(played("QUESTION\n" + text + "18\n19\nYES_BUTTON CONTINUE\nEND_QUESTION"), "");
    EXPECT_EQ(last_status(), "0 Aborted Macro on line # 21");
    EXPECT_EQ(played("QUESTION\nwell\nNO_BUTTON \nSF 1\nSF 2"), "SF 1\nSF 2\n") << "a button without a word: no question";
    EXPECT_TRUE(platform_.questions.empty());
    root_.write("other.mac", "ZOLTMACRO\nSF 5\nIF");
    platform_.answers = {"cancel"};
    EXPECT_EQ(played("QUESTION\nR1 is {R1}\nCANCEL_BUTTON other\nEND_QUESTION\nSF 1"), "SF 5\n");
    EXPECT_EQ(platform_.questions.back(), "R1 is 0");
    EXPECT_EQ(platform_.messages.back(), "Macro error on line # 3");
}

TEST_F(MacroTest, CalledMacrosReturn) {
    root_.write("sub/inner.mac", "ZOLTMACRO\nCALL deepest\nSF {R1}2\nEND\nSF 99");
    root_.write("sub/deepest.mac", "ZOLTMACRO\nSF {R1}1");
    root_.write("MAC/deepest.mac", "ZOLTMACRO\nSF 98");
    EXPECT_EQ(played("LOOP 2 R1\nCALL sub/inner\nEND_LOOP\nSF 3"), "SF 11\nSF 12\nSF 21\nSF 22\nSF 3\n")
        << "the neighbour goes first";
    EXPECT_EQ(last_status(), completed);
    EXPECT_EQ(played("CALL deepest.mac\nRU sub/deepest.mac\nSF 99"), "SF 98\nRU sub/deepest.mac\nSF 21\n") << "RU takes its place";
    root_.write("deep.mac", "ZOLTMACRO\nDO MATH R9 + 1 R9\nIF (R9 < 20)\nCALL deep");
    played("SET REGISTER 9 0\nCALL deep");
    EXPECT_EQ(last_status(), completed) << "twenty calls nest";
    EXPECT_EQ(registers.registers[9], 20);
    played("DO MATH R9 + 1 R9\nCALL m");
    EXPECT_EQ(registers.registers[9], 41) << "the macro itself and twenty calls of it";
}

TEST_F(MacroTest, LoopsOverFilesInTheOrderOfTheirNumbers) {
    for (const char* name : {"d/s10.fid", "d/s9.fid", "d/S2.fid", "d/x.txt", "d/s3.fid/fid"}) root_.write(name, "");
    EXPECT_EQ(played("LOOP FILES d/*.fid\nNU {FILE} {NAME}\nEND_LOOP\nLOOP FILES none/*\nSF 1\nEND_LOOP"),
              "NU d/S2.fid S2\nNU d/s9.fid s9\nNU d/s10.fid s10\n");
    EXPECT_EQ(played("LOOP FILES\nEND_LOOP"), "");
    EXPECT_EQ(platform_.messages.back(), "Macro error on line # 2");
    const std::string_view order[] = {
        "a", "a1", "a02", "a2", "a2b", "A10", "b", "b99999999999999999999998", "b99999999999999999999999"};
    for (size_t i = 1; i < std::size(order); ++i) {
        EXPECT_TRUE(numbers_in_order(order[i - 1], order[i])) << order[i];
        EXPECT_FALSE(numbers_in_order(order[i], order[i - 1])) << order[i];
    }
}

TEST_F(MacroTest, FilesOfMacrosAreWrittenCountedAndDeletedInTheirFoldersOnly) {
    const std::string data = root_.path("DATA/");
    played("SET EXPORTFILE=t.099\nDO WRITE one {SF}\nDO WRITE two\nDO INCREMENT_EXPORT_FILENAME\nDO NOTE {EXPORT}");
    EXPECT_EQ(test::read_file(data + "t.099"), "one 0\r\ntwo\r\n");
    EXPECT_EQ(session.macro_values["NOTE"], data + "t.100");
    played("SET EXPORTFILE run9.txt\nDO INCREMENT_EXPORT_FILENAME\nDO NOTE {EXPORT}");
    EXPECT_EQ(session.macro_values["NOTE"], data + "run10.txt");
    played("SET EXPORTFILE /run.txt\nDO INCREMENT_EXPORT_FILENAME\nDO NOTE {EXPORT}");
    EXPECT_EQ(session.macro_values["NOTE"], "/run1.txt");
    settings.no_file_overwrite = true;
    const std::string foreign = root_.write("DATA/foreign.txt", "keep");
    played("SET EXPORTFILE foreign.txt\nDO WRITE more");
    EXPECT_TRUE(said("System configured to prevent Overwriting of existing files."));
    const std::string outside = root_.write("outside.txt", "keep");
    std::error_code error;
    std::filesystem::create_symlink(outside, data + "link.txt", error);
    for (const std::string& name : {outside, std::string("../outside.txt"), std::string("link.txt"), data, std::string()}) {
        played("DO DELETEFILE " + name);
        EXPECT_TRUE(said("Macro error on line # 2")) << name;
    }
    EXPECT_EQ(test::read_file(outside) + test::read_file(foreign), "keepkeep");
    played("DO DELETEFILE t.099\nDO DELETEFILE was_never_there");
    EXPECT_EQ(last_status(), completed);
    EXPECT_FALSE(std::filesystem::exists(data + "t.099"));
}

TEST_F(MacroTest, SetAndAskActOnTheDataSet) {
    load({{1, 0}, {2, 9}, {4, 9}, {8, 0}, {16, 0}}, domain_complex, true);
    show.dims[0].axis_unit = unit_hz;
    show.rel_value = 2;
    played(
        "SET Integral 1250 -1250\nSET AXISPT\nSET Integral 0 1\nDO GET_INT 2 R1\nDO INTEGRAL 1\nSET COMMENT = a b (c)\nNU 1 {INT "
        "2}");
    ASSERT_EQ(show.integrals.size(), 2u);
    EXPECT_EQ(show.integrals[1], (Integral{1, 3, 14 * 3.125F, 0})) << "ordered by position, both ends belong to it";
    EXPECT_EQ(registers.registers[1], 87.5) << "times REL_VALUE";
    EXPECT_EQ(platform_.replies.front(), "Integral 1 = 18.75");
    EXPECT_EQ(show.dims[0].nucleus, "87.5");
    EXPECT_EQ(show.comment, "a b (c)");
    played("SET Integral 3 5");
    EXPECT_TRUE(said("Attempted to set integral range outside of spectrum\nStart =     3.000\nEnd   =     5.000\n"));
    platform_.answers = {"2.5", "7", root_.path("f.zolt"), "-1e2"};
    EXPECT_EQ(played("SET integral(CLEAR)\nASK LB\nASK MEMORY 7\nASK FILEA\nASK SHIFT\nNU 1 {LB} {M7}\nNU 2 {FILEA}"),
              "LB 2.5\nNU 1 2.5 7\nNU 2 " + root_.path("f.zolt") + "\n");
    EXPECT_TRUE(show.integrals.empty());
    EXPECT_EQ(session.macro_values["SHIFT"], "-100");
    EXPECT_EQ(platform_.dialogs.back(), "Input_Box");
    for (const char* body : {"ASK FILEB", "ASK LB"}) {
        played(body);
        EXPECT_EQ(last_status(), "0 Aborted Macro on line # 2") << "a cancelled dialog";
    }
    played("SET TWO_LETTERED_COMMANDS on\nSET ZOF1PPM=R0\nSET LNdirection backward\nSET FILEIMPORT x y\nSET FULLFILEB ./b");
    EXPECT_EQ(session.macro_values["TWO_LETTERED_COMMANDS"] + session.macro_values["ZOF1PPM"] + session.macro_values["LNDIRECTION"],
              "TRUE0BACKWARD");
    EXPECT_EQ(session.macro_values["FILEB"], root_.path("b"));
}

TEST_F(MacroTest, TheLogHoldsLinesOfMacrosAndGoesIntoDataFiles) {
    EXPECT_EQ(show.command_log.text, "");
    run("cmdlog on");
    played("SF 300\nNOSUCH\n; comment\nSET MATH 1");
    const std::string got = test::read_file(root_.path("DATA/ZOLT.LOG"));
    // RU itself is done, and logged, before the first step.
    EXPECT_EQ(got, root_.path("m.mac") + "\r\nRU m.mac\r\n> SF 300\r\nSF 300\r\n> NOSUCH\r\n> SET MATH 1\r\n");
    EXPECT_EQ(show.command_log.text, got);
    EXPECT_EQ(run("cmdlog show"), 2);
    EXPECT_NE(platform_.replies.back().find("> SET MATH 1"), std::string::npos);
    run("cmdlog clear");
    EXPECT_EQ(test::read_file(root_.path("DATA/ZOLT.LOG")) + show.command_log.text, "");
    run("cmdlog file other.log");
    run("SF 301");
    run("cmdlog off");
    run("SF 302");
    EXPECT_EQ(test::read_file(root_.path("DATA/other.log")), "SF 301\r\n");
    refused("cmdlog file /dev/null", "The command log cannot be written to\n/dev/null");
    refused("cmdlog file nowhere/x", "The command log cannot be written to");
}

TEST_F(MacroTest, TheExamplesRunOnTheExampleData) {
    const std::string macros = test::examples() + "/macros/";
    std::error_code error;
    std::filesystem::create_symlink(test::examples() + "/strychnine_1h/10", root_.path("10"), error);
    root_.write("9/fid", "short");
    EXPECT_EQ(run("RU \"" + macros + "batch_convert\""), 1);
    EXPECT_EQ(last_status(), completed);
    EXPECT_TRUE(std::filesystem::exists(root_.path("spectrum_1.svg")));
    EXPECT_FALSE(std::filesystem::exists(root_.path("spectrum_2.svg"))) << "9/fid cannot be imported";
    EXPECT_EQ(run("RU \"" + macros + "integrals_table\""), 1);
    EXPECT_EQ(last_status(), completed);
    const std::string table = test::read_file(root_.path("DATA/integrals.csv"));
    EXPECT_TRUE(table.starts_with("file,aromatic,aliphatic,ratio\r\n")) << table;
    EXPECT_TRUE(table.ends_with(",0.2277\r\n")) << table;
    platform_.answers = {test::examples() + "/caryophyllene_oxide/13/ser"};
    EXPECT_EQ(run("RU \"" + macros + "process_2d\""), 1);
    EXPECT_EQ(last_status(), completed) << platform_.said();
    EXPECT_EQ(show.dims[1].points, 1024);
    EXPECT_TRUE(show.dims[1].frequency);
    EXPECT_EQ(show.file_a, root_.path("spectrum_2d.zolt"));
}

}  // namespace
}  // namespace zolt
