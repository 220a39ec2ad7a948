// ASCII text: what the exports write, and tables as people have them.
#include <cmath>

#include "common/text.h"
#include "support.h"

namespace zolt {
namespace {

using Points = std::vector<Complex>;

class AsciiFiles : public test::CommandTest {
protected:
    int import(const std::string& text) {
        platform_.default_answer = Answer::yes;
        const int result = run("IM " + root_.write("in/s.txt", text) + " -ASC");
        platform_.default_answer = Answer::no;
        return result;
    }
};

TEST_F(AsciiFiles, ExportsLineByLine) {
    load({{1.5F, -2}, {-0.25F, 1e-7F}, {1e6F, 3}}, domain_complex, true);
    show.comment = "two\nlines";
    show.date = "3 Mar 2003";
    show.user = "Jane";
    show.scans = 16;
    show.dims[0].offset = 800;
    const std::string header =
        "COMMENT: two lines\r\nDATE: 3 Mar 2003\r\nUSER: Jane\r\n\r\nComplex_Points = 3 \r\n"
        "Spectrometer_Frequency = 400.000000 MHz\r\nSweep_Width = 5000.00    Hz \r\nOffset = 800.00     Hz \r\n"
        "Domain = Frequency\r\nScans = 16\r\n";
    const std::string reals = "DATA  Reals Only\r\n1.500000\r\n-0.250000\r\n1000000.000000\r\n";
    const std::string both = "DATA  Reals,Imaginaries\r\n1.500000,-2.000000\r\n-0.250000,0.000000\r\n1000000.000000,3.000000\r\n";
    const std::string pairs = "8.250017,1.500000\r\n2.000004,-0.250000\r\n-4.250009,1000000.000000\r\n";
    const std::pair<const char*, std::string> cases[] = {
        {"E1", header + both}, {"E2", header}, {"E3", reals}, {"E4", both}, {"E5", pairs}};
    for (const auto& [command, want] : cases) {
        ASSERT_EQ(run(std::string(command) + " " + command + ".txt"), 1) << platform_.said();
        EXPECT_EQ(test::read_file(std::string(command) + ".txt"), want) << command;
    }
    show.dims[0].sf = 0;
    refused("E5 new.txt", "No Spectrometer Frequency Entered\nCorrect and try again.");
}

TEST_F(AsciiFiles, ReadsTablesInEveryUsualWriting) {
    const Points spectrum = {{1.5F, 0}, {-20, 0}, {3, 0}, {4, 0}}, turned = {{4, 0}, {3, 0}, {-20, 0}, {1.5F, 0}};
    const Points fid = {{1.5F, 2}, {-20, 0.25F}, {3, 4}, {4, 5}};
    const struct {
        const char* what;
        const char* text;
        const Points& want;
        bool frequency;
        double sw, offset;
    } cases[] = {
        {"one column", "1.5\n-20\n3\n4\n", spectrum, true, 0, 0},
        {"decimal comma alone", "1,50\n-20,00\n3,00\n4,00", spectrum, true, 0, 0},
        {"two columns by commas", "1.5,2\n-20,0.25\r\n3,4\n4,5\n", fid, false, 0, 0},
        {"decimal commas by semicolons", "1,5;2\n-20;0,25\n3;4\n\n4;5\n", fid, false, 0, 0},
        {"decimal commas by tabs, title and comment", "# x\nreal\timaginary\n1,5\t2e0\n-2,0E+01\t0,25\n3\t4\n4\t5\n", fid, false, 0,
         0},
        {"whole numbers by comma and blank", "10, 1.5\n9, -20\n8, 3\n7, 4\n", spectrum, true, 3, 8.5},
        {"Hz, rising", "-100 1.5\n300 -20\n700 3\n1100 4\n", turned, true, 1200, 500},
        {"seconds", "0 1.5 2\n0.001 -20 0.25\n0.002 3 4\n0.003 4 5\n", fid, false, 1000, 0},
        {"numbered points", "1 1.5\n2 -20\n3 3\n4 4\n", spectrum, true, 0, 0},
        {"labels, some of them", "sweep: 2000\nSF=250.5 MHz\nDATA\n1.5,2\n-20,0.25\n3,4\n4,5\n", fid, false, 2000, 0},
        {"labels and domain", "Domain = Frequency\nPOINTS= 4\nOffset = 7 Hz\nDATA  Reals Only\n1.5\n-20\n3\n4\n", spectrum, true, 0,
         7},
    };
    for (const auto& c : cases) {
        ASSERT_EQ(import(c.text), 1) << c.what << platform_.said();
        EXPECT_EQ(data(), c.want) << c.what;
        EXPECT_EQ(show.dims[0].frequency, c.frequency) << c.what;
        EXPECT_NEAR(show.dims[0].sw, c.sw, 1e-3) << c.what;
        EXPECT_NEAR(show.dims[0].offset, c.offset, 1e-6) << c.what;
    }
    ASSERT_EQ(import("DATA  Imaginaries Only\n1\n2\n"), 1);
    EXPECT_EQ(data(), (Points{{0, 1}, {0, 2}}));
}

TEST_F(AsciiFiles, RefusesWhatIsNoTable) {
    load({{1, 2}, {3, 4}});
    const std::pair<std::string, const char*> cases[] = {
        {"COMMENT: x\nScans = 4\n", "End of file found before keyword DATA."},
        {"some\nwords of\ntext\n1 2\n", "End of file found before keyword DATA."},
        {"DATA", "its table is empty"},
        {"Complex_Points = 3\nDATA\n1\n2\n", "it holds 2 of the 3 points"},
        {"1 2\n3\n", "line 2 of its table does not hold 2 numbers as the first does"},
        {"1 2 3 4\n", "End of file found before keyword DATA."},
        {"1 2 3\n7 8 9\n3 3 3\n4 4 4\n", "does not run in equal steps"},
        {"DATA\n1\n1e999\n", "line 2 of its table"},
        {"1\n2\nnan\n", "line 3 of its table"},
        {std::string(1 << 20, '1'), "End of file found before keyword DATA."},
        {std::string("\0\1\2\3 binary \xFF", 13), "End of file found before keyword DATA."},
    };
    for (const auto& [text, why] : cases) refused("IM " + root_.write("in/s.txt", text) + " -ASC", why);
}

}  // namespace
}  // namespace zolt
