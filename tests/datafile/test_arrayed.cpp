// AR: what each level holds and in which order, selection in memory, saving, and the ways in and out.
#include "datafile/arrayed.h"

#include "datafile/native_file.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;

class ArrayedTest : public CommandTest {
protected:
    ArrayedTest() { platform_.default_answer = Answer::yes; }
    std::vector<Complex> all() const { return {show.store.all().begin(), show.store.all().end()}; }
    static std::vector<Complex> part(const std::vector<Complex>& points, size_t first, size_t count) {
        return {points.begin() + static_cast<long>(first), points.begin() + static_cast<long>(first + count)};
    }
};

TEST_F(ArrayedTest, EachLevelHoldsItsPartOfA4DFileAndSavesIt) {
    for (const int type : {1, 2, 3}) {
        session.header_type = type;
        const auto points = write_set("a.nat", {4, 6, 3, 2});
        const size_t plane = 4 * 6, cube = plane * 3;
        const struct {
            const char* line;
            int level;
            size_t first, count;
        } rows[] = {{"AR on", 1, cube + 2 * plane, plane},
                    {"AR pairwise", 2, cube + 2 * plane, plane},
                    {"AR 3D", 3, cube, cube},
                    {"AR 4D", 4, 0, 2 * cube}};
        for (const auto& row : rows) {
            ASSERT_EQ(run("GA a.nat"), 1);
            ASSERT_EQ(run("Plane 3 2"), 1) << platform_.said();
            ASSERT_EQ(run("SL 5"), 1);
            const auto here = data();
            ASSERT_EQ(run(row.line), 1) << platform_.said();
            EXPECT_EQ(CurrentArrayedLevel(), row.level);
            EXPECT_EQ(all(), part(points, row.first, row.count)) << row.line << " type " << type;
            EXPECT_EQ(data(), here) << "the selected slice stays the current one";
            ASSERT_EQ(run("SL 2"), 1);
            EXPECT_EQ(data(), part(points, cube + 2 * plane + 4, 4));
            const bool whole = row.level == 4;
            if (row.level >= 3) {
                ASSERT_EQ(run("Plane 1"), 1);
                EXPECT_EQ(data(), part(points, cube + 4, 4));
            } else {
                refused("Plane 1", "Plane not supported in Arrayed mode level " + std::to_string(row.level));
            }
            if (!whole) refused("SA a.nat", "The part in memory would replace the whole file");
            if (row.level == 2 && type != 3) {
                refused("SA b.nat", "PairWise Complex file writes only supported with header type 3. ");
                ASSERT_EQ(run("AR off"), 1);
                continue;
            }
            ASSERT_EQ(run("SA b.nat"), 1) << platform_.said();
            EXPECT_EQ(show.file_a, root_.path("b.nat"));
            EXPECT_EQ(points_of("b.nat"), part(points, row.first, row.count)) << row.line;
            ASSERT_EQ(run("AR off"), 1) << platform_.said();
            EXPECT_EQ(show.dims[2].points, row.level >= 3 ? 3 : 1);
            EXPECT_EQ(data(), part(points, row.level >= 3 ? cube + 4 : row.first + 4, 4));
        }
    }
}

TEST_F(ArrayedTest, EntriesAndExitsThatAreRefusedChangeNothing) {
    write_set("odd.nat", {4, 5, 1, 1}, [](DataSet& data) { data.dims[0].sf = 300; });
    ASSERT_EQ(run("GA odd.nat"), 1);
    refused("AR pairwise", "need an even number of slices");
    ASSERT_EQ(run("AR on"), 1);
    refused("GA odd.nat", "Try to read a file in Arrayed Mode level = 1  ???");
    ASSERT_EQ(run("SF1 123"), 1);
    ASSERT_EQ(run("AR off"), 1);
    EXPECT_EQ(show.dims[0].sf, 300) << "the header comes from the file again";
    ASSERT_EQ(run("AR on"), 1);
    ASSERT_EQ(run("ZR"), 1);
    platform_.default_answer = Answer::no;
    EXPECT_EQ(run("AR"), 0);
    EXPECT_EQ(show.level, 1);
    session.macro_running = true;
    EXPECT_TRUE(leave_arrayed()) << "a macro is not asked";
    session.macro_running = false;
    platform_.default_answer = Answer::yes;
    // A file that ends early.
    const std::string bytes = test::read_file(root_.path("odd.nat"));
    root_.write("odd.nat", bytes.substr(0, bytes.size() - 40));
    refused("AR on", "it cannot be loaded as a whole");
    // TPPI only arranges, and says so.
    write_set("even.nat", {4, 6, 1, 1});
    ASSERT_EQ(run("GA even.nat"), 1);
    ASSERT_EQ(run("AR tppi2pairwise"), 1);
    EXPECT_EQ(show.dims[1].domain_code, domain_sequential);
    EXPECT_EQ(all(), points_of("even.nat"));
}

}  // namespace
}  // namespace zolt
