// Peak labels on the plot: at any zoom and with any list none covers another, none is cut, lines do not cross.
#include <algorithm>
#include <cmath>
#include <random>

#include "display/label_placement.h"
#include "display/lettering.h"
#include "display/plot_1d.h"
#include "display/view.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

TEST(LabelPlacement, NearestPlacesThatFit) {
    const auto places = [](std::vector<LabelWish> wishes, double farthest = 1e9) {
        std::string all;
        for (const auto& place : place_labels(wishes, 0, 100, farthest))
            all += place ? std::to_string(std::lround(*place)) + " " : "- ";
        return all;
    };
    EXPECT_EQ(places({{20, 10, 1}, {70, 10, 1}}), "20 70 ");
    EXPECT_EQ(places({{50, 10, 1}, {50, 10, 1}, {50, 10, 1}}), "40 50 60 ") << "spread about the middle";
    EXPECT_EQ(places({{48, 10, 1}, {50, 20, 1}, {90, 10, 1}}), "42 57 90 ");
    EXPECT_EQ(places({{-5, 10, 1}, {2, 10, 1}, {120, 10, 1}}), "5 15 95 ") << "kept inside";
    EXPECT_EQ(places({{10, 40, 3}, {20, 40, 1}, {30, 40, 2}}), "20 - 60 ") << "the lightest gives way";
    EXPECT_EQ(places({{50, 10, 3}, {50, 10, 1}, {50, 10, 2}, {90, 10, 0.5}}, 6), "45 - 55 90 ") << "or who stands too far off";
    EXPECT_EQ(places({}), "");
    EXPECT_EQ(places({{50, 101, 1}}), "- ");
}

class PeakLabelTest : public test::CommandTest {
protected:
    struct Box {
        double left, top, right, bottom;
    };
    PeakLabelTest() {
        load(std::vector<Complex>(10001), domain_complex, true);
        show.dims[0].sw = 4000;
        view_of(show) = {};
        std::mt19937 random(5);
        std::uniform_real_distribution<double> share(0, 1);
        for (int cluster = 0; cluster < 12; ++cluster) {
            const double middle = 10000 * share(random);
            for (int k = 0; k < 25; ++k) {
                Peak peak;
                peak.point = std::clamp(middle + 200 * (share(random) - 0.5), 0.0, 10000.0);
                peak.intensity = (share(random) < 0.1 ? -1 : 1) * 1000 * share(random);
                if (k == 3) peak.label = "H-12\u03b1, a long name of a peak that nobody would give";
                show.peaks.push_back(peak);
                show.store.vector(0)[static_cast<size_t>(peak.point)] = static_cast<float>(peak.intensity);
            }
        }
        std::sort(show.peaks.begin(), show.peaks.end(), [](const Peak& a, const Peak& b) { return a.point < b.point; });
    }
    // The labels of a plot, after everything about them was looked at.
    std::vector<Box> labels_of(const Picture& picture, const std::string& what) {
        std::vector<Box> boxes;
        std::vector<const Stroke*> leaders;
        double traces_top = picture.height, labels_bottom = 0;
        for (const PictureRecord& record : picture.records) {
            if (const Stroke* stroke = std::get_if<Stroke>(&record)) {
                for (const Point p : stroke->points) EXPECT_TRUE(p.y >= 0 && p.y <= picture.height) << what;
                if (stroke->ink == Ink::peak && stroke->points.size() == 4) leaders.push_back(stroke);
                if (stroke->ink == Ink::real_trace)
                    for (const Point p : stroke->points) traces_top = std::min(traces_top, p.y);
            }
            const Text* text = std::get_if<Text>(&record);
            if (text == nullptr || text->ink != Ink::peak) continue;
            const double width = text_width(text->text, text->size), size = text->size;
            boxes.push_back(text->angle == 90
                                ? Box{text->at.x - 0.75 * size, text->at.y - width, text->at.x + 0.05 * size, text->at.y}
                                : Box{text->at.x - width / 2, text->at.y - 0.75 * size, text->at.x + width / 2, text->at.y});
            labels_bottom = std::max(labels_bottom, text->at.y);
        }
        for (size_t i = 0; i < boxes.size(); ++i) {
            const Box& a = boxes[i];
            EXPECT_TRUE(a.left >= 0 && a.right <= picture.width && a.top >= 0) << what << ": cut";
            for (size_t k = 0; k < i; ++k)
                EXPECT_TRUE(a.left >= boxes[k].right || a.right <= boxes[k].left) << what << ": labels " << k << " and " << i;
        }
        for (size_t i = 1; i < leaders.size(); ++i)
            EXPECT_TRUE(leaders[i - 1]->points[0].x <= leaders[i]->points[0].x &&
                        leaders[i - 1]->points[3].x <= leaders[i]->points[3].x)
                << what << ": lines cross";
        EXPECT_TRUE(boxes.empty() || traces_top > labels_bottom) << what << ": a trace runs through the labels";
        return boxes;
    }
};

TEST_F(PeakLabelTest, TidyAtAnyZoom) {
    std::mt19937 random(9);
    std::uniform_real_distribution<double> place(0, 10000);
    for (const char* direction : {"DP vertical", "DP horizontal"}) {
        run(direction);
        for (const char* unit : {"DP axis", "DP hz"}) {
            run(unit);
            for (int round = 0; round < 25; ++round) {
                show_all(show);
                const double from = place(random), width = round == 0 ? 20000 : std::pow(10, 1 + place(random) / 4000);
                show_points(show, from - width / 2, from + width / 2);
                run(round % 3 == 0 ? "SETZ 8" : "SETZ 1");
                for (const auto& [w, h] : {std::pair{1100.0, 620.0}, {500.0, 300.0}, {200.0, 120.0}}) {
                    PlotOptions options;
                    options.width = w;
                    options.height = h;
                    const auto [first, last] = shown_points(show);
                    const std::string what =
                        std::string(direction) + " " + unit + " " + std::to_string(first) + " to " + std::to_string(last);
                    const auto boxes = labels_of(plot_1d(show, options), what);
                    const auto inside =
                        std::count_if(show.peaks.begin(), show.peaks.end(),
                                      [f = first, l = last](const Peak& peak) { return peak.point >= f && peak.point <= l; });
                    EXPECT_TRUE(h > 200 || boxes.empty()) << "there is no room";
                    EXPECT_TRUE(h < 600 || inside == 0 || !boxes.empty()) << what;
                    EXPECT_TRUE(h < 600 || inside > 4 || boxes.size() == static_cast<size_t>(inside)) << what;
                }
            }
        }
    }
}

TEST_F(PeakLabelTest, TheTallestKeepTheirsAndRoomIsTakenForLabelsOnly) {
    const auto top_of = [] {
        PlotCache cache;
        return plot_layout(show, {}, cache).top;
    };
    const double with = top_of();
    run("SETX 1.0 0.9999");
    EXPECT_EQ(top_of(), with) << "nothing moves while one zooms";
    run("XYZ full");
    const auto tallest = std::max_element(show.peaks.begin(), show.peaks.end(), [](const Peak& a, const Peak& b) {
        return std::abs(a.intensity) < std::abs(b.intensity);
    });
    tallest->label = "tallest";
    const Picture picture = plot_1d(show, {});
    EXPECT_TRUE(std::any_of(picture.records.begin(), picture.records.end(), [](const PictureRecord& record) {
        const Text* text = std::get_if<Text>(&record);
        return text != nullptr && text->text == "tallest";
    }));
    run("DP hide");
    EXPECT_TRUE(labels_of(plot_1d(show, {}), "hidden").empty());
    EXPECT_LT(top_of(), with);
    run("DP show");
    run("DP clear");
    EXPECT_LT(top_of(), with);
}

}  // namespace
}  // namespace zolt
