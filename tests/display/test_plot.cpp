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

DataSet one_vector(const std::vector<float>& reals, bool frequency = true) {
    DataSet data;
    EXPECT_TRUE(data.store.allocate(1, reals.size()));
    for (size_t i = 0; i < reals.size(); ++i) data.store.vector(0)[i] = {reals[i], 1e9F};
    data.dims[0].points = static_cast<int32_t>(reals.size());
    data.dims[0].sf = 400;
    data.dims[0].sw = 4000;
    data.dims[0].frequency = frequency;
    data.dims[0].nucleus = "1H";
    return data;
}

std::vector<Text> texts_of(const Picture& picture) {
    std::vector<Text> texts;
    for (const PictureRecord& record : picture.records)
        if (const Text* text = std::get_if<Text>(&record)) texts.push_back(*text);
    return texts;
}

const Text* text_of(const std::vector<Text>& texts, const std::string& words) {
    const auto found = std::find_if(texts.begin(), texts.end(), [&](const Text& text) { return text.text == words; });
    return found == texts.end() ? nullptr : &*found;
}

std::vector<Stroke> traces_of(const Picture& picture) {
    std::vector<Stroke> traces;
    for (const PictureRecord& record : picture.records)
        if (const Stroke* stroke = std::get_if<Stroke>(&record); stroke != nullptr && stroke->ink == Ink::real_trace)
            traces.push_back(*stroke);
    return traces;
}

// No text leaves the sheet and no two of one line touch; every coordinate is a number on the sheet.
void expect_tidy(const Picture& picture, const std::string& what) {
    struct Span {
        double left, right, y;
    };
    std::vector<Span> spans;
    for (const Text& text : texts_of(picture)) {
        const double width = text_width(text.text, text.size);
        const double left = text.at.x - (text.anchor == Anchor::start ? 0 : text.anchor == Anchor::middle ? width / 2 : width);
        EXPECT_TRUE(left >= 0 && left + width <= picture.width) << what << ": " << text.text << " is cut";
        for (const Span& other : spans)
            EXPECT_TRUE(other.y != text.at.y || left > other.right || left + width < other.left) << what << ": " << text.text;
        spans.push_back({left, left + width, text.at.y});
    }
    for (const PictureRecord& record : picture.records) {
        const Stroke* stroke = std::get_if<Stroke>(&record);
        if (stroke == nullptr) continue;
        for (const Point& p : stroke->points)
            ASSERT_TRUE(p.x >= 0 && p.x <= picture.width && p.y >= 0 && p.y <= picture.height) << what;
    }
}

std::string major_labels(double from, double to, double length) {
    std::string labels;
    for (const Tick& tick : axis_ticks(from, to, length, 12))
        if (tick.major) labels += (labels.empty() ? "" : " ") + tick.label;
    return labels;
}

TEST(Ticks, MajorLabels) {
    struct Row {
        double from, to, length;
        const char* labels;
    };
    const Row rows[] = {
        {10, -1, 1000, "\u22121 0 1 2 3 4 5 6 7 8 9 10"},  // either direction, both ends included
        {-1, 10, 1000, "\u22121 0 1 2 3 4 5 6 7 8 9 10"},
        {220, -20, 700, "\u221220 0 20 40 60 80 100 120 140 160 180 200 220"},
        {0, 65535, 900, "0 5000 10000 15000 20000 25000 30000 35000 40000 45000 50000 55000 60000 65000"},
        {0, 65535, 500, "0 10000 20000 30000 40000 50000 60000"},
        {0, 1, 400, "0.0 0.2 0.4 0.6 0.8 1.0"},
        {-0.05, 0.05, 700, "\u22120.05 \u22120.04 \u22120.03 \u22120.02 \u22120.01 0.00 0.01 0.02 0.03 0.04 0.05"},
        {7.26, 7.2601, 400, "7.26000 7.26002 7.26004 7.26006 7.26008 7.26010"},
        {0, 3e-12, 300, "0 1e-12 2e-12 3e-12"},
        {0, 4e8, 300, "0 200000000 400000000"},
        {0, 4e12, 300, "0 1e12 2e12 3e12 4e12"},
    };
    for (const Row& row : rows) EXPECT_EQ(major_labels(row.from, row.to, row.length), row.labels) << row.from;
}

TEST(Ticks, MinorOnesAndRefusedRanges) {
    // Tenths between steps of 1 and 2, fifths between steps of 5.
    EXPECT_EQ(axis_ticks(0, 10, 1000, 12).size(), 101U);
    EXPECT_EQ(axis_ticks(0, 100, 800, 12).size(), 101U) << "steps of 10";
    EXPECT_EQ(axis_ticks(0, 50, 800, 12).size(), 51U) << "steps of 5";
    const auto ticks = axis_ticks(3.05, -0.05, 400, 12);
    EXPECT_NEAR(ticks.front().value, 0, 1e-12);
    EXPECT_NEAR(ticks.back().value, 3, 1e-12);
    for (size_t i = 1; i < ticks.size(); ++i) EXPECT_LT(ticks[i - 1].value, ticks[i].value);
    for (const double end : {nan, inf, -inf, 1e300, 5.0, 5 + 1e-14}) EXPECT_TRUE(axis_ticks(5, end, 500, 12).empty()) << end;
    EXPECT_TRUE(axis_ticks(0, 10, 0, 12).empty());
}

TEST(Plot, DecimationKeepsExtremesEndsAndOrder) {
    std::vector<float> reals(100000);
    for (size_t i = 0; i < reals.size(); ++i) reals[i] = 0.01F * static_cast<float>(i * 7919 % 13) - 0.05F;
    reals[40003] = 10;  // one point each, somewhere within a column
    reals[70001] = -1;
    reals.front() = 2;
    reals.back() = 3;
    const Picture picture = plot_1d(one_vector(reals), {1000, 600, 1, true});
    const auto traces = traces_of(picture);
    ASSERT_EQ(traces.size(), 1U) << "the line is broken";
    const auto& line = traces[0].points;
    EXPECT_LE(line.size(), 4000U);
    EXPECT_TRUE(std::is_sorted(line.begin(), line.end(), [](Point a, Point b) { return a.x < b.x; }));

    const double bottom = 560, zero = bottom * 0.875, peak = bottom * 0.1;
    const auto height = [&](double value) { return zero - (zero - peak) * value / 10; };
    const auto by_height = [](Point a, Point b) { return a.y < b.y; };
    const Point top = *std::min_element(line.begin(), line.end(), by_height),
                low = *std::max_element(line.begin(), line.end(), by_height);
    EXPECT_NEAR(top.y, peak, 1e-6);
    EXPECT_NEAR(low.y, height(-1), 1e-6);
    const double width = line.back().x - line.front().x;
    EXPECT_NEAR(top.x, line.front().x + width * 40003 / 99999, 1e-6);
    EXPECT_NEAR(low.x, line.front().x + width * 70001 / 99999, 1e-6);
    EXPECT_NEAR(line.front().y, height(2), 1e-6);
    EXPECT_NEAR(line.back().y, height(3), 1e-6);

    // Few points are all there, each in its place.
    const auto few = traces_of(plot_1d(one_vector({0, 1, -0.1F, 4}), {1000, 600, 1, true}));
    ASSERT_EQ(few.size(), 1U);
    ASSERT_EQ(few[0].points.size(), 4U);
    EXPECT_NEAR(few[0].points[1].y - few[0].points[0].y, -(zero - peak) / 4, 1e-6);
    EXPECT_NEAR(few[0].points[2].x, few[0].points[0].x * 1 / 3 + few[0].points[3].x * 2 / 3, 1e-6);
}

TEST(Plot, WhereTheBaselineLies) {
    const auto heights = [](const DataSet& data) {
        std::vector<double> y;
        for (const Stroke& trace : traces_of(plot_1d(data, {800, 640, 1, true})))
            for (const Point& p : trace.points) y.push_back(p.y / 600);  // the axis stands 40 above the edge
        return y;
    };
    const auto expect = [](const std::vector<double>& got, const std::vector<double>& want) {
        ASSERT_EQ(got.size(), want.size());
        for (size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], want[i], 1e-6) << i;
    };
    expect(heights(one_vector({0, 2, 0})), {0.875, 0.1, 0.875});
    expect(heights(one_vector({0, 1, 0}, false)), {0.5, 0.1, 0.5});
    expect(heights(one_vector({0, -1, 0.5F}, false)), {0.5, 0.9, 0.3});
    // Deep negative parts end at the axis, on either side of the gap.
    expect(heights(one_vector({0, -2, 2})), {0.875, 1, 1, 0.1});
    EXPECT_EQ(traces_of(plot_1d(one_vector({0, -2, 2}), {})).size(), 2U) << "a line along the axis";
    // Upside down: all of it.
    expect(heights(one_vector({0, -2, 0})), {0.125, 0.9, 0.125});
    expect(heights(one_vector({0, 0, 0})), {0.875, 0.875, 0.875});
}

TEST(Plot, AxisUnitsAndDirections) {
    struct Row {
        bool frequency;
        int unit;
        float sf, sw;
        const char *left, *right, *name;
    };
    const Row rows[] = {
        {true, unit_ppm, 400, 4000, "4", "\u22124", "ppm"},     {true, unit_hz, 400, 4000, "1500", "\u22121500", "Hz"},
        {true, unit_ppm, 0, 4000, "1500", "\u22121500", "Hz"},  {true, unit_ppm, 400, 0, "100", "900", "points"},
        {true, unit_hz, 400, -1, "100", "900", "points"},       {true, unit_ppm, 400, INFINITY, "100", "900", "points"},
        {true, unit_points, 400, 4000, "100", "900", "points"}, {false, unit_ppm, 400, 1000, "0.1", "0.9", "s"},
        {false, unit_hz, 0, 0, "100", "900", "points"},         {false, unit_points, 400, 4000, "100", "900", "points"},
    };
    std::vector<float> reals(1001, 1.0F);
    for (const Row& row : rows) {
        DataSet data = one_vector(reals, row.frequency);
        data.dims[0].axis_unit = row.unit;
        data.dims[0].sf = row.sf;
        data.dims[0].sw = row.sw;
        const Picture picture = plot_1d(data, {1100, 620, 1, true});
        const auto texts = texts_of(picture);
        const Text *left = text_of(texts, row.left), *right = text_of(texts, row.right), *name = text_of(texts, row.name);
        ASSERT_TRUE(left != nullptr && right != nullptr && name != nullptr) << row.left << " " << row.name;
        EXPECT_LT(left->at.x, right->at.x) << row.name;
        EXPECT_LT(right->at.x, name->at.x) << row.name;
        expect_tidy(picture, row.name);
    }
    // A shift is read off where its point is drawn; the offset moves the axis, not the trace.
    DataSet data = one_vector(std::vector<float>(1001, 0.0F));
    data.store.vector(0)[250] = 1;
    data.dims[0].offset = 2000;
    const Picture picture = plot_1d(data, {});
    const auto line = traces_of(picture)[0].points;
    const double x = std::min_element(line.begin(), line.end(), [](Point a, Point b) { return a.y < b.y; })->x;
    const auto texts = texts_of(picture);
    EXPECT_NEAR(data.dims[0].axis().ppm(250), 7.5, 1e-3);
    EXPECT_NEAR(x, (text_of(texts, "7")->at.x + text_of(texts, "8")->at.x) / 2, 0.1);

    data.dims[0].axis_unit = unit_none;
    for (const Text& text : texts_of(plot_1d(data, {}))) EXPECT_LT(text.at.y, 60) << text.text;
}

TEST(Plot, OddInputsStayOnTheSheet) {
    const auto huge = std::numeric_limits<float>::max(), tiny = std::numeric_limits<float>::denorm_min();
    const auto none = std::numeric_limits<float>::quiet_NaN(), endless = std::numeric_limits<float>::infinity();
    const std::vector<std::vector<float>> vectors = {
        {},           {1}, {-1}, {none}, {1, 2}, {0, 0}, {huge, -huge}, {tiny, 0}, {none, endless}, {1, none, 2, 3, -endless, 4},
        {-huge, tiny}};
    for (size_t i = 0; i < vectors.size(); ++i)
        for (const bool frequency : {true, false})
            for (const auto& [width, height] :
                 {std::pair{1100.0, 620.0}, {300.0, 200.0}, {100.0, 100.0}, {16.0, 16.0}, {nan, -5.0}})
                expect_tidy(plot_1d(one_vector(vectors[i], frequency), {width, height, 1, true}), "vector " + std::to_string(i));

    // A gap breaks the line; a point without neighbours becomes a dot.
    const auto traces = traces_of(plot_1d(one_vector({1, none, 2, 3, none, 4}), {}));
    ASSERT_EQ(traces.size(), 3U);
    EXPECT_EQ(traces[0].points.size(), 2U);
    EXPECT_TRUE(traces[0].round_ends);
    EXPECT_TRUE(traces_of(plot_1d(one_vector({}), {})).empty());
}

TEST(Plot, Heading) {
    DataSet data = one_vector({0, 1, 0});
    data.solvent = "CDCl3";
    data.dims[0].sf = 400.1324F;
    data.file_a = "/folder/sample.zolt";
    const auto title = [&] { return plot_1d(data, {}).title; };
    EXPECT_EQ(title(), "sample.zolt");
    data.comment = " second run, , \r\nmore";
    EXPECT_EQ(title(), "second run");
    data.experiment = "zg30";
    EXPECT_EQ(title(), "zg30 \u00b7 second run");
    data.title = "\r\n  \r\nTitle\tline\r\nnext";
    EXPECT_EQ(title(), "Title line");
    EXPECT_NE(text_of(texts_of(plot_1d(data, {})), "\u00b9H \u00b7 400.13 MHz \u00b7 CDCl3"), nullptr);

    for (const char* letters : {"W", "i ", "\u00e9", "\u6f22", "\xff"}) {
        data.title.clear();
        for (int i = 0; i < 300; ++i) data.title += letters;
        for (const double width : {1100.0, 400.0, 120.0}) {
            const Picture picture = plot_1d(data, {width, 300, 1, true});
            expect_tidy(picture, letters);
            if (width < 200) continue;
            const auto texts = texts_of(picture);
            EXPECT_TRUE(texts[texts.size() - 2].text.ends_with("\u2026")) << letters;
        }
    }
    EXPECT_EQ(text_of(texts_of(plot_1d(data, {1100, 620, 1, false})), "\u00b9H \u00b7 400.13 MHz \u00b7 CDCl3"), nullptr);
}

TEST(Lettering, RoomIsotopesAndBytes) {
    for (double room = 0; room < 200; room += 5)
        EXPECT_LE(text_width(shortened("Menthol, 30 mg in C6D6 at 298 K", 12, room), 12), room);
    EXPECT_EQ(shortened("Menthol", 12, 1000), "Menthol");
    EXPECT_EQ(shortened("Menthol", 12, 10), "") << "an ellipsis alone says nothing";
    for (const auto& [name, want] : {std::pair{"1H", "\u00b9H"},
                                     {"13C", "\u00b9\u00b3C"},
                                     {"C13", "\u00b9\u00b3C"},
                                     {"195Pt", "\u00b9\u2079\u2075Pt"},
                                     {"", ""},
                                     {"off", "off"},
                                     {"12", "12"},
                                     {"1H2", "1H2"},
                                     {"2-D", "2-D"}})
        EXPECT_EQ(isotope_name(name), want);
    // Valid text comes back unchanged, every wrong byte as one replacement.
    for (const auto& [bytes, want] : {std::pair{"a\u00e9\u20ac\U0001F600", "a\u00e9\u20ac\U0001F600"},
                                      {"\xC3", "\uFFFD"},
                                      {"\xE2\x82z", "\uFFFD\uFFFDz"},
                                      {"\xC0\xAF", "\uFFFD\uFFFD"},
                                      {"\xE0\x80\x80", "\uFFFD\uFFFD\uFFFD"},
                                      {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
                                      {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
                                      {"\xF8x", "\uFFFDx"}})
        EXPECT_EQ(display_line(bytes), want);
}

TEST(Svg, DocumentAndEscaping) {
    Picture picture;
    picture.width = 100.5;
    picture.height = 50;
    picture.title = "<a> & \"b\"";
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
    EXPECT_NE(svg_text(picture, dark_palette).find("fill=\"#14171b\""), std::string::npos);
}

class MetafileTest : public test::CommandTest {};

TEST_F(MetafileTest, WritesThePicture) {
    load(test::sample_points(256), domain_complex, true);
    const std::string target = root_.path("a.SVG");
    EXPECT_EQ(run("metafile " + target + " 300 200"), 1);
    EXPECT_EQ(platform_.replies.back(), "  - Picture written to " + target);
    EXPECT_NE(test::read_file(target).find("viewBox=\"0 0 300 200\""), std::string::npos);
    EXPECT_EQ(run("metafile " + target), 1) << "replaced without a question";
    EXPECT_NE(test::read_file(target).find("viewBox=\"0 0 1100 620\""), std::string::npos);
    EXPECT_EQ(run("metafile " + root_.path("b")), 1);
    EXPECT_TRUE(test::read_file(root_.path("b.svg")).ends_with("</svg>\n"));
    platform_.answers = {root_.path("c.svg")};
    EXPECT_EQ(run("metafile"), 1);
    EXPECT_EQ(platform_.dialogs, std::vector<std::string>{"Save Picture"});
    EXPECT_TRUE(test::read_file(root_.path("c.svg")).starts_with("<?xml"));
    EXPECT_TRUE(platform_.questions.empty());
    EXPECT_FALSE(show.changed);
}

TEST_F(MetafileTest, Refuses) {
    EXPECT_EQ(run("metafile " + root_.path("a.svg")), 0) << "without data";
    load(test::sample_points(16));
    EXPECT_EQ(run("metafile"), 0) << "cancelled";
    for (const char* rest : {"?", "a.svg 300", "a.svg 300 x", "a.svg 0 200", "a.svg nan 200", "a.svg 1e9 200"}) {
        EXPECT_EQ(run(std::string("metafile ") + rest), 2) << rest;
        EXPECT_EQ(platform_.replies.back(), "  - USAGE: metafile NAME.svg [width height]") << rest;
    }
    EXPECT_EQ(run("metafile " + root_.path("a.png")), 0);
    EXPECT_NE(platform_.messages.back().find("Only SVG is written now"), std::string::npos);
    EXPECT_EQ(run("metafile " + root_.path() + "/"), 0);
    const std::string nowhere = root_.path("none/a.svg");
    EXPECT_EQ(run("metafile " + nowhere), 0);
    EXPECT_EQ(platform_.messages.back(), "Could not open File: " + nowhere);

    const std::string kept = root_.write("kept.svg", "old");
    settings.no_file_overwrite = true;
    EXPECT_EQ(run("metafile " + kept), 0);
    EXPECT_EQ(test::read_file(kept), "old");
    EXPECT_EQ(test::read_file(root_.path("a.png")), "");
}

}  // namespace
}  // namespace zolt
