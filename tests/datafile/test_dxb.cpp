// Native files of header type 3: every field comes back, the lines stand in their order, lying headers are refused.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "datafile/native_file.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::sample_points;

class DxbTest : public CommandTest {
protected:
    /// A data set in which every field that the header carries has a value of its own.
    void load_full_set() {
        load(sample_points(40));
        for (size_t d = 0; d < 4; ++d) {
            Dimension& dimension = show.dims[d];
            const auto x = static_cast<float>(d);
            dimension.sf = 400.13247F / (x + 1);
            dimension.sw = 0.0012345F + 5000.1F * x;
            dimension.offset = -733.25F - 1e-4F * x;
            dimension.domain_code = static_cast<int>(d % 3);
            dimension.frequency = d % 2 == 1;
            dimension.axis_unit = static_cast<int>(d % 4);
            dimension.phase_totals = {x + 0.5F, x - 90, x * 2};
            dimension.nucleus = d == 3 ? "" : std::to_string(d + 1) + "H";
            dimension.order = 4 - static_cast<int>(d);
            dimension.carried = {x + 0.1F, x + 1e-7F, x + 1e20F, -x, x + 0.3F};
        }
        show.dims[0].sense = -1;
        show.group_delay = 31.984207153320312;
        show.words = {0x1234567, -77, 31415, 4321, -8765, 0, 2.625F, {}};
        for (size_t p = 0; p < 64; ++p) show.words.parameter_block[p] = static_cast<uint32_t>(p * 0x04040404U + 7);
        show.user = "Clara I.";
        show.date = "9 Aug 2001, 10:30";
        show.comment = "a=b, c";
        show.experiment = "noesygpph";
        show.owner = "nmrsu";
        show.solvent = "CDCl3";
        show.formula = "C6H6";
        show.path = "/data/x";
        show.title = "Benzol rein \xc3\xa4";
        show.source = "Bruker XWinNMR";
        show.names = {"n1", "", "n3"};
        show.process_type = "2D_TPPI";
        show.scans = 64;
        show.d1 = 2.5;
        show.p1 = 9.75;
        show.o1 = 1880.5;
        show.o2 = -3;
    }
};

TEST_F(DxbTest, EveryFieldAndEveryPointComesBack) {
    load_full_set();
    const std::string path = root_.path("a.zolt");
    ASSERT_TRUE(FileWrite(path, show));
    EXPECT_EQ(classify_file(path), FileClass::native);
    DataSet back;
    ASSERT_TRUE(FileRead(path, back)) << platform_.said();
    DataRecord want = show;
    want.file_a = path;
    EXPECT_TRUE(back == want);
    EXPECT_TRUE(std::equal(show.store.all().begin(), show.store.all().end(), back.store.all().begin(), back.store.all().end()));
    // A second saving is the same as the first, and another type in between loses nothing that it carries.
    ASSERT_TRUE(FileWrite(root_.path("b.zolt"), back));
    EXPECT_EQ(test::read_file(path), test::read_file(root_.path("b.zolt")));
    session.header_type = 2;
    ASSERT_TRUE(FileWrite(root_.path("c.zolt"), back));
    DataSet through;
    ASSERT_TRUE(FileRead(root_.path("c.zolt"), through));
    EXPECT_EQ(through.dims[2].carried, show.dims[2].carried);
    EXPECT_EQ(through.words.parameter_block, show.words.parameter_block);
    EXPECT_EQ(through.group_delay, show.group_delay);
}

TEST_F(DxbTest, HeaderSaysWhatStandsBehindIt) {
    load({{1, 2}, {-5, 7}, {4, -9}}, domain_complex, true);
    show.title = "two\r\nlines";
    ASSERT_TRUE(FileWrite(root_.path("a.zolt"), show));
    const std::string text = test::read_file(root_.path("a.zolt"));
    EXPECT_TRUE(
        text.starts_with("##TITLE=two  lines\r\n##JCAMP-DXB  $$JCAMPDX Header and Binary Data\r\n##JCAMP-DX= 5.0  $$Exported"));
    for (const char* line : {"##DATA TYPE= NMR SPECTRUM\r\n", "##$HZPERMM 0.000000, 0.000000, 0.000000\r\n",
                             "##$TOTAL_A= 0.000000  0.000000  0.000000  0.000000\r\n", "##$FREQ_TMS=400.0000000\r\n",
                             "##FIRST= 2500.0000 ,  1.000000,  2.000000\r\n", "##LAST= -2500.0000,  4.000000,  -9.000000\r\n",
                             "##MIN= -2500.000 ,  -5.000000,  -9.000000\r\n", "##MAX= 2500.000  ,  4.000000,  7.000000\r\n",
                             "##UNITS= HZ, ARBITRARY UNITS, ARBITRARY UNITS\r\n",
                             "\r\n$$  Complex Pairs packed RIRIRIRI...\r\n##BINARY(3)=24,IEEE32L\r\n\x1a"})
        EXPECT_NE(text.find(line), std::string::npos) << line;
    EXPECT_EQ(text.size(), text.find('\x1a') + 1 + 24);
}

TEST_F(DxbTest, LyingAndCutHeadersAreRefused) {
    load_full_set();
    ASSERT_TRUE(FileWrite(root_.path("a.zolt"), show));
    const std::string good = test::read_file(root_.path("a.zolt"));
    const auto refused = [&](const std::string& bytes) {
        DataSet back;
        back.comment = "as before";
        return !FileRead(root_.write("bad", bytes), back) && back.comment == "as before";
    };
    const auto with = [&](std::string_view from, std::string_view to) {
        std::string bad = good;
        return bad.replace(bad.find(from), from.size(), to);
    };
    for (size_t k = 0; k < 40; ++k) EXPECT_TRUE(refused(good.substr(0, (good.size() - 1) * k / 39))) << k;
    EXPECT_TRUE(refused(with("IEEE32L", "IEEE32B")));
    EXPECT_EQ(platform_.messages.back(), "Not IEEE32L binary data, ZOLT cannot read it.");
    EXPECT_TRUE(refused(with("\x1a", " ")));
    EXPECT_EQ(platform_.messages.back(), "Did not find the expected ^Z in read_JCAMPDXB_header");
    for (const char* points : {"0", "-1", "41", "99999999999999999999", "2147483647, 2147483647, 2147483647, 2147483647"})
        EXPECT_TRUE(refused(with("##$POINTS=40", std::string("##$POINTS=") + points))) << points;
    EXPECT_TRUE(refused(with("##BINARY(40)=320", "##BINARY(41)=328")));
    for (size_t i = 0; i < good.size(); i += 7) {
        std::string bad = good;
        bad[i] = static_cast<char>(bad[i] ^ (1 << (i % 8)));
        DataSet back;
        if (FileRead(root_.write("flipped", bad), back)) {
            EXPECT_EQ(back.pts1d(), 40);
        }
    }
}

}  // namespace
}  // namespace zolt
