// The printed page, read as records: everything within the margins, nothing over anything else; its colours; the commands.
#include <algorithm>
#include <cmath>

#include "config/settings.h"
#include "display/lettering.h"
#include "display/page.h"
#include "display/plot_1d.h"
#include "display/view.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

struct Box {
    double left, top, right, bottom;
    std::string words;
    Ink ink;
};

std::vector<Box> text_boxes(const Picture& page) {
    std::vector<Box> boxes;
    for (const PictureRecord& record : page.records) {
        const Text* text = std::get_if<Text>(&record);
        if (text == nullptr) continue;
        const double width = text_width(text->text, text->size), ascent = text->size * 0.8, descent = text->size * 0.2;
        const double before = text->anchor == Anchor::start ? 0 : text->anchor == Anchor::middle ? width / 2 : width;
        const auto [x, y] = text->at;
        if (text->angle == 90)
            boxes.push_back({x - ascent, y + before - width, x + descent, y + before, text->text, text->ink});
        else
            boxes.push_back({x - before, y - ascent, x - before + width, y + descent, text->text, text->ink});
    }
    return boxes;
}

std::vector<Point> stroke_points(const PictureRecord& record) {
    const Stroke* stroke = std::get_if<Stroke>(&record);
    return stroke == nullptr ? std::vector<Point>() : stroke->points;
}

std::string words_of(const Picture& page) {
    std::string all;
    for (const Box& box : text_boxes(page)) all += box.words + "|";
    return all;
}

class PageTest : public test::CommandTest {
protected:
    void load_sample() {
        load(test::sample_points(4096), domain_complex, true);
        show.title = "A title of many words that does not fit into one line of the page beside its parameters, so it is broken";
        show.comment = "a comment";
        show.experiment = "zg30";
        show.date = "Thu Sep 28 00:35:31 2017";
        show.solvent = "CDCl3";
        show.scans = 16;
        show.d1 = 1.5;
        show.dims[0].nucleus = "1H";
        show.dims[0].phase_totals = {10, -20, 0};
    }
    void expect_tidy(const Picture& page, double margin, const std::string& what) {
        const std::vector<Box> boxes = text_boxes(page);
        for (size_t i = 0; i < boxes.size(); ++i) {
            const Box& a = boxes[i];
            EXPECT_TRUE(a.left >= margin - 0.1 && a.right <= page.width - margin + 0.1 && a.top >= margin - 1 &&
                        a.bottom <= page.height - margin + 1)
                << what << ": " << a.words << " leaves the margins";
            for (size_t k = 0; k < i; ++k) {
                const Box& b = boxes[k];
                EXPECT_TRUE(a.right <= b.left || b.right <= a.left || a.bottom <= b.top || b.bottom <= a.top)
                    << what << ": " << a.words << " on " << b.words;
            }
        }
        for (const PictureRecord& record : page.records)
            for (const auto [x, y] : stroke_points(record))
                ASSERT_TRUE(x >= margin - 1 && x <= page.width - margin + 1 && y >= margin && y <= page.height - margin + 1)
                    << what;
    }
};

TEST_F(PageTest, EveryPaperIsTidyAndShowsTheView) {
    load_sample();
    for (int i = 0; i < 40; ++i) {
        show.integrals.push_back({i * 100, i * 100 + 50, 1.5F, 0});
        show.peaks.push_back({i * 100.0, 0, 0, i + 1.0, "label", -1, 0, 0, 0, 0, 0});
    }
    show_points(show, 1000, 2000);
    for (const char* paper : {"A4", "LETTER"})
        for (const char* way : {"LANDSCAPE", "PORTRAIT"})
            for (const bool tables : {false, true})
                for (const char* parts : {"TRUE", "FALSE"}) {
                    ASSERT_TRUE(apply_setting("PRINT_PAPER", paper) && apply_setting("PRINT_ORIENTATION", way) &&
                                apply_setting("PRINT_BOX", parts) && apply_setting("PRINT_PARAMETERS", parts));
                    PageOptions options = configured_page();
                    options.tables = tables;
                    const Picture page = page_picture(show, options);
                    const std::string what = std::string(paper) + way + parts, words = words_of(page);
                    const bool portrait = std::string(way) == "PORTRAIT";
                    EXPECT_NEAR(std::min(page.width, page.height) / 96 * 25.4, std::string(paper) == "A4" ? 210 : 215.9, 1e-9);
                    EXPECT_EQ(page.height > page.width, portrait) << what;
                    expect_tidy(page, options.margin, what);
                    EXPECT_EQ(words.find("SF: 400 MHz|") != std::string::npos, parts == std::string("TRUE")) << words;
                    EXPECT_EQ(words.find("|Integral|") != std::string::npos, tables) << "tables when asked for";
                    EXPECT_NE(words.find("a comment|a.zolt|"), std::string::npos) << words;
                }
}

TEST_F(PageTest, TheTraceHasItsWidthAndPlace) {
    load_sample();
    show_points(show, 1000, 2000);
    ASSERT_TRUE(apply_setting("PEN_WIDTH_PRINTER", "0.5"));
    const PageOptions options = configured_page();
    const Picture page = page_picture(show, options);
    double left = 1e9, right = 0;
    for (const PictureRecord& record : page.records)
        if (const Stroke* stroke = std::get_if<Stroke>(&record); stroke != nullptr && stroke->ink == Ink::real_trace) {
            EXPECT_NEAR(stroke->width / pixels_per_mm, 0.5, 1e-9);
            left = std::min(left, stroke->points.front().x);
            right = std::max(right, stroke->points.back().x);
        }
    EXPECT_NEAR(left, options.margin, 1e-6) << "the region begins at the margin";
    EXPECT_GT(right, page.width * 0.85);
}

TEST_F(PageTest, WhatDoesNotFitIsCounted) {
    load_sample();
    for (int i = 0; i < 4000; ++i) show.integrals.push_back({i, i + 1, 1.5F, 0});
    for (int i = 0; i < 4000; ++i) show.peaks.push_back({static_cast<double>(i), 0, 0, 1, "", -1, 0, 0, 0, 0, 0});
    PageOptions options = configured_page();
    options.tables = true;
    const Picture page = page_picture(show, options);
    expect_tidy(page, options.margin, "full");
    // Every row is either there or counted.
    size_t rows = 0, counted = 0;
    for (const Box& box : text_boxes(page)) {
        if (box.words == "1.50" && box.ink == Ink::text) ++rows;
        if (box.words.ends_with(" more") && counted == 0) counted = static_cast<size_t>(std::stoul(box.words.substr(4)));
    }
    EXPECT_TRUE(rows > 20 && rows + counted == 4000) << rows << " " << counted;
    EXPECT_NE(words_of(page).find("Peak|"), std::string::npos) << "the second table has its place";
    // Odd sheets.
    for (const double side : {0.0, -5.0, 30.0, 1e9, std::nan("")}) {
        options.width = options.margin = side;
        EXPECT_GE(page_picture(show, options).width, 64);
    }
}

TEST_F(PageTest, ColoursOfPaper) {
    const auto palette = [](Ink ink) { return print_palette()[ink]; };
    EXPECT_TRUE(palette(Ink::background) == 0xffffff && palette(Ink::text) == 0 && palette(Ink::axis) == 0 &&
                palette(Ink::real_trace) == light_palette[Ink::real_trace]);
    // Colours for a dark ground are lost on paper; others are kept.
    ASSERT_TRUE(apply_setting("BACKGROUND_COLOR", "#000000") && apply_setting("REAL_COLOR", "#ffff60") &&
                apply_setting("IMAG_COLOR", "#aa0000"));
    EXPECT_TRUE(palette(Ink::background) == 0xffffff && palette(Ink::real_trace) == light_palette[Ink::real_trace] &&
                palette(Ink::imaginary_trace) == 0xaa0000);
    ASSERT_TRUE(apply_setting("PRINT_COLOR", "FALSE"));
    EXPECT_TRUE(palette(Ink::real_trace) == 0 && palette(Ink::background) == 0xffffff);
}

TEST_F(PageTest, Commands) {
    refused("Print", "needs a data set");
    refused("EndDoc", "There is no document to end");
    load_sample();
    EXPECT_EQ(run("metafile page.svg page"), 1);
    EXPECT_NE(test::read_file(root_.path("page.svg")).find("viewBox=\"0 0 1122.52 793.7\""), std::string::npos);
    refused("Print", "metafile NAME.svg page");
    refused("Print all", "USAGE: Print", 2);
    refused("StartDoc a.pdf", "zolt-cli writes pictures as SVG");
    refused("StartDoc a.svg", "PDF can be written here, not .svg");
    // The shown points, position and real part; the region's ends included.
    EXPECT_EQ(run("Axis POINTS"), 1);
    show_points(show, 10, 12);
    EXPECT_EQ(run("CB text"), 1);
    ASSERT_EQ(platform_.clipboards.size(), 1U);
    EXPECT_TRUE(platform_.clipboards[0].starts_with("11\t") && platform_.clipboards[0].find("\r\n13\t") != std::string::npos);
    EXPECT_EQ(std::count(platform_.clipboards[0].begin(), platform_.clipboards[0].end(), '\n'), 3);
    refused("CB", "There is no window whose picture");
    refused("CB nonsense", "USAGE", 2);
}

}  // namespace
}  // namespace zolt
