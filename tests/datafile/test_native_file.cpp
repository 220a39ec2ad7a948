// Native files of types 1 and 2: every field back unchanged, both byte orders, the tailer, and what is refused.
#include <gtest/gtest.h>

#include <filesystem>

#include "datafile/header.h"
#include "datafile/native_file.h"
#include "datafile/tailer.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::sample_points;

class NativeFileTest : public CommandTest {
protected:
    NativeFileTest() { session.header_type = 2; }

    /// A data set in which every field that a full header carries has a value of its own.
    static DataSet full_data_set(size_t points) {
        DataSet data;
        const auto values = sample_points(points, 5);
        EXPECT_TRUE(data.store.allocate(1, points));
        std::copy(values.begin(), values.end(), data.store.all().begin());
        for (size_t d = 0; d < 4; ++d) {
            const auto x = static_cast<float>(d);
            data.dims[d] = {static_cast<int32_t>(d == 0 ? points : 1), 400.13F + x, 5000.5F - x, -250.25F * x, static_cast<int>(d % 3),
                            d % 2 == 0, 1 + static_cast<int>(d % 3), {}, "", 4 - static_cast<int>(d), 1,
                            {x + 2.5F, x + 3.5F, x + 4.5F, x + 5.5F, x + 6.5F}};
        }
        data.words = {0x1234567, -77, 31415, 4321, -8765, 0, 2.625F, {}};
        for (size_t p = 0; p < 64; ++p) data.words.parameter_block[p] = static_cast<uint32_t>(p * 0x01010101U + 7);
        data.scans = 640;
        data.experiment = "cosygp";
        data.user = "Lise Meitner";
        data.date = "1 Jan 1939";
        data.comment = "A comment, with = and blanks";
        return data;
    }

    static std::string swapped(std::string bytes, size_t header_bytes) {
        // The texts of the header stay as they are; every word is turned round.
        const auto turn = [&](size_t from, size_t to) {
            for (size_t i = from; i + 4 <= to; i += 4) std::reverse(bytes.begin() + i, bytes.begin() + i + 4);
        };
        turn(0, 1040);
        turn(header_bytes, header_bytes + (bytes.size() - header_bytes) / 8 * 8);
        return bytes;
    }

    static void expect_same(const DataSet& a, const DataSet& b) {
        for (size_t d = 0; d < 4; ++d) {
            EXPECT_EQ(a.dims[d].points, b.dims[d].points) << d;
            EXPECT_EQ(a.dims[d].sf, b.dims[d].sf) << d;
            EXPECT_EQ(a.dims[d].sw, b.dims[d].sw) << d;
            EXPECT_EQ(a.dims[d].offset, b.dims[d].offset) << d;
            EXPECT_EQ(a.dims[d].domain_code, b.dims[d].domain_code) << d;
            EXPECT_EQ(a.dims[d].frequency, b.dims[d].frequency) << d;
            EXPECT_EQ(a.dims[d].axis_unit, b.dims[d].axis_unit) << d;
            EXPECT_EQ(a.dims[d].order, b.dims[d].order) << d;
            EXPECT_EQ(a.dims[d].carried, b.dims[d].carried) << d;
        }
        EXPECT_EQ(a.words.parameter_block, b.words.parameter_block);
        EXPECT_EQ(a.words.a, b.words.a);
        EXPECT_EQ(a.words.d, b.words.d);
        EXPECT_EQ(a.words.e, b.words.e);
        EXPECT_TRUE(std::equal(a.store.all().begin(), a.store.all().end(), b.store.all().begin(), b.store.all().end()));
    }
};

TEST_F(NativeFileTest, TypeTwoCarriesEverythingBackInBothByteOrders) {
    const DataSet data = full_data_set(33);
    const std::string little = root_.path("a.nat");
    ASSERT_TRUE(FileWrite(little, data));
    const std::string bytes = test::read_file(little);
    EXPECT_EQ(bytes.substr(0, 8), std::string("\x01\x02\x03\x04\x00\x04\x00\x00", 8));
    const std::string big = root_.write("b.nat", swapped(bytes.substr(0, full_header_bytes + 33 * 8), full_header_bytes));
    EXPECT_EQ(classify_file(little), FileClass::native);
    EXPECT_EQ(classify_file(big), FileClass::swapped_native);
    for (const std::string& path : {little, big}) {
        DataSet back;
        ASSERT_TRUE(FileRead(path, back)) << platform_.said();
        expect_same(data, back);
        EXPECT_EQ(back.words.b, -77);
        EXPECT_EQ(back.words.c, 31415);
        EXPECT_EQ(back.words.acquisition_value, 2.625F);
        EXPECT_EQ(back.scans, 640);
        EXPECT_EQ(back.comment, data.comment);
        EXPECT_EQ(back.experiment, "cosygp");
        EXPECT_EQ(back.user, "Lise Meitner");
        EXPECT_EQ(back.lb(), 6.5F) << "the line broadening is parameter P6";
        EXPECT_TRUE(back.loaded);
    }
}

TEST_F(NativeFileTest, TypeOneHasACountWordAndItsOwnTexts) {
    session.header_type = 1;
    const DataSet data = full_data_set(16);
    const std::string path = root_.path("one.nat");
    ASSERT_TRUE(FileWrite(path, data));
    std::string bytes = test::read_file(path);
    ASSERT_GT(bytes.size(), short_header_bytes + 4 + 16 * 8);
    EXPECT_EQ(load_word<uint32_t>(bytes.data() + short_header_bytes, ByteOrder::little), 32u);
    for (const int type : {1, 0, 7}) {  // types out of range are read as type 1
        bytes[16] = static_cast<char>(type);
        DataSet back;
        ASSERT_TRUE(FileRead(root_.write("t.nat", bytes.substr(0, short_header_bytes + 4 + 16 * 8)), back));
        expect_same(data, back);
        EXPECT_EQ(back.comment, "Read in a short header file (<256 words).");
        EXPECT_EQ(back.experiment, "No Experiment listed in imported data header");
    }
}

TEST_F(NativeFileTest, OddEntriesOfAHeaderAreRead) {
    const std::string path = root_.path("a.nat");
    ASSERT_TRUE(FileWrite(path, full_data_set(8)));
    std::string bytes = test::read_file(path);
    const auto word = [&](size_t offset, int32_t value) { store_word(bytes.data() + offset, value, ByteOrder::little); };
    word(384 + 24, 0);
    word(544 + 24, 5);        // order entries out of range: the identity
    word(384 + 8, 2);         // any domain but 1 is time
    word(544, 0);             // no slices: one
    DataSet back;
    ASSERT_TRUE(FileRead(root_.write("b.nat", bytes), back));
    EXPECT_EQ(back.dims[0].order, 1);
    EXPECT_EQ(back.dims[1].order, 2);
    EXPECT_FALSE(back.dims[0].frequency);
    EXPECT_EQ(back.dims[1].points, 1);
}

TEST_F(NativeFileTest, CutAndAbsurdFilesAreRefusedAndTheRecordIsKept) {
    const std::string path = root_.path("a.nat");
    ASSERT_TRUE(FileWrite(path, full_data_set(64)));
    const std::string bytes = test::read_file(path);
    load(sample_points(8));
    const std::string before = show.file_a;
    const auto refused = [&](const std::string& name, const std::string& content) {
        const size_t said = platform_.messages.size();
        DataSet back;
        back.comment = "as before";
        EXPECT_FALSE(FileRead(root_.write("bad.nat", content), back)) << name;
        EXPECT_EQ(back.comment, "as before") << name;
        EXPECT_EQ(platform_.messages.size(), said + 1) << name;
    };
    for (size_t k = 0; k < 40; ++k) refused("cut", bytes.substr(0, (full_header_bytes + 64 * 8 - 1) * k / 39));
    for (const int32_t points : {0, -1, 65, 0x7fffffff, static_cast<int32_t>(0x80000000)}) {
        std::string bad = bytes.substr(0, full_header_bytes + 64 * 8);
        store_word(bad.data() + 384, points, ByteOrder::little);
        refused("points", bad);
    }
    for (const int32_t length : {-1, 0, 1023, 0x7fffffff}) {
        std::string bad = bytes;
        store_word(bad.data() + 4, length, ByteOrder::little);
        refused("length", bad);
    }
    refused("zeros", std::string(5000, '\0'));
    EXPECT_EQ(show.file_a, before);
    DataSet back;
    EXPECT_FALSE(FileRead("/dev/zero", back));
    EXPECT_FALSE(FileRead(root_.path(), back));
    EXPECT_FALSE(FileRead(root_.path("none"), back));
    EXPECT_NE(platform_.messages.back().find("not found.\nIn Module FILE function FileRead\nSpelled correctly?"), std::string::npos);
}

TEST_F(NativeFileTest, FlippedBytesNeverEndTheProgram) {
    const std::string path = root_.path("a.nat");
    ASSERT_TRUE(FileWrite(path, full_data_set(8)));
    const std::string bytes = test::read_file(path);
    for (size_t i = 0; i < 1100; ++i) {
        std::string bad = bytes;
        bad[i] = static_cast<char>(bad[i] ^ (1 << (i % 8)));
        DataSet back;
        if (FileRead(root_.write("bad.nat", bad), back)) {
            EXPECT_LE(back.pts1d(), 100) << i;
        }
    }
}

TEST_F(NativeFileTest, TailerIsWrittenLineByLineAndReadTolerantly) {
    DataSet data = full_data_set(8);
    data.names = {"n1", "", "n3"};
    data.formula = "C2H6O";
    data.dims[0].nucleus = "1H";
    data.dims[2].nucleus = "15N";
    data.path = "/data/x";
    const std::string plain =
        "INFORMATION\r\nUser=Lise Meitner\r\nDate=1 Jan 1939\r\nName1=n1\r\nName2=\r\nName3=n3\r\n"
        "Comment=A comment, with = and blanks\r\nFormula=C2H6O\r\nNucleus=1H, n/a, 15N, n/a\r\nPath=/data/x\r\nEND_INFORMATION\r\n";
    EXPECT_EQ(tailer_text(data), plain + "END_TAILER\r\n");
    data.dims[0].sense = -1;
    data.group_delay = 67.984207153320298;
    EXPECT_EQ(tailer_text(data), plain + "FID_STATE\r\nSENSE=-1, 1, 1, 1\r\nGROUP_DELAY=67.984207153320298\r\nEND_FID_STATE\r\nEND_TAILER\r\n");

    DataSet back;
    back.dims[0].points = 100;
    read_tailer(tailer_text(data), back);
    EXPECT_EQ(back.comment, data.comment);
    EXPECT_EQ(back.names, data.names);
    EXPECT_EQ(back.dims[1].nucleus, "");
    EXPECT_EQ(back.dims[2].nucleus, "15N");
    EXPECT_EQ(back.dims[0].sense, -1);
    EXPECT_EQ(back.group_delay, data.group_delay);

    DataSet odd;
    odd.user = "kept";
    read_tailer("\r\nFUTURE\nUser=not me\nEND_FUTURE\n\ninformation\nNAME2=second\nColour=blue\nno equals sign\nEND_TAILER\nUser=wrong\n", odd);
    EXPECT_EQ(odd.user, "kept");
    EXPECT_EQ(odd.names[1], "second");
    for (const char* delay : {"-5", "nan", "1e300", "101", "x"}) {
        DataSet bad;
        bad.dims[0].points = 100;
        read_tailer(std::string("FID_STATE\nGROUP_DELAY=") + delay, bad);
        EXPECT_EQ(bad.group_delay, 0) << delay;
    }
}

TEST_F(NativeFileTest, SaveBecomesFileAAndAsksBeforeItReplaces) {
    const auto points = sample_points(16);
    load(points);
    show.changed = true;
    const std::string target = root_.path("saved.zolt");
    ASSERT_EQ(run("SA " + target), 1) << platform_.said();
    EXPECT_EQ(show.file_a, target);
    EXPECT_FALSE(show.changed);
    DataSet back;
    ASSERT_TRUE(FileRead(target, back));
    EXPECT_TRUE(std::equal(points.begin(), points.end(), back.store.all().begin()));

    show.changed = true;
    EXPECT_EQ(run("SA " + target), 0) << "No to the question keeps the file";
    EXPECT_EQ(platform_.questions.back(),
              "Slected name has the same name as File A.\nProceeding saves the entire 2D data set\nAre you REALLY sure?\n\n");
    EXPECT_TRUE(show.changed);
    const std::string other = root_.write("other", "precious");
    EXPECT_EQ(run("SA " + other), 0);
    EXPECT_EQ(test::read_file(other), "precious");
    platform_.default_answer = Answer::yes;
    EXPECT_EQ(run("SA " + other), 1);

    settings.no_file_overwrite = true;
    EXPECT_EQ(run("SA " + target), 0);
    EXPECT_EQ(platform_.messages.back(), "System configured to prevent Overwriting of existing files.");
    EXPECT_EQ(run("SA " + root_.path("no/folder/x")), 0);
    EXPECT_TRUE(platform_.messages.back().ends_with("x\nfor writing!\n Error Code 2")) << platform_.messages.back();
    EXPECT_EQ(show.file_a, other);
}

TEST_F(NativeFileTest, ASliceOfALargerSetIsSavedAsOneDimensional) {
    load(sample_points(16));
    show.dims[1].points = 5;
    EXPECT_EQ(run("SA " + show.file_a), 0) << "one slice may not replace the whole file";
    const std::string a = show.file_a;
    ASSERT_EQ(run("SA " + root_.path("slice")), 1) << platform_.said();
    EXPECT_EQ(show.file_a, a);
    EXPECT_EQ(show.dims[1].points, 5) << "the data set keeps its dimensions";
    DataSet back;
    ASSERT_TRUE(FileRead(root_.path("slice"), back));
    EXPECT_EQ(back.dims[1].points, 1);
}

TEST_F(NativeFileTest, HeaderCommand) {
    session.header_type = 3;
    EXPECT_EQ(run("header ?"), 2);
    EXPECT_EQ(platform_.replies.back(), " - Current header version is 3");
    run("header 2");
    EXPECT_EQ(platform_.replies.back(), "  - Header Version set to 2");
    run("header length");
    EXPECT_EQ(platform_.replies.back(), " - Header length is 4104");
    EXPECT_EQ(run("header 4"), 2);
    EXPECT_EQ(platform_.replies.back(), " - Error setting Header Version.  Set to default of 3");
    EXPECT_EQ(session.header_type, 3);
}

}  // namespace
}  // namespace zolt
