// Byte-swapped and integer native files through their translators, File B, and ZZ.
#include <algorithm>

#include "common/bytes.h"
#include "common/file.h"
#include "datafile/native_file.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::sample_points;

class NativeImportTest : public CommandTest {
protected:
    NativeImportTest() { session.header_type = 2; }

    /// A file of three slices of 8 points, in the byte order of session.byte_order.
    std::string three_slices(const std::string& name) {
        write_set(name, {8, 3, 1, 1}, [](DataSet& data) {
            data.dims[0].sf = 400;
            data.dims[0].sw = 5000;
            data.dims[0].offset = 100;
            data.dims[0].sense = -1;
            data.group_delay = 2.5;
            data.user = "Emmy";
        });
        return root_.path(name);
    }
};

TEST_F(NativeImportTest, BigEndianFilesAreConvertedAndGiveTheSameDataSet) {
    const std::string little = three_slices("little.nat");
    session.byte_order = 2;
    const std::string big = three_slices("big.nat");
    session.byte_order = 1;
    EXPECT_EQ(test::read_file(big).substr(0, 4), "\4\3\2\1");
    ASSERT_EQ(run("GA " + big), 1) << platform_.said();
    EXPECT_EQ(name_of(show.file_a), "big.zolt");
    EXPECT_EQ(test::read_file(show.file_a).substr(4104, 192), test::read_file(little).substr(4104, 192)) << "all slices, in order";
    EXPECT_EQ(show.dims[1].points, 3);
    EXPECT_EQ(show.dims[0].offset, 100);
    EXPECT_EQ(show.dims[0].sense, -1) << "what the FID waits for is the file's own";
    EXPECT_EQ(show.group_delay, 2.5);
    EXPECT_EQ(show.user, "Emmy");
    EXPECT_EQ(show.source, "CDFF Unix");
}

TEST_F(NativeImportTest, IntegersBecomeFloats) {
    std::string bytes = test::read_file(three_slices("int.nat"));
    store_word<int32_t>(bytes.data() + 12, 1, ByteOrder::little);
    for (int k = 0; k < 48; ++k) store_word<int32_t>(bytes.data() + 4104 + 4 * k, 1000 * k - 20000, ByteOrder::little);
    const std::string path = root_.write("int.nat", bytes);
    EXPECT_EQ(run("GA " + path), 1) << platform_.said();
    EXPECT_EQ(data()[3], Complex(-14000, -13000));
    EXPECT_EQ(show.source, "CDFF integer");
    platform_.default_answer = Answer::yes;
    const std::string before = show.file_a;
    EXPECT_EQ(run("IM " + root_.write("cut.nat", bytes.substr(0, 4104 + 100))), 0);
    EXPECT_NE(platform_.said().find("it ends before the last of its 3 slices"), std::string::npos);
    EXPECT_EQ(show.file_a, before);
}

TEST_F(NativeImportTest, FileBIsReadAndSavedBesideFileA) {
    load(sample_points(5));
    const std::string a = show.file_a, b = three_slices("b.nat");
    EXPECT_EQ(run("SB x"), 0) << "there is none yet";
    EXPECT_EQ(run("GB " + root_.path("none")), 0);
    ASSERT_EQ(run("GB " + b), 1);
    EXPECT_EQ(show.file_b, b);
    EXPECT_EQ(show.file_a, a);
    EXPECT_EQ(show.pts1d(), 5);
    EXPECT_EQ(show_b.user, "Emmy");
    ASSERT_EQ(run("SB copy.nat"), 1);
    EXPECT_EQ(show.file_b, root_.path("copy.nat"));
}

TEST_F(NativeImportTest, ZzReadsTheConfiguredFileOrFileAAgain) {
    EXPECT_EQ(run("ZZ"), 0);
    settings.zz_file_path = root_.path("gone.nat");
    EXPECT_EQ(run("zz"), 0);
    EXPECT_EQ(platform_.messages.back(), "Could not read file " + root_.path("gone.nat") + "!");
    settings.zz_file_path = three_slices("zz.nat");
    EXPECT_EQ(run("ZZ"), 1);
    EXPECT_EQ(show.pts1d(), 8);
    settings.zz_file_path.clear();
    show.dims[0].sf = 1;
    EXPECT_EQ(run("ZZ"), 1);
    EXPECT_EQ(show.dims[0].sf, 400) << "File A, read again";
}

}  // namespace
}  // namespace zolt
