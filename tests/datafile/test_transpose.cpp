// TD: rows become columns, pairs stay pairs, twice is the identity, and parameters go with their dimension.
#include <algorithm>

#include "datafile/transpose.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::sample_points;

class TransposeTest : public CommandTest {
protected:
    TransposeTest() { platform_.default_answer = Answer::yes; }

    static void edit(DataSet& data) {
        data.dims[0].sf = 400;
        data.dims[1].sw = 800;
        data.dims[0].sense = -1;
        data.dims[1].frequency = true;
        data.dims[0].nucleus = "1H";
        data.group_delay = 3.5;
    }
    /// A file of `slices` slices of `points` points with parameters of their own in both dimensions.
    std::vector<Complex> write_2d(const std::string& name, int points, int slices) const {
        return write_set(name, {points, slices, 1, 1}, edit);
    }
};

TEST_F(TransposeTest, PlainRowsBecomeColumnsInEveryType) {
    for (const int type : {1, 2, 3}) {
        session.header_type = type;
        const auto in = write_2d("a.nat", 7, 5);
        ASSERT_EQ(run("GA a.nat"), 1) << platform_.said();
        ASSERT_EQ(run("TD"), 1) << platform_.said();
        EXPECT_EQ(platform_.replies.back(), "  - Transposed to " + root_.path("a.td"));
        const auto out = points_of("a.td");
        for (size_t k = 0; k < 5; ++k)
            for (size_t i = 0; i < 7; ++i) ASSERT_EQ(out[i * 5 + k], in[k * 7 + i]) << type;
        EXPECT_EQ(name_of(show.file_a), "a.nat") << "File A stays";
        ASSERT_EQ(run("GA a.td"), 1);
        EXPECT_EQ(show.dims[0].points, 5);
        EXPECT_EQ(show.dims[0].sw, 800);
        EXPECT_TRUE(show.dims[0].frequency);
        EXPECT_EQ(show.dims[1].sf, 400);
        EXPECT_EQ(show.dims[1].sense, -1);
        EXPECT_EQ(show.dims[1].nucleus, "1H");
        EXPECT_EQ(show.group_delay, 3.5);
        EXPECT_EQ(run("BR"), 2) << "the delay belongs to what is dimension 2 now";
        ASSERT_EQ(run("TD b.nat"), 1);
        EXPECT_EQ(points_of("b.nat"), in) << "twice is the identity";
    }
}

TEST_F(TransposeTest, PairsStayPairs) {
    const auto in = write_2d("a.nat", 3, 8);
    for (const char* key : {"2D_HYPERCOMPLEX", "2D_TPPI", "2D_ECHOANTIECHO", "2D_STATESTTPI"}) {
        ASSERT_EQ(run("GA a.nat"), 1);
        ASSERT_EQ(run(std::string("PT ") + key), 1);
        ASSERT_EQ(run("TD t.nat"), 1) << platform_.said();
        const auto out = points_of("t.nat");
        ASSERT_EQ(out.size(), in.size());
        for (size_t m = 0; m < 4; ++m)
            for (size_t i = 0; i < 3; ++i) {
                const Complex a = in[2 * m * 3 + i], b = in[(2 * m + 1) * 3 + i];
                EXPECT_EQ(out[2 * i * 4 + m], Complex(a.real(), b.real())) << key;
                EXPECT_EQ(out[(2 * i + 1) * 4 + m], Complex(a.imag(), b.imag())) << key;
            }
        ASSERT_EQ(run("GA t.nat"), 1);
        EXPECT_EQ(show.dims[0].points, 4);
        EXPECT_EQ(show.dims[1].points, 6);
        ASSERT_EQ(run(std::string("PT ") + key), 1);
        ASSERT_EQ(run("TD back.nat"), 1);
        EXPECT_EQ(points_of("back.nat"), in) << key;
    }
}

TEST_F(TransposeTest, LittleMemoryTakesMorePassesWithTheSameResult) {
    write_2d("a.nat", 50, 12);
    for (const Pairing pairing : {Pairing::plain, Pairing::paired}) {
        std::string whole;
        for (const uint64_t memory : {uint64_t{1} << 20, uint64_t{12 * 8 * 7}, uint64_t{1}}) {
            File in = open_for_reading(root_.path("a.nat"));
            NativeLayout layout;
            DataRecord record;
            ASSERT_EQ(read_native_header(in, file_facts(root_.path("a.nat")).size, layout, record), "");
            File out(root_.path("out"), "wb");
            ASSERT_EQ(transpose_file(in, layout, record, 2, pairing, memory, out), "");
            ASSERT_TRUE(out.close());
            if (whole.empty()) whole = test::read_file(root_.path("out"));
            EXPECT_EQ(test::read_file(root_.path("out")), whole) << memory;
        }
    }
}

TEST_F(TransposeTest, AnyDimensionOf3DAnd4DDataComesToTheFront) {
    session.header_type = 3;
    constexpr size_t n1 = 5, n2 = 3, n3 = 4, n4 = 2;
    const auto in = write_set("a.nat", {n1, n2, n3, n4});
    const size_t counts[] = {n1, n2, n3, n4}, steps[] = {1, n1, n1 * n2, n1 * n2 * n3};
    for (const size_t other : {1, 2, 3}) {
        ASSERT_EQ(run("GA a.nat"), 1);
        const std::string word = std::to_string(other + 1) + "to1";
        ASSERT_EQ(run("TD t.nat" + (other == 1 ? "" : " " + word)), 1) << platform_.said();
        const auto out = points_of("t.nat");
        size_t place = 0, to[] = {counts[0], counts[1], counts[2], counts[3]};
        std::swap(to[0], to[other]);
        size_t from[] = {steps[0], steps[1], steps[2], steps[3]};
        std::swap(from[0], from[other]);
        for (size_t l = 0; l < to[3]; ++l)
            for (size_t k = 0; k < to[2]; ++k)
                for (size_t j = 0; j < to[1]; ++j)
                    for (size_t i = 0; i < to[0]; ++i)
                        ASSERT_EQ(out[place++], in[i * from[0] + j * from[1] + k * from[2] + l * from[3]]) << word;
        ASSERT_EQ(run("GA t.nat"), 1);
        EXPECT_EQ(show.dims[other].points, static_cast<int>(n1));
        ASSERT_EQ(run("TD b.nat " + word), 1);
        EXPECT_EQ(points_of("b.nat"), in);
    }
    write_set("c.nat", {4, 3, 2, 1});
    ASSERT_EQ(run("GA c.nat"), 1);
    ASSERT_EQ(run("TD 2to1"), 1) << "a word alone leaves the usual name";
    ASSERT_EQ(run("TD t.nat"), 1);
    ASSERT_EQ(run("GA t.nat"), 1);
    EXPECT_EQ(show.dims[0].points, 2) << "of 3D data dimension 3 comes to the front";
    EXPECT_EQ(run("TD u.nat 4to1"), 0);
}

TEST_F(TransposeTest, PreconditionsAndFailuresLeaveNothingBehind) {
    write_2d("one.nat", 8, 1);
    write_2d("a.nat", 8, 3);
    ASSERT_EQ(run("GA one.nat"), 1);
    EXPECT_EQ(run("TD t.nat"), 0);
    EXPECT_EQ(platform_.messages.back(), "Not a 2D file");
    ASSERT_EQ(run("GA a.nat"), 1);
    ASSERT_EQ(run("S2 c.nat"), 1);
    EXPECT_EQ(run("TD t.nat"), 0);
    EXPECT_EQ(platform_.messages.back(), "File C is already opened!\nClose it before doing TD.");
    ASSERT_EQ(run("CC"), 1);
    EXPECT_EQ(run("TD no/folder/t.nat"), 0);
    EXPECT_TRUE(platform_.messages.back().starts_with("Could not open File: "));
    EXPECT_EQ(run("TD a.nat"), 0);
    ASSERT_EQ(run("PT 2D_TPPI"), 1);
    EXPECT_EQ(run("TD t.nat"), 0) << "an odd number of slices makes no pairs";
    EXPECT_FALSE(file_facts(root_.path("t.nat")).exists);
    std::string cut = test::read_file(root_.path("a.nat"));
    ASSERT_EQ(run("PT 2D_MAGNITUDE"), 1);
    root_.write("a.nat", cut.substr(0, cut.size() - 9));
    EXPECT_EQ(run("TD t.nat"), 0);
    EXPECT_EQ(platform_.messages.back(), "Could not get slice number 2");
    EXPECT_FALSE(file_facts(root_.path("t.nat")).exists);
}

}  // namespace
}  // namespace zolt
