// What a redraw of a million points costs, and, with --bare, a main window with nothing in it, for comparing starts.
#include <QApplication>
#include <QElapsedTimer>
#include <QMainWindow>
#include <QMenuBar>
#include <QPainter>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "desktop/appearance.h"
#include "desktop/paint_picture.h"
#include "display/plot_1d.h"
#include "state/dataset.h"

namespace zolt::bench {
namespace {

constexpr size_t points = 1000000;

// Noise with a line every ten thousand points; or nothing but noise, which has the most to draw.
bool fill(bool noise_only) {
    if (!show.store.allocate(1, points)) return false;
    std::mt19937 generator(1);
    std::normal_distribution<float> normal;
    auto vector = show.store.vector(0);
    for (size_t i = 0; i < points; ++i) {
        const float line = noise_only ? 0 : 400.0F / (1.0F + static_cast<float>((i % 10000) * (i % 10000)));
        vector[i] = {normal(generator) + line, 0};
    }
    show.dims[0].points = points;
    show.dims[0].sf = 400;
    show.dims[0].sw = 8000;
    show.dims[0].frequency = true;
    show.loaded = true;
    return true;
}

// The median of 21 repetitions in milliseconds.
template <class Work>
double median(Work work) {
    std::vector<double> times;
    for (int i = 0; i < 21; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::nth_element(times.begin(), times.begin() + 10, times.end());
    return times[10];
}

void measure(const char* what) {
    PlotOptions options;
    options.width = 1200;
    options.height = 650;
    QPixmap pixmap(1200, 650);
    PlotCache cache;
    Picture picture = plot_1d(show, options, cache);
    const auto paint = [&] {
        QPainter painter(&pixmap);
        paint_picture(painter, picture, light_palette);
    };
    const auto draw = [&] { picture = plot_1d(show, options, cache); };
    const double drawn = median(draw), painted = median(paint);
    const double whole = median([&] {
        cache.forget();
        draw();
        paint();
    });
    std::printf("%-16s picture %6.2f ms   painting %6.2f ms   both, after the data have changed %6.2f ms\n", what, drawn, painted,
                whole);
}

void bare_window() {
    QMainWindow window;
    window.menuBar()->addMenu("File");
    window.resize(1200, 800);
    window.show();
    QApplication::processEvents();
}

}  // namespace
}  // namespace zolt::bench

int main(int count, char** arguments) {
    using namespace zolt::bench;
    QApplication application(count, arguments);
    if (count > 1 && std::strcmp(arguments[1], "--bare") == 0) return bare_window(), 0;
    for (const bool noise : {false, true})
        if (fill(noise)) measure(noise ? "noise alone" : "spectrum");
    return 0;
}
