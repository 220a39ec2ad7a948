// Pictures of one-dimensional data, read as records: ticks, trace, axis direction, texts; SVG; the command metafile.
#include <algorithm>
#include <cmath>
#include <limits>

#include "display/lettering.h"
#include "display/plot_1d.h"
#include "display/svg.h"
#include "display/ticks.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();

DataSet one_vector(const std::vector<float>& reals, bool frequency = true, int unit = unit_ppm, float sf = 400, float sw = 4000) {
    DataSet data;
    EXPECT_TRUE(data.store.allocate(1, reals.size()));
    for (size_t i = 0; i < reals.size(); ++i) data.store.vector(0)[i] = {reals[i], 1e9F};
    data.dims[0] = {static_cast<int32_t>(reals.size()), sf, sw, 0, domain_complex, frequency, unit, {}, "1H", 1, 1, {}};
    return data;
}

// A picture, its records by their kinds.
struct Drawn : Picture {
    std::vector<Text> texts;
    std::vector<std::vector<Point>> strokes, traces;

    explicit Drawn(const DataSet& data, const PlotOptions& options = {}) : Picture(plot_1d(data, options)) {
        for (const PictureRecord& record : records) {
            if (const Text* text = std::get_if<Text>(&record)) texts.push_back(*text);
            if (const Stroke* stroke = std::get_if<Stroke>(&record))
                (stroke->ink == Ink::real_trace ? traces : strokes).push_back(stroke->points);
        }
    }
    double place_of(const std::string& words) const {
        const auto found = std::find_if(texts.begin(), texts.end(), [&](const Text& text) { return text.text == words; });
        return found == texts.end() ? nan : found->at.x;
    }
};

// No text leaves the sheet and no two of one line touch; every coordinate is a number on the sheet.
void expect_tidy(const Drawn& picture, const std::string& what) {
    std::vector<std::array<double, 3>> spans;
    for (const Text& text : picture.texts) {
        const double width = text_width(text.text, text.size), y = text.at.y;
        const double left = text.at.x - (text.anchor == Anchor::start ? 0 : text.anchor == Anchor::middle ? width / 2 : width);
        EXPECT_TRUE(left >= 0 && left + width <= picture.width) << what << ": " << text.text << " is cut";
        for (const auto& [from, to, line] : spans) EXPECT_TRUE(line != y || left > to || left + width < from) << what << text.text;
        spans.push_back({left, left + width, y});
    }
    for (const auto& lines : {picture.strokes, picture.traces})
        for (const auto& line : lines)
            for (const auto [x, y] : line) ASSERT_TRUE(x >= 0 && x <= picture.width && y >= 0 && y <= picture.height) << what;
}

TEST(Ticks, LabelsAndCounts) {
    // Tenths between steps of 1 and 2, fifths between steps of 5.
    const std::tuple<double, double, double, size_t, const char*> rows[] = {
        {10, -1, 1000, 111, "\u22121 0 1 2 3 4 5 6 7 8 9 10 "},  // either direction, both ends included
        {-20, 220, 700, 121, "\u221220 0 20 40 60 80 100 120 140 160 180 200 220 "},
        {3.05, -0.05, 400, 31, "0.0 0.5 1.0 1.5 2.0 2.5 3.0 "},
        {0, 50, 800, 51, "0 5 10 15 20 25 30 35 40 45 50 "},
        {0, 65535, 500, 66, "0 10000 20000 30000 40000 50000 60000 "},
        {-0.05, 0.05, 700, 101, "\u22120.05 \u22120.04 \u22120.03 \u22120.02 \u22120.01 0.00 0.01 0.02 0.03 0.04 0.05 "},
        {7.26, 7.2601, 400, 51, "7.26000 7.26002 7.26004 7.26006 7.26008 7.26010 "},
        {0, 3e-12, 300, 31, "0 1e-12 2e-12 3e-12 "},
        {0, 4e8, 300, 21, "0 200000000 400000000 "},
        {0, 4e12, 300, 41, "0 1e12 2e12 3e12 4e12 "}};
    for (const auto& [from, to, length, count, want] : rows) {
        std::string labels;
        const auto ticks = axis_ticks(from, to, length, 12);
        ASSERT_EQ(ticks.size(), count) << want;
        for (const Tick& tick : ticks) labels += tick.major ? tick.label + " " : "";
        for (size_t i = 2; i < count; ++i)
            EXPECT_NEAR((ticks[i].value - ticks[i - 1].value) / (ticks[1].value - ticks[0].value), 1, 1e-6) << want;
        EXPECT_EQ(labels, want);
    }
    for (const double end : {nan, inf, -inf, 1e300, 5.0, 5 + 1e-14}) EXPECT_TRUE(axis_ticks(5, end, 500, 12).empty()) << end;
    EXPECT_TRUE(axis_ticks(0, 10, 0, 12).empty());
}

TEST(Plot, DecimationKeepsExtremesEndsAndOrder) {
    std::vector<float> reals(100000);
    for (size_t i = 0; i < reals.size(); ++i) reals[i] = 0.01F * static_cast<float>(i * 7919 % 13) - 0.05F;
    // Both ends, and one point each somewhere within a column.
    const std::pair<size_t, float> marks[] = {{0, 2.0F}, {40003, 10.0F}, {70001, -1.0F}, {99999, 3.0F}};
    for (const auto& [at, value] : marks) reals[at] = value;
    const auto line = Drawn(one_vector(reals), {1000, 600, 1, true}).traces.at(0);
    EXPECT_LE(line.size(), 4000U);
    EXPECT_TRUE(std::is_sorted(line.begin(), line.end(), [](Point a, Point b) { return a.x < b.x; }));
    for (const auto& [at, value] : marks) {
        const double x = line.front().x + (line.back().x - line.front().x) * static_cast<double>(at) / 99999,
                     y = 560 * (0.875 - 0.0775 * value);
        EXPECT_TRUE(std::any_of(line.begin(), line.end(), [&](Point p) { return std::hypot(p.x - x, p.y - y) < 1e-6; })) << at;
    }
}

TEST(Plot, WhereTheBaselineLies) {
    const std::tuple<std::vector<float>, bool, size_t, std::vector<double>> rows[] = {
        {{0, 2, 0}, true, 1, {0.875, 0.1, 0.875}},
        {{0, 1, 0}, false, 1, {0.5, 0.1, 0.5}},
        {{0, -1, 0.5F}, false, 1, {0.5, 0.9, 0.3}},
        {{0, -2, 2}, true, 2, {0.875, 1, 1, 0.1}},   // deep negative parts end at the axis, on either side of the gap
        {{0, -2, 0}, true, 1, {0.125, 0.9, 0.125}},  // upside down: all of it
        {{0, 0, 0}, true, 1, {0.875, 0.875, 0.875}}};
    for (const auto& [reals, frequency, lines, want] : rows) {
        std::vector<Point> points;
        const auto traces = Drawn(one_vector(reals, frequency), {800, 640, 1, true}).traces;
        for (const auto& trace : traces) points.insert(points.end(), trace.begin(), trace.end());
        ASSERT_TRUE(traces.size() == lines && points.size() == want.size());
        for (size_t i = 0; i < want.size(); ++i)
            EXPECT_NEAR(points[i].y / 600, want[i], 1e-6) << i;  // the axis stands 40 above the edge
    }
}

TEST(Plot, AxisUnitsAndDirections) {
    const std::tuple<bool, int, float, float, const char*, const char*, const char*> rows[] = {
        {true, unit_ppm, 400, 4000, "4", "\u22124", "ppm"},      {true, unit_hz, 400, 5000, "2000", "\u22122000", "Hz"},
        {true, unit_ppm, 0, 5000, "2000", "\u22122000", "Hz"},   {true, unit_ppm, 400, 0, "100", "900", "points"},
        {true, unit_ppm, 400, INFINITY, "100", "900", "points"}, {true, unit_points, 400, 4000, "100", "900", "points"},
        {false, unit_ppm, 400, 1000, "0.1", "0.9", "s"},         {false, unit_hz, 0, 0, "100", "900", "points"}};
    for (const auto& [frequency, unit, sf, sw, left, right, name] : rows) {
        const Drawn picture(one_vector(std::vector<float>(1001, 1.0F), frequency, unit, sf, sw), {1100, 620, 1, true});
        EXPECT_NEAR(picture.place_of(left), picture.traces[0].at(100).x, 1e-6) << left << name;
        EXPECT_NEAR(picture.place_of(right), picture.traces[0].at(900).x, 1e-6) << right << name;
        EXPECT_LT(picture.place_of(right), picture.place_of(name)) << right << name;
        expect_tidy(picture, name);
    }
    // A shift is read off where its point is drawn; the offset moves the axis, not the trace.
    DataSet data = one_vector(std::vector<float>(1001, 0.0F));
    data.dims[0].offset = 2000;
    const Drawn picture(data);  // point 250 stands at 7.5 ppm
    EXPECT_NEAR(picture.traces[0].at(250).x, (picture.place_of("7") + picture.place_of("8")) / 2, 0.1);
    data.dims[0].axis_unit = unit_none;
    EXPECT_EQ(Drawn(data).texts.size(), 1U) << "more than the heading";
}

TEST(Plot, OddInputsStayOnTheSheet) {
    const std::vector<std::vector<float>> vectors = {{},   {1, 2}, {1e-45F, 0},     {1, NAN, 2, -INFINITY},
                                                     {1},  {NAN},  {3e38F, -3e38F}, {NAN, INFINITY},
                                                     {-1}, {0, 0}, {-3e38F, 1e-45F}};
    for (size_t i = 0; i < vectors.size(); ++i)
        for (const bool frequency : {true, false})
            for (const auto& [width, height] :
                 {std::pair{1100.0, 620.0}, {300.0, 200.0}, {100.0, 100.0}, {16.0, 16.0}, {nan, -5.0}})
                expect_tidy(Drawn(one_vector(vectors[i], frequency), {width, height, 1, true}), "vector " + std::to_string(i));
    // A gap breaks the line; a point without neighbours becomes a dot.
    const auto traces = Drawn(one_vector({1, NAN, 2, 3, INFINITY, 4})).traces;
    EXPECT_TRUE(traces.size() == 3 && traces[0].size() == 2 && traces[0][0].x == traces[0][1].x && traces[2][0].y < traces[1][1].y);
}

TEST(Plot, Heading) {
    DataSet data = one_vector({0, 1, 0}, true, unit_ppm, 400.1324F);
    data.solvent = "CDCl3";
    data.file_a = "/folder/sample.zolt";
    const char* details = "\u00b9H \u00b7 400.13 MHz \u00b7 CDCl3";
    EXPECT_EQ(Drawn(data).title, "sample.zolt");
    data.comment = " second run, , \r\nmore";
    data.experiment = "zg30";
    EXPECT_EQ(Drawn(data).title, "zg30 \u00b7 second run");
    data.title = "\r\n  \r\nTitle\tline\r\nnext";
    EXPECT_EQ(Drawn(data).title, "Title line");
    EXPECT_GT(Drawn(data).place_of(details), 0);
    EXPECT_TRUE(std::isnan(Drawn(data, {1100, 620, 1, false}).place_of(details)));
    for (const char* letters : {"W", "i ", "\u00e9", "\u6f22", "\xff"})
        for (const double width : {1100.0, 400.0, 120.0}) {
            for (data.title = letters; data.title.size() < 600;) data.title += letters;
            const Drawn picture(data, {width, 300, 1, true});
            expect_tidy(picture, letters);
            EXPECT_TRUE(width < 200 || picture.texts.end()[-2].text.ends_with("\u2026")) << letters;
        }
}

TEST(Lettering, RoomIsotopesAndBytes) {
    for (double room = 0; room < 200; room += 5)
        EXPECT_LE(text_width(shortened("Menthol, 30 mg in C6D6 at 298 K", 12, room), 12), room);
    EXPECT_EQ(shortened("Menthol", 12, 10), "") << "an ellipsis alone says nothing";
    std::string names, lines;
    for (const char* name : {"1H", "13C", "C13", "195Pt", "", "off", "12", "1H2", "2-D", "1000H", "1Abc"})
        names += isotope_name(name) + "|";
    EXPECT_EQ(names, "\u00b9H|\u00b9\u00b3C|\u00b9\u00b3C|\u00b9\u2079\u2075Pt||off|12|1H2|2-D|1000H|1Abc|");
    // Valid text comes back unchanged, every wrong byte as one replacement.
    for (const char* bytes :
         {"a\u00e9\u20ac\U0001F600", "\xC3", "\xE2\x82z", "\xC0\xAF", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF8x"})
        lines += display_line(bytes) + "|";
    for (size_t at = 0; (at = lines.find("\uFFFD", at)) != std::string::npos;) lines.replace(at, 3, "?");
    EXPECT_EQ(lines, "a\u00e9\u20ac\U0001F600|?|??z|??|???|???|????|?x|");
}

TEST(Svg, DocumentAndEscaping) {
    Picture picture{100.5, 50, "<a> & \"b\"", {}};
    picture.records = {Fill{{{0, 0}, {100, 0}, {100, 50}}, Ink::background},
                       Stroke{{{0.004, -0.005}, {-1.999, 12.345}, {nan, 1e300}}, Ink::axis, 1, false},
                       Stroke{{{1, 2}, {3, 4}}, Ink::axis, 1, false},
                       Stroke{{{5, 6}, {7, 8}}, Ink::real_trace, 1.2, false},
                       Stroke{{{1, 2}, {3, 4}}, Ink::real_trace, 1.2, true},
                       Text{{10, 20}, "1 < 2\x01\t\xff\uFFFE]]>", Ink::text, 9, Anchor::middle, 90, true}};
    const std::string svg = svg_text(picture, light_palette);
    for (const char* part :
         {"width=\"100.5\" height=\"50\" viewBox=\"0 0 100.5 50\"", "<title>&lt;a&gt; &amp; &quot;b&quot;</title>",
          "<path fill=\"#ffffff\" d=\"M0 0L100 0L100 50Z\"/>",
          "stroke=\"#3c4450\" stroke-width=\"1\" d=\"M0 -0.01L-2 12.35L0 1000000000M1 2L3 4\"/>",
          "stroke=\"#15467f\" stroke-width=\"1.2\" stroke-linecap=\"round\" d=\"M1 2L3 4\"/>",
          "text-anchor=\"middle\" font-weight=\"bold\" transform=\"rotate(-90 10 20)\">1 &lt; 2\uFFFD \uFFFD\uFFFD]]&gt;</text>"})
        EXPECT_NE(svg.find(part), std::string::npos) << part << "\n" << svg;
}

class MetafileTest : public test::CommandTest {};

TEST_F(MetafileTest, WritesThePicture) {
    load(test::sample_points(256), domain_complex, true);
    platform_.answers = {root_.path("c.svg")};
    for (const auto& [line, file, size] : {std::array{"metafile a.SVG 300 200", "a.SVG", "0 0 300 200"},
                                           {"metafile a.SVG", "a.SVG", "0 0 1100 620"},  // replaced without a question
                                           {"metafile b", "b.svg", "0 0 1100 620"},
                                           {"metafile", "c.svg", "0 0 1100 620"}}) {
        EXPECT_EQ(run(line), 1) << line;
        const std::string svg = test::read_file(root_.path(file));
        EXPECT_TRUE(svg.starts_with("<?xml") && svg.ends_with("</svg>\n") && svg.find(size) != std::string::npos) << line;
    }
    EXPECT_TRUE(platform_.dialogs.size() == 1 && platform_.questions.empty() && !show.changed);
}

TEST_F(MetafileTest, Refuses) {
    root_.write("kept.svg", "old");
    refused("metafile a.svg", "needs a data set");
    load(test::sample_points(16));
    refused("metafile", "");  // the dialog was cancelled
    for (const char* rest :
         {"?", "a.svg 300", "a.svg 300 x", "a.svg 0 200", "a.svg nan 200", "a.svg 1e9 200", "a.svg table", "a.svg page page",
          "a.svg page 300 200", "a.svg 300 200 page", "a.svg dpi 1e9", "a.svg 300 200 300 200"})
        refused(std::string("metafile ") + rest, "  - USAGE: metafile NAME.svg / .pdf", 2);
    for (const char* name : {"a.png", "a.PDF"})
        refused(std::string("metafile ") + name, "zolt-cli writes pictures as SVG; zolt writes PDF and PNG.");
    refused("metafile /dev/null", "Could not open File: /dev/null");
    refused("metafile a.eps", "SVG, PDF and PNG can be written here, not .eps.");
    refused("metafile " + root_.path() + "/", "is a folder");
    refused("metafile none/a.svg", "Could not open File: " + root_.path("none/a.svg"));
    settings.no_file_overwrite = true;
    refused("metafile kept.svg", "");
}

}  // namespace
}  // namespace zolt
