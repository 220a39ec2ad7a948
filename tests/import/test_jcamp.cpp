// JCAMP-DX: every form of number, axes, pages and blocks, refusals, and what the exports write coming back.
#include <algorithm>
#include <cmath>
#include <filesystem>

#include "common/text.h"
#include "import/jcamp_asdf.h"
#include "import/tranauto.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using Values = std::vector<float>;
using Lines = std::vector<std::string>;

TEST(JcampTable, DecodesEveryFormOfNumber) {
    const struct {
        const char* what;
        const char* lines;
        Values want;
        bool squeezed = false;
    } cases[] = {
        {"AFFN", "10 1 -2 +3.5\n7 1.5E+2 -25e-1,.5;7\n", {1, -2, 3.5F, 150, -2.5F, 0.5F, 7}},
        {"AFFN, exponents without a sign", "1 2E1 3e2\n", {20, 300}},
        {"PAC", "-8+10571-15920+3974\r\n", {10571, -15920, 3974}},
        {"SQZ", "0.5@A2b03C.5\n", {0, 12, -203, 3.5F}},
        {"SQZ: E behind an abscissa is a digit", "0.0024F1e52E4\n0.0036E0A\n", {61, -552, 54, 50, 1}},
        {"nothing but an E, of a squeezed table", "1E5\n", {55}, true},
        {"DIF with checks, also as the last line", "4A0J2k1%\n0AJ0\n-1A1\n", {10, 22, 1, 1, 11}},
        {"no check behind a line that ends in SQZ", "2A0J2A\n0B\n", {10, 22, 1, 2}},
        {"DUP of a value and of a difference", "9@VB1TJ0T\n1D1s\n", {0, 0, 0, 0, 21, 21, 31, 41, 41, 41, 41, 41, 41, 41, 41, 41}},
        {"DUP of the check itself", "0A0J\n1A1Uj\n5A0\n", {10, 11, 11, 11, 10}},
        {"comments, blank lines, missing values", "0 1 ?  $$ 7 8\n\n$$ 9\n1 2\n", {1, 0, 2}},
        {"a page of zeros", "1093@%S023\n70@\n", Values(1024)},
    };
    for (const auto& c : cases) {
        Values got(c.want.size());
        const DecodedTable decoded = decode_table(c.lines, c.squeezed, 1, got);
        EXPECT_EQ(decoded.wrong, "") << c.what;
        EXPECT_EQ(decoded.count, c.want.size()) << c.what;
        EXPECT_EQ(got, c.want) << c.what;
    }
}

TEST(JcampTable, RefusesWhatIsNoTable) {
    const struct {
        const char* lines;
        const char* wrong;
    } cases[] = {{"4A0J2\n2A1J\n", "line 2 of its table does not begin with the last value before it"},
                 {"0J2\n", "begins with a difference"},
                 {"0T\n", "begins with a repetition"},
                 {"A1\n", "begins with no number"},
                 {"0A1T!2\n", "a character that belongs to no number"},
                 {"0 1 2 3 4 5 6 7 8 9\n", "goes on behind the last point"},
                 {"0@Z999999999\n", "goes on behind the last point"},
                 {"0@Z99999999999999999999999999999999999\n", "goes on behind the last point"},
                 {"0 1E+39\n", "too large"},
                 {"0 1E+999\n", "no readable number"},
                 {"0 -\n", "no readable number"}};
    for (const auto& c : cases) {
        Values values(8);
        EXPECT_NE(decode_table(c.lines, false, 1, values).wrong.find(c.wrong), std::string::npos) << c.lines;
    }
}

// A block of these lines, without their "##", around a table.
std::string block(const Lines& labels, const std::string& table = "3 1 2 4 3\n", const std::string& type = "NMR SPECTRUM") {
    std::string text = "##TITLE= sample $$ not this\n##JCAMP-DX= 5.0\n##DATA TYPE= " + type + "\n";
    for (const std::string& label : labels) text += "##" + label + "\n";
    if (!table.empty()) text += "##XYDATA= (X++(Y..Y))\n" + table;
    return text + "##END=\n";
}

// Two pages of a time-domain data set, the columns with factors of their own.
std::string fid(const Lines& labels, const std::string& imaginary = "0C@B\n") {
    Lines all = labels;
    for (const char* label :
         {"DATA CLASS= NTUPLES", ".OBSERVE FREQUENCY= 400.1", "NTUPLES= NMR FID", "SYMBOL= X, R, I", "VAR_DIM= 4, 4, 4",
          "VAR_FORM= AFFN, ASDF, ASDF", "UNITS= SECONDS, ARBITRARY UNITS, ARBITRARY UNITS", "FACTOR= 0.0002, 2, 10",
          "FIRST= 0, 0, 0", "LAST= 0.0006, 0, 0", "PAGE= N=1", "DATA TABLE= (X++(R..R)), XYDATA\n0A1J@\n3b", "PAGE= N=2"})
        all.emplace_back(label);
    all.push_back("DATA TABLE= (X++(I..I)), XYDATA\n" + imaginary + "3A\n##END NTUPLES= NMR FID");
    return block(all, "", "NMR FID");
}

class JcampFile : public test::CommandTest {
protected:
    int import(const std::string& text) {
        platform_.default_answer = Answer::yes;
        const int result = run("IM " + root_.write("in/s.dx", text) + " -JCAMP");
        platform_.default_answer = Answer::no;
        return result;
    }
    double shift(double point) const { return show.dims[0].axis().ppm(point); }
};

TEST_F(JcampFile, PutsTheAxisWhereTheLabelsSay) {
    const std::string sf = ".OBSERVE FREQUENCY= 400";
    const struct {
        const char* what;
        Lines labels;
        double first, last;
        bool turned = false;
    } cases[] = {
        {"Hz from 0 ppm on", {sf, "XUNITS= HZ", "FIRSTX= 4000", "LASTX= -400"}, 10, -1},
        {"rising", {sf, "XUNITS= HZ", "FIRSTX= -400", "LASTX= 4000"}, 10, -1, true},
        {"ppm", {sf, "XUNITS= PPM", "FIRSTX= 9.5", "LASTX= -0.5", ".SHIFT REFERENCE= INTERNAL, TMS, 1, 3"}, 9.5, -0.5},
        {"a step instead of the end", {sf, "XUNITS= ppm", "FIRSTX= 8", "DELTAX= -2", "NPOINTS= 4"}, 8, 2},
        {"a point at its shift", {sf, "XUNITS= HZ", "FIRSTX= 4000", "LASTX= 0", ".SHIFT REFERENCE= (INTERNAL, TMS, 4, 1)"}, 11, 1},
        {"the shift of the left end", {sf, "X-UNITS= HZ", "first_x= 4000", "LASTX= 0", "ORIGIN= Bruker", "$OFFSET= 12"}, 12, 2},
        {"no such label elsewhere", {sf, "XUNITS= HZ", "FIRSTX= 4000", "LASTX= 0", "$OFFSET= 12"}, 10, 0},
        {"no frequency: Hz", {"XUNITS= HZ", "FIRSTX= 4000", "LASTX= 0"}, 4000, 0},
    };
    for (const auto& c : cases) {
        ASSERT_EQ(import(block(c.labels)), 1) << c.what << platform_.said();
        EXPECT_NEAR(shift(0), c.first, 2e-4 + 1e-6 * c.first) << c.what;
        EXPECT_NEAR(shift(3), c.last, 2e-4) << c.what;
        EXPECT_EQ(show.cvNMRdata()[0].real(), c.turned ? 3 : 1) << c.what;
        EXPECT_TRUE(show.dims[0].frequency && show.title == "sample" && show.dims[0].sense == 1) << c.what;
    }
}

TEST_F(JcampFile, ReadsTheFidOfEachMakerInItsOwnSense) {
    const Lines filter = {"ORIGIN= UXNMR, Bruker Analytische Messtechnik",
                          "$SW_h= 5000",
                          "$SFO1= 400.1",
                          "$SF= 400.0985",
                          "$PHC0= 30",
                          "$PHC1= -7",
                          "$LB= 0.5",
                          "$DECIM= 24",
                          "$DSPFVS= 13",
                          "$DIGMOD= 1",
                          "$D= (0..2)\n0.5 1.5",
                          "$AQ_mod= 3"};
    ASSERT_EQ(import(fid(filter)), 1) << platform_.said();
    const std::vector<Complex> want = {{22, 30}, {24, 0}, {0, 20}, {-4, 10}};
    EXPECT_EQ(data(), want) << "each column with its own factor";
    const Dimension& d = show.dims[0];
    EXPECT_EQ((std::vector<double>{d.sw, d.offset, show.phase[0], show.phase[1], show.lb(), show.d1}),
              (std::vector<double>{5000, 1500, -30, 7, 0.5, 1.5}));
    EXPECT_NEAR(show.group_delay, 2.979166667, 1e-8);
    EXPECT_TRUE(d.sense == -1 && !d.frequency && d.domain_code == domain_complex);

    ASSERT_EQ(import(fid({"ORIGIN= JEOL", ".SHIFT REFERENCE= INTERNAL, , 2.5, 4.7"})), 1);
    EXPECT_TRUE(d.sense == 1 && show.group_delay == 0);
    EXPECT_NEAR(d.sw, 5000, 1e-3) << "1 over the step";
    EXPECT_NEAR(shift(1.5), 4.7, 1e-5);
}

TEST_F(JcampFile, PutsRowsInTheOrderOfTheSecondAxis) {
    const auto plane = [](const char* first, const char* second) {
        const std::string table = "\n##DATA TABLE= (F2++(Y..Y)), PROFILE\n";
        return block({"NTUPLES= nD NMR SPECTRUM", ".OBSERVE FREQUENCY= 100", "SYMBOL= F1, F2, Y", "VAR_DIM= 2, 3, 3",
                      ".NUCLEUS= 15N, 1H", "UNITS= PPM, PPM, ARBITRARY UNITS", "FIRST= 9, 8, 0", "LAST= 1, 2, 0",
                      "FACTOR= 1, 3, 0.5", "PAGE= F1=" + std::string(first) + table + "8 2 4 6",
                      "PAGE= F1=" + std::string(second) + table + "8 8 10 12", "END NTUPLES="},
                     "", "nD NMR SPECTRUM");
    };
    for (const bool rising : {false, true}) {
        ASSERT_EQ(import(rising ? plane("120", "140") : plane("140", "120")), 1) << platform_.said();
        EXPECT_EQ((std::vector{show.dims[0].points, show.dims[1].points}), (std::vector{3, 2}));
        EXPECT_EQ(show.cvNMRdata()[0].real(), rising ? 4 : 1) << "the row of the higher shift is the first";
        ASSERT_EQ(run("SL 2"), 1);
        EXPECT_EQ(show.cvNMRdata()[2].real(), rising ? 3 : 6);
        EXPECT_EQ(show.dims[1].nucleus, "15N");
    }
}

TEST_F(JcampFile, TakesTheFirstNmrBlockAndListsTheOthers) {
    const std::string infrared = block({"NPOINTS= 1"}, "0 9\n", "INFRARED SPECTRUM"),
                      peaks = block({"PEAK TABLE= (XY..XY)\n1,2"}, "");
    const std::string link = "\xEF\xBB\xBF##TITLE= all\n##JCAMP-DX= 6\n##DATA TYPE= LINK\n##BLOCKS= 3\n";
    ASSERT_EQ(import(link + infrared + peaks + block({"NPOINTS= 4"}) + "##END=\n"), 1) << platform_.said();
    EXPECT_EQ(show.cvNMRdata().size(), 4u);
    EXPECT_TRUE(
        said("holds 3 data sets:\n1  INFRARED SPECTRUM: sample\n2  NMR SPECTRUM: sample\n3  NMR SPECTRUM: sample  (imported)"));
}

TEST_F(JcampFile, RefusesWhatItCannotRead) {
    load(test::sample_points(8));
    const struct {
        std::string text, why;
    } cases[] = {
        {block({"PEAK TABLE= (XY..XY)\n1,2 3,4"}, ""), "it holds a ##PEAK TABLE"},
        {block({}, "0 1 2\n", "INFRARED SPECTRUM"), "no NMR data (INFRARED SPECTRUM: sample)"},
        {block({"XYDATA= (XY..XY)\n1,2 3,4"}, ""), "a table of the form (XY..XY)"},
        {block({"NPOINTS= 6"}), "a table holds 4 of the 6 points"},
        {block({"NPOINTS= 2"}), "goes on behind the last point"},
        {block({"NPOINTS= 2000000000"}, "0@Y999999999\n"), "its header promises 2000000000 points"},
        {block({}, "0@Y999999999\n"), "goes on behind the last point"},
        {block({}, "\n"), "its table is empty"},
        {fid({}, "0C@\n"), "a table holds 3 of the 4 points"},
        {std::string(1 << 20, '7'), "it holds no ##LABEL= lines"},
        {block({}, "0 " + std::string(1 << 20, '7') + "\n"), "no readable number"},
        {"##TITLE=\n##XYDATA= (X++(Y..Y))\n1 2 3", "ends within a table"},
    };
    for (const auto& c : cases) refused("IM " + root_.write("in/s.dx", c.text) + " -JCAMP", c.why);
    const std::string whole = fid({"$SW_h= 5000"});
    for (size_t cut = 1; cut <= 40; ++cut)
        refused("IM " + root_.write("in/s.dx", whole.substr(0, cut * (whole.find("3A\n##END") + 3) / 40)) + " -JCAMP",
                "Failed to import");
    std::filesystem::create_symlink("/dev/zero", root_.path("in/zero.dx"));
    refused("IM in/zero.dx -JCAMP", "is no ordinary file");
}

TEST_F(JcampFile, KnowsItsOwnKind) {
    for (const bool parameters : {false, true}) {
        const std::string text = parameters ? "##TITLE= Parameter file\n##JCAMPDX= 5.0\n##$TD= 4\n##END=\n" : fid({});
        Candidate file(root_.write("in/s", text));
        ASSERT_TRUE(file.open());
        EXPECT_EQ(format_of_number(69)->test(file), !parameters);
    }
}

// ------------------------------------------------------------------------------------------------------------- exports

TEST_F(JcampFile, SpectraComeBackAsTheyWereExported) {
    std::vector<Complex> points = test::sample_points(1000);
    points[300] = {400.25F, 90.5F};
    for (const char* command : {"EJ", "E6", "E6 text", "E1", "E5"}) {
        load(points, domain_complex, true);
        show.dims[0].offset = 1234.5F;
        show.dims[0].nucleus = "13C";
        const double peak = shift(300);
        const std::string name = root_.path("out.txt");
        platform_.answers = {"yes"};
        ASSERT_EQ(run(std::string(command) + " " + name), 1) << platform_.said();
        const bool ascii = command[1] == '1' || command[1] == '5', complete = command[1] == '1' || command[1] == '6';
        platform_.answers = {"yes", "yes"};
        ASSERT_EQ(run("IM " + name + (ascii ? " -ASC" : " -JCAMP")), 1) << command << platform_.said();
        ASSERT_EQ(data().size(), points.size()) << command;
        double worst = 0;
        for (size_t i = 0; i < points.size(); ++i)
            worst = std::max<double>(worst, std::abs(data()[i] - (complete ? points[i] : Complex(points[i].real(), 0))));
        EXPECT_LE(worst, command[1] == 'J' ? 1.1e-3 : 1e-6) << command;
        EXPECT_NEAR(shift(300), peak, 1e-5) << command;
        EXPECT_TRUE(show.dims[0].frequency) << command;
    }
}

TEST_F(JcampFile, TheTextTwinKeepsTheWholeDataSet) {
    ASSERT_EQ(import(fid({"ORIGIN= Bruker", "$DECIM= 24", "$DSPFVS= 13"})), 1);
    run("SOLVENT C6D6");
    const std::vector<Complex> points = data();
    const DataRecord before = show;
    ASSERT_EQ(run("E6 text twin.dx"), 1) << platform_.said();
    ASSERT_EQ(import(test::read_file("twin.dx")), 1) << platform_.said();
    EXPECT_EQ(data(), points);
    const std::string twin = test::read_file("twin.dx"), counts = "##$POINTS=4, 1, 1, 1";
    for (const char* wrong : {"##$POINTS=5, 1, 1, 1", "##$POINTS=4, 1, -1, 1", "##$POINTS=4, 2147483647, 2147483647, 4"}) {
        std::string text = twin;
        text.replace(text.find(counts), counts.size(), wrong);
        refused("IM " + root_.write("in/wrong.dx", text) + " -JCAMP", "the counts of its header do not agree");
    }
    EXPECT_TRUE(show.dims == before.dims && show.group_delay == before.group_delay && show.solvent == "C6D6");
}

TEST_F(JcampFile, E6WritesEverySlice) {
    const std::string plane =
        "##PAGE= T1=0\n##DATA TABLE= (T2++(R..R)), XYDATA\n0 1 2\n##PAGE= T1=1\n##DATA TABLE= (T2++(R..R)), XYDATA\n0 3 4\n";
    std::string text =
        block({".OBSERVE FREQUENCY= 400", "NTUPLES= nD NMR FID", "SYMBOL= T1, T2, R", "VAR_DIM= 2, 2, 2"}, "", "nD NMR FID");
    text.insert(text.rfind("##END"), plane);
    ASSERT_EQ(import(text), 1) << platform_.said();
    for (const std::string form : {"", "text "}) {
        ASSERT_EQ(run("E6 " + form + "plane"), 1) << platform_.said();
        ASSERT_EQ(run(form.empty() ? "GA plane" : "IM plane -JCAMP"), 1) << platform_.said();
        ASSERT_EQ(show.dims[1].points, 2);
        ASSERT_EQ(run("SL 2"), 1);
        EXPECT_EQ(data(), (std::vector<Complex>{{3, 0}, {4, 0}})) << form;
        std::filesystem::remove("plane");
        ASSERT_EQ(import(text), 1);
    }
}

TEST_F(JcampFile, EjWritesWholeNumbersOfAnySize) {
    load({{3e10F, 1}, {-1.75F, 2}, {0.5F, 3}, {1e30F, 0}, {5, 0}, {6, 0}, {7, 0}});
    show.dims[0].offset = 100;
    ASSERT_EQ(run("EJ big.dx"), 1);
    const std::string text = test::read_file("big.dx");
    EXPECT_NE(text.find("##FIRSTX= 2600.0000 \r\n##LASTX= -2400.0000\r\n"), std::string::npos) << text;
    EXPECT_NE(text.find("(X++(Y..Y))\r\n2600.0000 30000001024 -1 0 9200000000000000000 5 6\r\n-1685.7143 7\r\n##END= \r\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("##YFACTOR= 1.000000\r\n"), std::string::npos);
}

TEST_F(JcampFile, ExportsAskBeforeTheyReplace) {
    load(test::sample_points(8));
    root_.write("old.dx", "old");
    for (const char* command : {"EJ", "E6", "E1", "E5"})
        refused(std::string(command) + " old.dx", "already exists: " + root_.path("old.dx"));
    settings.no_file_overwrite = true;
    refused("EJ old.dx", "System configured to prevent Overwriting of existing files.");
    refused("E6 none/x.dx", "Could not open File: " + root_.path("none/x.dx"));
    show.dims[0].sf = 0;
    refused("E6 new.dx", "Must have a Spectrometer Frequency");
}

}  // namespace
}  // namespace zolt
