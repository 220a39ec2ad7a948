// The text sections of native files: what is written stands in its columns and comes back, in every header type.
#include <gtest/gtest.h>

#include "common/text.h"
#include "datafile/integrals.h"
#include "datafile/peaklist.h"
#include "datafile/sections.h"
#include "datafile/tailer.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;

class SectionsTest : public CommandTest {
protected:
    SectionsTest() { platform_.default_answer = Answer::yes; }

    /// Annotations of every kind on 16 points (SF 400, SW 5000, offset 100).
    static void annotate(DataSet& data) {
        data.dims[0].sf = 400;
        data.dims[0].sw = 5000;
        data.dims[0].offset = 100;
        data.dims[0].frequency = true;
        data.user = "Ada";
        data.integrals = {{2, 5, 1.5F, 3}, {7, 15, -20.25F, -1}};
        data.rel_value = 2;
        const Axis axis = data.dims[0].axis();
        for (const double point : {3.0, 9.5}) {
            Peak peak{point, axis.hz(point), axis.ppm(point), 100 * point,
                      "H-" + std::to_string(static_cast<int>(point)) + ", a=b"};
            peak.offset_x = 12;
            peak.offset_y = -7;
            peak.horizontal = point > 5 ? 1 : 0;
            data.peaks.push_back(peak);
        }
        data.meta_objects = {{"/objects/my molecule.mol", 1, 10, 20, 30, 40, 0.5, -0.25, 1.75, 2}};
        data.notes = {{Note::Unit::ppm, 3.25, -0.5, true, "H-3 = a, b"},
                      {Note::Unit::seconds, 1e-3, 2.5e6, false, "NOTE END_NOTES"}};
        data.command_log = {"LB 1\r\nFT\r\n"};
        DataBuffer buffer;
        buffer.number = 2;
        buffer.comment = "before = raw";
        buffer.sf = 400;
        buffer.start_ppm = 6.5000001;
        buffer.ppm_per_point = -0.25;
        buffer.color = {1, 2, 3};
        buffer.shown = false;
        buffer.points = test::sample_points(11, 5);
        buffer.promised_points = 11;
        data.buffers = {buffer};
    }
};

TEST_F(SectionsTest, EverythingComesBackInEveryHeaderType) {
    DataSet want;
    annotate(want);
    for (const int type : {1, 2, 3}) {
        session.header_type = type;
        for (const int slices : {1, 3}) {
            const auto points = write_set("a.nat", {16, slices, 1, 1}, annotate);
            ASSERT_EQ(run("GA a.nat"), 1) << platform_.said();
            EXPECT_EQ(show.user, "Ada");
            ASSERT_EQ(show.integrals.size(), 2U);
            EXPECT_EQ(show.integrals[1], (Integral{7, 15, -20.25F, -1})) << "shown as it was";
            EXPECT_EQ(show.rel_value, 2);
            ASSERT_EQ(show.peaks.size(), 2U) << type;
            for (const size_t i : {0, 1}) {
                EXPECT_NEAR(show.peaks[i].point, want.peaks[i].point, 1e-4);
                EXPECT_EQ(show.peaks[i].intensity, want.peaks[i].intensity);
                EXPECT_EQ(show.peaks[i].label, want.peaks[i].label);
                EXPECT_EQ(show.peaks[i].horizontal, want.peaks[i].horizontal);
                EXPECT_EQ(show.peaks[i].offset_y, -7);
            }
            EXPECT_EQ(show.meta_objects, want.meta_objects);
            EXPECT_EQ(show.notes, want.notes);
            EXPECT_EQ(show.command_log.text, want.command_log.text);
            EXPECT_EQ(show.buffers, want.buffers);
            EXPECT_EQ(data(), std::vector<Complex>(points.begin(), points.begin() + 16));
            // The slices of the buffers are none of the data set.
            ASSERT_EQ(run("AR on"), 1) << platform_.said();
            EXPECT_EQ(show.store.count(), static_cast<size_t>(slices));
            ASSERT_EQ(run("SA b.nat"), 1) << platform_.said();
            EXPECT_EQ(show.buffers, want.buffers);
            ASSERT_EQ(run("AR off"), 1) << platform_.said();
            EXPECT_EQ(points_of("b.nat"), points);
        }
    }
}

TEST_F(SectionsTest, LinesStandInTheirColumns) {
    DataSet data;
    data.dims[0].points = 16;
    annotate(data);
    EXPECT_EQ(integrals_section(data, false),
              "INTEGRALS\r\nREL_VALUE = 2.000000e+00\r\n"
              "START_PT  START_PPM END_PT  END_PPM         VALUE  LABEL POSITION\r\n"
              "     2    4.833     5    2.333       3.000000  3\r\n"
              "     7    0.667    15   -6.000     -40.500000 -1\r\nEND_INTEGRALS\r\n");
    EXPECT_TRUE(integrals_section(data, true)
                    .starts_with("##$INTEGRALS\r\n##$REL_VALUE = 2.000000e+00\r\n"
                                 "##$START_PT  START_PPM END_PT  END_PPM         VALUE  LABEL POSITION\r\n"
                                 "##$ID\t     1\t    4.833\t     5\t    2.333\t       3.000000\t  3\t2\r\n"));
    EXPECT_TRUE(
        peaklist_section(data, false)
            .starts_with("PEAKLIST\r\nLINE         HZ        PPM   INTENSITY    REL_INT     XOFFSET     YOFFSET   HorV  LABEL\r\n"
                         "  1    1600.000      4.000      300.00     31.579          12          -7      0  H-3, a=b\r\n"));
    EXPECT_TRUE(peak_listing(data).starts_with("1D\r\nPEAK   PPM   REL_INT   LABEL\r\n  1      4.000     31.579  H-3, a=b\r\n"));
    // Peaks of a 2D spectrum have columns, marks and a listing of their own.
    data.dims[1].points = 8;
    data.dims[1].sw = 1000;
    for (Peak& peak : data.peaks) peak.point_2 = 2;
    EXPECT_NE(peaklist_section(data, true).find("\r\n##$LINE        PPM1       PPM2  INTENSITY       AREA"), std::string::npos);
    EXPECT_NE(peak_listing(data).find("No SF2"), std::string::npos);
    for (const bool prefixed : {false, true}) {
        DataRecord read = data;
        read.peaks.clear();
        SectionReader reader(read);
        std::string text = peaklist_section(data, prefixed);
        std::string_view rest = text;
        for (std::string_view line; take_line(rest, line);) EXPECT_TRUE(reader.take(line));
        ASSERT_EQ(read.peaks.size(), 2U);
        EXPECT_NEAR(read.peaks[1].point, 9.5, 1e-2);
        EXPECT_NEAR(read.peaks[1].point_2, 2, 1e-4);
    }
}

TEST_F(SectionsTest, ReadersTakeWhatOthersWrite) {
    DataRecord data;
    data.dims[0].points = 1000;
    data.dims[0].sw = 4000;
    data.dims[0].sf = 400;
    const Axis axis = data.dims[0].axis();
    const auto read = [&](const std::string& text) {
        data.integrals.clear();
        data.peaks.clear();
        data.meta_objects.clear();
        read_tailer(text, data);
    };
    // Fields that have run together are cut by their widths; the ppm column tells a region's number from its start.
    read("integrals\n123456-1234.567123457-1234.568-1234567.123456 12\nend_integrals\n");
    ASSERT_EQ(data.integrals.size(), 1U);
    EXPECT_EQ(data.integrals[0], (Integral{123456, 123457, -1234567.125F, 12}));
    read(format_text("##$INTEGRALS\r\n##$ID\t%6d\t%9.3f\t%6d\t%9.3f\t%15.6f\t%3d\t%d\r\n", 600, axis.ppm(600), 700, axis.ppm(700),
                     4.5, 2, 1));
    ASSERT_EQ(data.integrals.size(), 1U);
    EXPECT_EQ(data.integrals[0], (Integral{600, 700, 4.5F, 2}));
    read(
        "PEAKLIST\r\nZOLT\r\nLINE HZ PPM\r\n1,1000.5,2.5,77\r\nnonsense\r\nEND_PEAKLIST\r\nMO_LIST\r\nFileName\r\na b.mol\r\n 1 "
        "2\r\n2001\r\n");
    ASSERT_EQ(data.peaks.size(), 1U);
    EXPECT_EQ(data.peaks[0].intensity, 77);
    ASSERT_EQ(data.meta_objects.size(), 2U) << "a name may be a number; missing columns are 0";
    EXPECT_EQ(data.meta_objects[0].screen_x, 2);
    EXPECT_EQ(data.meta_objects[1].file, "2001");
    // A description whose slice the file does not hold is no buffer, and costs no memory.
    root_.write("x", "");
    write_set("lies.nat", {4, 1, 1, 1}, [](DataSet& set) {
        set.buffers = {DataBuffer()};
        set.buffers[0].number = 1;
    });
    std::string bytes = test::read_file(root_.path("lies.nat"));
    bytes.replace(bytes.find("=pts=0\r\n"), 8, "=pts=2000000000\r\n");
    root_.write("lies.nat", bytes);
    ASSERT_EQ(run("GA lies.nat"), 1);
    EXPECT_TRUE(show.buffers.empty());
}

// Sections of very many lines, as only a damaged or malicious file has them, in the order that is worst for
// a list kept sorted: read with a few looks at each line, in order, and the history cut to its last part.
TEST_F(SectionsTest, LongSectionsAreReadInOnePass) {
    constexpr int lines = 60000;
    std::string text = "INTEGRALS\r\n";
    for (int i = lines; i > 0; --i) text += format_text("%6d    1.000%6d    1.000%15.6f%3d\r\n", i, i + 3, 1.0, 1);
    text += "END_INTEGRALS\r\nCMD_LOG\r\n";
    for (int i = 0; i < 5 * lines; ++i) text += "a\r\n";
    text += "the last\r\nEND_CMD_LOG\r\n";
    DataRecord data;
    read_tailer(text, data);
    ASSERT_EQ(data.integrals.size(), size_t{lines});
    EXPECT_EQ(data.integrals.front().start, 1);
    EXPECT_EQ(data.integrals.back().start, lines);
    EXPECT_TRUE(data.command_log.text.ends_with("a\r\nthe last\r\n"));
    EXPECT_LE(data.command_log.text.size(), size_t{600} << 10);
    // Regions of everything would be summed over and over: few are kept.
    text = "INTEGRALS\r\n";
    for (int i = 0; i < lines; ++i) text += format_text("%6d    1.000%6d    1.000%15.6f%3d\r\n", 0, 65535, 1.0, 1);
    DataRecord wide;
    wide.dims[0].points = 65536;
    read_tailer(text + "END_INTEGRALS\r\n", wide);
    EXPECT_EQ(wide.integrals.size(), 256U);
    // Behind points that describe a buffer, text that begins again and again is given up.
    write_set("again.nat", {16, 1, 1, 1});
    std::string bytes = test::read_file(root_.path("again.nat")) + "##$BUFFER=1=pts=3\r\n";
    for (int i = 0; i < lines; ++i) bytes += "INFORMATION\r\n";
    root_.write("again.nat", bytes + "END_TAILER\r\n");
    ASSERT_EQ(run("GA again.nat"), 1);
    EXPECT_EQ(show.pts1d(), 16);
}

TEST_F(SectionsTest, UnknownSectionsSurviveARewrittenHeaderAndTheTailerCanBeExported) {
    session.header_type = 2;
    write_set("a.nat", {16, 2, 1, 1}, annotate);
    std::string bytes = test::read_file(root_.path("a.nat"));
    bytes.insert(bytes.find("PEAKLIST"), "FUTURE\r\nx=1\r\nEND_FUTURE\r\n");
    root_.write("a.nat", bytes);
    ASSERT_EQ(run("GA a.nat"), 1);
    show.peaks.clear();
    show.user = "Grace";
    ASSERT_EQ(run("UH"), 1) << platform_.said();
    ASSERT_EQ(run("TailerExport"), 1) << platform_.said();
    const std::string tailer = test::read_file(root_.path("a.tlr"));
    EXPECT_TRUE(test::read_file(root_.path("a.nat")).ends_with(tailer));
    EXPECT_TRUE(tailer.starts_with("INFORMATION\r\nUser=Grace\r\n")) << tailer;
    EXPECT_TRUE(tailer.ends_with("FUTURE\r\nx=1\r\nEND_FUTURE\r\nEND_TAILER\r\n")) << tailer;
    EXPECT_EQ(tailer.find("PEAKLIST"), std::string::npos);
    EXPECT_EQ(tailer.find("INTEGRALS"), tailer.rfind("\r\nINTEGRALS") + 2) << "one section of a kind";
    settings.no_file_overwrite = true;
    refused("TailerExport", "System configured to prevent Overwriting of existing files.");
    session.header_type = 3;
    settings.no_file_overwrite = false;
    write_set("b.nat", {16, 1, 1, 1});
    ASSERT_EQ(run("GA b.nat"), 1);
    refused("TailerExport", "No tailers used with header type 3");
}

}  // namespace
}  // namespace zolt
