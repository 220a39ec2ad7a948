// Native files of types 1 and 2: every field back unchanged, both byte orders, the tailer, and what is refused.
#include "datafile/header.h"
#include "datafile/native_file.h"
#include "datafile/tailer.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::sample_points;

class NativeFileTest : public test::CommandTest {
protected:
    NativeFileTest() { session.header_type = 2; }

    /// A data set in which every field that a full header carries has a value of its own.
    static DataSet full_data_set(size_t points) {
        DataSet data;
        const auto values = sample_points(points, 5);
        EXPECT_TRUE(data.store.allocate(1, points));
        std::copy(values.begin(), values.end(), data.store.all().begin());
        for (int d = 0; d < 4; ++d) {
            const auto x = static_cast<float>(d);
            const std::array<float, 5> carried = {x + 2.5F, x + 3.5F, x + 4.5F, x + 5.5F, x + 6.5F};
            data.dims[d] = {1, 400.13F + x, 5000.5F - x, -250.25F * x, d % 3, d % 2 == 0, 1 + d % 3, {}, "", 4 - d, 1, carried};
        }
        data.dims[0].points = static_cast<int32_t>(points);
        data.words = {0x1234567, -77, 31415, 4321, -8765, 0, 2.625F, {}};
        for (size_t p = 0; p < 64; ++p) data.words.parameter_block[p] = static_cast<uint32_t>(p * 0x01010101U + 7);
        data.scans = 640;
        data.experiment = "cosygp";
        data.user = "Lise Meitner, Kaiser Wilhelm Institutes of Berlin";
        data.date = "1 Jan 1939";
        data.comment = "A comment, with = and blanks";
        return data;
    }
    std::string written(const DataSet& data) const {
        EXPECT_TRUE(FileWrite(root_.path("a.nat"), data));
        return test::read_file(root_.path("a.nat"));
    }
    static std::string patched(std::string bytes, const std::vector<std::pair<size_t, int32_t>>& words) {
        for (const auto& [offset, value] : words) store_word(bytes.data() + offset, value, ByteOrder::little);
        return bytes;
    }
    bool reads(const std::string& bytes, DataSet& back) { return FileRead(root_.write("b.nat", bytes), back); }
    /// What comes back is what was written, but for what the reader itself sets.
    static void expect_same(DataSet& back, const DataSet& data) {
        DataRecord want = data;
        want.file_a = back.file_a;
        want.path = back.path;
        want.words.write_stamp = back.words.write_stamp;
        want.loaded = true;
        EXPECT_TRUE(back == want);
        EXPECT_TRUE(std::equal(data.store.all().begin(), data.store.all().end(), back.store.all().begin(), back.store.all().end()));
    }
};

TEST_F(NativeFileTest, EveryFieldStandsInItsPlaceInBothByteOrders) {
    const DataSet data = full_data_set(33);
    for (const ByteOrder order : {ByteOrder::little, ByteOrder::big}) {
        session.byte_order = order == ByteOrder::little ? 1 : 2;
        const std::string bytes = written(data);
        const auto stand = [&, at = bytes.data()](size_t offset, const auto& values) {
            for (size_t i = 0; i < values.size(); ++i)
                EXPECT_EQ(load_word<std::decay_t<decltype(values[0])>>(at + offset + 4 * i, order), values[i]) << offset + 4 * i;
        };
        stand(0, std::array{0x04030201, 1024, 1, 0, 2, 0x1234567});
        stand(32, std::array{1});
        stand(80, data.words.parameter_block);
        stand(384, std::array{33, 0, 1, 1, 4321, -8765, 4});
        stand(448, std::array{5000.5F, 400.13F, 0.0F, 2.5F, 3.5F, 4.5F, 5.5F, 6.5F});
        stand(864, std::array{1, 0, 0, 1, 4321, -8765, 1});
        stand(928, std::array{data.dims[3].sw, data.dims[3].sf, -750.75F, 5.5F, 6.5F, 7.5F, 8.5F, 9.5F});
        stand(1024, std::array{-77, 640, 0x40280000, 31415});  // the third is 2.625
        stand(4104, std::array{data.store.vector(0)[0].real(), data.store.vector(0)[0].imag()});
        EXPECT_STREQ(bytes.data() + 1040, "cosygp");
        EXPECT_STREQ(bytes.data() + 1160, "Lise Meitner, Kaiser Wilhelm Institutes");
        EXPECT_STREQ(bytes.data() + 1200, "1 Jan 1939");
        EXPECT_STREQ(bytes.data() + 1240, "A comment, with = and blanks");
        EXPECT_EQ(bytes.find("INFORMATION"), 4104U + 33 * 8);
        EXPECT_EQ(classify_file(root_.path("a.nat")), order == ByteOrder::little ? FileClass::native : FileClass::swapped_native);
        DataSet back;
        ASSERT_TRUE(reads(bytes, back)) << platform_.said();
        expect_same(back, data);
    }
}

TEST_F(NativeFileTest, TypeOneHasACountWordAndItsOwnTexts) {
    session.header_type = 1;
    DataSet data = full_data_set(16);
    const std::string bytes = written(data).substr(0, 1032 + 4 + 16 * 8);
    EXPECT_EQ(load_word<int32_t>(bytes.data() + 1032, ByteOrder::little), 32);
    data.comment = "Read in a short header file (<256 words).";
    data.experiment = "No Experiment listed in imported data header";
    data.user = data.date = "";
    data.words.c = 0;
    data.words.acquisition_value = 0;
    for (const int type : {1, 0, 7}) {  // types out of range are read as type 1
        DataSet back;
        ASSERT_TRUE(reads(patched(bytes, {{16, type}}), back));
        expect_same(back, data);
    }
}

TEST_F(NativeFileTest, CutAndAbsurdFilesAreRefusedAndTheRecordIsKept) {
    const std::string bytes = written(full_data_set(64)), without_tailer = bytes.substr(0, full_header_bytes + 64 * 8);
    const auto refused_bytes = [&](const std::string& content, const std::string& name) {
        DataSet back;
        back.comment = "as before";
        platform_.forget();
        EXPECT_FALSE(reads(content, back)) << name;
        EXPECT_TRUE(back.comment == "as before" && platform_.messages.size() == 1) << name;
    };
    for (size_t k = 0; k < 40; ++k) refused_bytes(bytes.substr(0, (without_tailer.size() - 1) * k / 39), "cut");
    for (const int32_t points : {0, -1, 65, 0x7fffffff, -0x7fffffff - 1})
        refused_bytes(patched(without_tailer, {{384, points}}), "points");
    for (const int32_t length : {-1, 0, 1023, 0x7fffffff}) refused_bytes(patched(bytes, {{4, length}}), "length");
    refused_bytes(std::string(5000, '\0'), "zeros");
    DataSet back;
    for (const std::string& path : {std::string("/dev/zero"), root_.path(), root_.path("none")}) EXPECT_FALSE(FileRead(path, back));
    EXPECT_TRUE(said("not found.\nIn Module FILE function FileRead\nSpelled correctly?\nPath correct?\nDoes the file exist?"));

    // Odd entries are read: order entries out of range as the identity, any domain but 1 as time, no slices as one.
    ASSERT_TRUE(reads(patched(bytes, {{408, 0}, {568, 5}, {392, 2}, {544, 0}}), back));
    EXPECT_TRUE(back.dims[0].order == 1 && back.dims[1].order == 2 && !back.dims[0].frequency && back.dims[1].points == 1);
    for (size_t i = 0; i < 1100; ++i) {
        std::string bad = bytes;
        bad[i] = static_cast<char>(bad[i] ^ (1 << (i % 8)));
        DataSet flipped;
        EXPECT_TRUE(!reads(bad, flipped) || flipped.pts1d() <= 100) << i;
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
        "INFORMATION\r\nUser=Lise Meitner, Kaiser Wilhelm Institutes of Berlin\r\nDate=1 Jan 1939\r\n"
        "Name1=n1\r\nName2=\r\nName3=n3\r\n"
        "Comment=A comment, with = and blanks\r\nFormula=C2H6O\r\nNucleus=1H, n/a, 15N, n/a\r\nPath=/data/x\r\nEND_INFORMATION\r\n";
    EXPECT_EQ(tailer_text(data), plain + "END_TAILER\r\n");
    data.dims[0].sense = -1;
    data.group_delay = 6.7984207153320302;
    const std::string state = "FID_STATE\r\nSENSE=-1, 1, 1, 1\r\nGROUP_DELAY=6.7984207153320302\r\nEND_FID_STATE\r\n";
    EXPECT_EQ(tailer_text(data), plain + state + "END_TAILER\r\n");
    DataSet back;
    ASSERT_TRUE(reads(written(data), back));
    expect_same(back, data);
    EXPECT_EQ(back.path, "/data/x");

    DataSet odd;
    odd.user = "kept";
    read_tailer("\nFUTURE\nUser=no\nEND_FUTURE\n\r\ninformation\nNAME2=second\nColour=blue\nUser\nEND_TAILER\nUser=no\n", odd);
    EXPECT_EQ(odd.user + odd.names[1], "keptsecond");
    odd.dims[0].points = 100;
    for (const char* delay : {"-5", "nan", "1e300", "101", "x"}) {
        odd.group_delay = 1;
        read_tailer(std::string("FID_STATE\nGROUP_DELAY=") + delay, odd);
        EXPECT_EQ(odd.group_delay, 0) << delay;
    }
}

TEST_F(NativeFileTest, SaveBecomesFileAAndAsksBeforeItReplaces) {
    const auto points = sample_points(16);
    load(points);
    show.changed = true;
    const std::string target = root_.path("saved.zolt"), other = root_.write("other", "precious");
    ASSERT_EQ(run("SA " + target), 1) << platform_.said();
    EXPECT_TRUE(show.file_a == target && !show.changed);
    show.changed = true;
    refused("SA " + target,
            "Slected name has the same name as File A.\nProceeding saves the entire 2D data set\nAre you REALLY sure?\n\n");
    refused("SA " + other, "");
    platform_.default_answer = Answer::yes;
    refused("SA no/folder/x", "x\nfor writing!\n Error Code 2");
    settings.no_file_overwrite = true;
    refused("SA " + target, "System configured to prevent Overwriting of existing files.");
    settings.no_file_overwrite = false;
    EXPECT_EQ(run("SA " + other), 1);

    // One slice of a larger set never replaces the whole file, and is saved as one-dimensional.
    show.dims[1].points = 5;
    refused("SA " + other, "The displayed slice would replace the whole file");
    ASSERT_EQ(run("SA slice"), 1) << platform_.said();
    EXPECT_TRUE(show.file_a == other && show.dims[1].points == 5) << "the data set keeps its dimensions";
    DataSet back;
    ASSERT_TRUE(FileRead(root_.path("slice"), back));
    EXPECT_EQ(back.dims[1].points, 1);
    EXPECT_TRUE(std::equal(points.begin(), points.end(), back.store.all().begin()));
}

TEST_F(NativeFileTest, HeaderCommand) {
    for (const auto& [line, reply, result] : {std::tuple("header ?", " - Current header version is 2", 2),
                                              {"header 1", "  - Header Version set to 1", 1},
                                              {"header length", " - Header length is 1032", 2},
                                              {"header 4", " - Error setting Header Version.  Set to default of 3", 2}}) {
        EXPECT_EQ(run(line), result) << line;
        EXPECT_EQ(platform_.replies.back(), reply);
    }
    EXPECT_EQ(session.header_type, 3);
}

}  // namespace
}  // namespace zolt
