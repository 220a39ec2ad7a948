// The table of formats, and what every translation goes through: questions, output checks, merging, the record afterwards.
#include <algorithm>
#include <filesystem>

#include "common/bytes.h"
#include "common/text.h"
#include "datafile/native_file.h"
#include "import/format.h"
#include "import/merge.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::sample_points;

TEST(Formats, KeysNamesAndPhrasesFitTogether) {
    std::string unnamed, keyless;
    for (const Format& format : formats()) {
        const std::string number = format_text("%d ", format.number);
        if (std::string_view(format.name) == "unknown") unnamed += number;
        if (*format.key == '\0') keyless += number;
        const Format* found = format_of_key(lower(format.key));
        EXPECT_EQ(found, *format.key == '\0' ? nullptr : &format) << format.key;
        EXPECT_EQ((format.parameters == nullptr), (format.data == nullptr)) << format.key;
    }
    EXPECT_EQ(unnamed, "12 34 61 62 64 ");
    EXPECT_EQ(keyless, "5 6 7 8 34 57 58 59 60 64 65 72 77 ");
    for (const int outside : {-1, 0, 84}) EXPECT_EQ(format_of_number(outside), nullptr);
}

class ImportTest : public CommandTest {
protected:
    /// A native file of 3 slices of 5 points in the other byte order, which has to be translated.
    std::string swapped_file() {
        DataSet set;
        points_ = sample_points(15);
        EXPECT_TRUE(set.store.allocate(3, 5));
        std::copy(points_.begin(), points_.end(), set.store.all().begin());
        for (const size_t d : {0, 1, 2, 3}) set.dims[d].points = d == 0 ? 5 : d == 1 ? 3 : 1;
        set.comment = "from elsewhere";
        set.dims[0].sw = 5000;
        File file(root_.path("big.nat"), "wb");
        NativeLayout layout;
        session.header_type = session.byte_order = 2;
        EXPECT_TRUE(write_native_file(file, set, layout) && file.close());
        session.header_type = 3;
        session.byte_order = 1;
        return root_.path("big.nat");
    }

    std::vector<Complex> points_;
};

TEST_F(ImportTest, WritesEveryKindOfNativeFile) {
    const std::string path = swapped_file();
    for (const int type : {1, 2, 3})
        for (const int order : {1, 2}) {
            session.header_type = type;
            session.byte_order = order;
            platform_.answers = {"yes"};
            ASSERT_EQ(run("IM " + path), 1) << platform_.said();
            // What a short header has no place for stays with the data set.
            EXPECT_TRUE(show.comment == "from elsewhere" && show.source == "CDFF Unix" && show.dims[1].points == 3 &&
                        !show.changed);
            File file = open_for_reading(show.file_a);
            NativeLayout layout;
            DataRecord record;
            ASSERT_EQ(read_native_header(file, file_facts(show.file_a).size, layout, record), "");
            EXPECT_EQ(layout.type, type);
            std::vector<Complex> slice(5);
            for (size_t row = 0; row < 3; ++row) {
                EXPECT_TRUE(read_native_slice(file, layout, row, slice));
                EXPECT_TRUE(std::equal(slice.begin(), slice.end(), points_.begin() + 5 * row)) << type << order << row;
            }
        }
    // The header of type 3 tells the extremes of all slices, not of the first.
    const auto [low, high] =
        std::minmax_element(points_.begin(), points_.end(), [](Complex a, Complex b) { return a.real() < b.real(); });
    for (const auto& [label, value] : {std::pair{"##MIN=", low->real()}, {"##MAX=", high->real()}}) {
        const std::string text = test::read_file(show.file_a);
        const std::string line = text.substr(text.find(label), 80);
        EXPECT_NE(line.find(format_text(",  %f,", value)), std::string::npos) << line;
    }
}

TEST_F(ImportTest, SwapsPartsOnRequest) {
    const std::string path = swapped_file();
    for (const auto& [word, swapped] : {std::pair{"SR0", false}, {"sr1", true}}) {
        platform_.answers = {"yes"};
        ASSERT_EQ(run("IM " + path + " " + word), 1);
        EXPECT_EQ(data()[1], swapped ? Complex(points_[1].imag(), points_[1].real()) : points_[1]);
        EXPECT_EQ(show.dims[0].sense, swapped ? -1 : 1);
    }
}

TEST_F(ImportTest, AsksWhatANicoletFileOfAnotherLengthIs) {
    const std::string path = root_.write("nt.dat", "\x02\xC7\x20" + std::string(998, '\0'));
    load(sample_points(4));
    const std::string start = "Starting translation for " + path + " of NT ";
    const std::pair<const char*, std::string> rows[] = {
        {"yes", start + "Dexter data type."}, {"no", start + "TMON data type."}, {"cancel", "Import of NT file canceled."}};
    for (const auto& [answer, text] : rows) {
        platform_.answers = {answer};
        refused("IM " + path, text);
        EXPECT_EQ(platform_.questions.size(), 1U);
        EXPECT_EQ(platform_.captions.front(), "Dexter or TMON");
    }
}

TEST_F(ImportTest, OutputsThatCannotBeWrittenAreRefused) {
    const std::string path = swapped_file();
    load(sample_points(4));
    std::filesystem::create_directory(root_.path("folder"));
    const std::string to = "IM " + path + " SPECIAL_NAME ";
    refused(to + path, "Input and Output file names are identical.\nNot allowed!");
    for (const std::string& target : {root_.path("folder"), root_.path("none/x")})
        refused(to + target, "Unable to open output file\n" + target + "\nfor writing!");
    const std::string marked = root_.write("marked", "x");
    std::filesystem::permissions(marked, std::filesystem::perms::owner_read);
    refused(to + marked, "File: " + marked +
                             "\nexists AND is READ ONLY.\nZOLT does not have authority to change the file's permissions\n"
                             "The file needs to be deleted from the operating system before the import can work.");
    root_.write("there", "x");
    refused(to + root_.path("there"), "Target file name already exists: " + root_.path("there") + "\nOverwrite?");
}

}  // namespace
}  // namespace zolt
