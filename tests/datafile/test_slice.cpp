// SL: slices of File A in every header type, their state restored, and what is refused.
#include <algorithm>

#include "datafile/native_file.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::sample_points;

class SliceTest : public CommandTest {
protected:
    /// A file of 2 planes of 3 slices of 8 points (planes = 1: one plane) becomes File A.
    std::vector<Complex> open_file(int type, int planes) {
        session.header_type = type;
        const auto points = write_set("a.nat", {8, 3, planes, 1}, [&](DataSet& data) {
            data.dims[0].sw = 1000;
            data.dims[0].sense = planes == 1 ? -1 : 1;
            data.group_delay = planes == 1 ? 2.5 : 0;
        });
        EXPECT_EQ(run("GA a.nat"), 1) << platform_.said();
        return points;
    }
    std::vector<Complex> row(const std::vector<Complex>& points, long k) const {
        return {points.begin() + 8 * k, points.begin() + 8 * k + 8};
    }
};

TEST_F(SliceTest, EachSliceComesAsItStandsInTheFile) {
    for (const int type : {1, 2, 3}) {
        const auto points = open_file(type, 1);
        EXPECT_EQ(data(), row(points, 0));
        ASSERT_EQ(run("ZF"), 1);
        ASSERT_EQ(run("FT"), 1);
        ASSERT_EQ(run("SF1 123"), 1);
        ASSERT_EQ(run("SL 3"), 1) << platform_.said();
        EXPECT_EQ(data(), row(points, 2)) << type;
        EXPECT_EQ(show.slice, 2);
        EXPECT_EQ(show.pts1d(), 8) << "the zero fill was that of the other slice";
        EXPECT_FALSE(show.dims[0].frequency);
        EXPECT_EQ(show.dims[0].sense, -1);
        EXPECT_EQ(show.group_delay, 2.5);
        EXPECT_EQ(show.dims[0].sf, 123) << "parameters that the user set stay";
        EXPECT_FALSE(show.changed);
        ASSERT_EQ(run("SL -"), 1);
        EXPECT_EQ(data(), row(points, 1));
        for (const char* line : {"SL 0", "SL 4", "SL -2", "SL 99999999999999999999"}) {
            EXPECT_EQ(run(line), 0) << line;
            EXPECT_TRUE(platform_.messages.back().starts_with("No such slice number ")) << line;
        }
        EXPECT_EQ(run("SL"), 2);
        EXPECT_EQ(platform_.replies.back(), "  - Slice 2 of 3");
        EXPECT_EQ(data(), row(points, 1));
    }
}

TEST_F(SliceTest, WithinThePlaneAndNotBeyondTheData) {
    const auto points = open_file(2, 2);
    ASSERT_EQ(run("SL 2"), 1) << platform_.said();
    ASSERT_EQ(run("Plane +"), 1) << platform_.said();
    EXPECT_EQ(data(), row(points, 4));
    for (const char* line : {"Plane next", "Plane 3", "Plane 1 2", "Plane 0"}) refused(line, "There is no plane ");
    EXPECT_EQ(run("Plane"), 2);
    EXPECT_EQ(platform_.replies.back(), "  - Plane 2 of 2, cube 1 of 1");
    const std::string bytes = test::read_file(show.file_a);
    root_.write("a.nat", bytes.substr(0, full_header_bytes + 5 * 64 + 63));
    EXPECT_EQ(run("SL 3"), 0);
    EXPECT_NE(platform_.messages.back().find("Can't find slice = 2\nFor Data Set: "), std::string::npos);
    EXPECT_EQ(data(), row(points, 4));
    ASSERT_EQ(run("SL 1"), 1) << "what is there can be read";
    std::remove(show.file_a.c_str());
    EXPECT_EQ(run("SL 2"), 0);
    EXPECT_EQ(show.slice, 0);
}

}  // namespace
}  // namespace zolt
