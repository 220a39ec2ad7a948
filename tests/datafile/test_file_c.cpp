// File C from its opening to CC, and UH, in every header type.
#include <algorithm>

#include "datafile/file_c.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::sample_points;

class FileCTest : public CommandTest {
protected:
    ~FileCTest() override { file_c = FileC(); }

    /// A file of 4 slices of 8 points becomes File A.
    std::vector<Complex> open_file_a(int type) {
        file_c = FileC();
        session.header_type = type;
        const auto points = write_set("a.nat", {8, 4, 1, 1}, [](DataSet& data) {
            data.dims[0].sf = 400;
            data.dims[0].sense = -1;
            data.user = "Ada";
        });
        EXPECT_EQ(run("GA a.nat"), 1) << platform_.said();
        return points;
    }
    std::vector<Complex> row(const std::vector<Complex>& points, long k) const {
        return {points.begin() + 8 * k, points.begin() + 8 * k + 8};
    }
};

TEST_F(FileCTest, SlicesGoToFileCAndCcCountsThem) {
    for (const int type : {1, 2, 3}) {
        const auto points = open_file_a(type);
        const std::string c = "c" + std::to_string(type);
        ASSERT_EQ(run("SL 3"), 1);
        ASSERT_EQ(run("S2 " + c), 1) << platform_.said();
        EXPECT_EQ(platform_.messages.back(), "File opened for writing.\n Slice 1 written to file.");
        EXPECT_EQ(run("S2 other"), 0);
        EXPECT_EQ(platform_.messages.back(), "File C already opened!");
        ASSERT_EQ(run("SL 1"), 1);
        ASSERT_EQ(run("SC"), 1);
        EXPECT_EQ(show.slice, 1) << "SC goes on to the next slice of File A";
        ASSERT_EQ(run("S2"), 1);
        EXPECT_EQ(file_c.slice, 3);
        // Whatever happens now, what was written can be read.
        DataSet so_far;
        EXPECT_TRUE(FileRead(root_.path(c), so_far)) << platform_.said();
        EXPECT_TRUE(std::equal(so_far.store.all().begin(), so_far.store.all().end(), points.begin() + 16));
        ASSERT_EQ(run("CC"), 1) << platform_.said();
        auto want = row(points, 2);
        for (const long k : {0, 1}) want.insert(want.end(), points.begin() + 8 * k, points.begin() + 8 * k + 8);
        EXPECT_EQ(points_of(c), want) << type;

        // Appended to, the file grows.
        ASSERT_EQ(run("SL 4"), 1);
        ASSERT_EQ(run("OC " + c), 1) << platform_.said();
        EXPECT_EQ(file_c.slice, 3);
        ASSERT_EQ(run("SC"), 1) << "on the last slice of File A it stays";
        ASSERT_EQ(run("CC"), 1);
        want.insert(want.end(), points.begin() + 24, points.end());
        EXPECT_EQ(points_of(c), want) << type;
    }
}

TEST_F(FileCTest, RefusalsLeaveEverythingAsItWas) {
    open_file_a(2);
    EXPECT_EQ(run("CC"), 0);
    EXPECT_EQ(run("SC"), 0);
    EXPECT_EQ(run("S2 a.nat"), 0);
    const std::string other = root_.write("other", "precious");
    EXPECT_EQ(run("S2 other"), 0);
    EXPECT_EQ(test::read_file(other), "precious") << "No to the question";
    ASSERT_TRUE(create_fileC(other) && close_fileC());
    EXPECT_EQ(test::read_file(other), "precious") << "nothing was written to the File C that was to replace it";
    EXPECT_EQ(run("S2 no/folder/c"), 0);
    EXPECT_EQ(run("OC none"), 0);
    EXPECT_TRUE(platform_.messages.back().ends_with("none.\nName correct?"));
    EXPECT_EQ(run("OC other"), 0);
    ASSERT_EQ(run("S2 c"), 1);
    ASSERT_EQ(run("ZF"), 1);
    EXPECT_EQ(run("SC"), 0) << "a slice of another size";
    EXPECT_EQ(platform_.messages.back(), "File A and File C have different sizes!\nClose File C with CC if necessary");
    ASSERT_EQ(run("CC"), 1);
    EXPECT_EQ(run("OC c 5"), 0);
    load(sample_points(8));
    EXPECT_EQ(run("S2 d"), 0);
    EXPECT_EQ(platform_.messages.back(), "Not a 2D file.\n\nUse SA or SB command to\nsave a 1D file.\n");
}

TEST_F(FileCTest, UhRewritesTheHeaderAlone) {
    for (const int type : {1, 2, 3}) {
        const auto points = open_file_a(type);
        session.header_type = type == 3 ? 2 : 3;
        ASSERT_EQ(run("SL 2"), 1);
        ASSERT_EQ(run("SF1 123.5"), 1);
        ASSERT_EQ(run("NU 2 13C"), 1);
        ASSERT_EQ(run("UH"), 1) << platform_.said();
        EXPECT_EQ(show.slice, 1);
        EXPECT_EQ(data(), row(points, 1));
        EXPECT_EQ(points_of("a.nat"), points) << type;
        ASSERT_EQ(run("GA a.nat"), 1);
        EXPECT_EQ(show.dims[0].sf, 123.5F);
        EXPECT_EQ(show.dims[1].nucleus, "13C");
        EXPECT_EQ(show.dims[0].sense, -1) << "what the slices wait for is still so";
        EXPECT_EQ(show.user, "Ada");
    }
}

}  // namespace
}  // namespace zolt
