// SUMMARY: its parts, where it goes, what it refuses.
#include <cmath>

#include "analysis/summary.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

// Normal deviates by sums of twelve uniform ones.
std::vector<Complex> noisy(size_t points, float deviation) {
    std::vector<Complex> all(points);
    uint32_t state = 1;
    for (Complex& point : all) {
        float sum = -6;
        for (int i = 0; i < 12; ++i) {
            state = state * 1664525 + 1013904223;
            sum += static_cast<float>(state >> 8) / 16777216.0F;
        }
        point = {deviation * sum, 1e6F};
    }
    return all;
}

class SummaryTest : public test::CommandTest {};

TEST_F(SummaryTest, HasEveryPart) {
    std::vector<Complex> points = noisy(4096, 2);
    points[1024] = {2000, 0};
    load(points, domain_complex, true);
    show.title = "first line\nsecond";
    show.scans = 16;
    show.solvent = "CDCl3";
    show.dims[0].nucleus = "1H";
    show.dims[0].phase_totals = {-12.5F, 3, 0};
    show.dims[1] = {8, 100.5F, 0, 0, domain_complex, false, unit_ppm, {}, "13C", 2, 1, {}};
    show.slice = 2;
    for (int i = 1; i <= 30; ++i) show.command_log.append("line" + std::to_string(i) + "\r\n");
    show.integrals = {{1000, 1050, 2.5F, 0}};
    show.rel_value = 2;
    show.peaks = {{1024, 0, 0, 2000, "top", -1, 0, 0, 0, 0, 0}};
    const std::string text = summary_text(show);
    // The peak stands a quarter of 12.5 ppm below 6.25 ppm.
    for (const char* part :
         {"Title         first line second\r\n", "Slice         3 of 8\r\n", "Scans         16\r\n", "Solvent       CDCl3\r\n",
          "\r\nDimension     1                         2\r\nNucleus       1H                        13C\r\n",
          "\r\nSW            5000.00 Hz (12.500 ppm)\r\n", "\r\nPhase         -12.50, 3.00 degrees\r\n", "2000 at 3.1242 ppm\r\n",
          "PROCESSING\r\n\u2026 6 earlier lines\r\nline7\r\n", "\r\nline30\r\n", "     5.00\r\n", "PEAKS\r\nPeak      Point",
          "top\r\n"})
        EXPECT_NE(text.find(part), std::string::npos) << part << "\n" << text;
    const double ratio = std::stod(text.substr(text.find("S/N") + 14));
    EXPECT_TRUE(ratio > 425 && ratio < 575) << ratio;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n') {
            EXPECT_TRUE(i > 0 && text[i - 1] == '\r') << i;
        }
    }
    // An FID has no such noise, a set without anything no empty lines of names.
    show = DataSet();
    load({{1, 2}, {3, 4}});
    EXPECT_TRUE(summary_text(show).find("S/N") == std::string::npos && summary_text(show).find("Nucleus") == std::string::npos);
}

TEST_F(SummaryTest, GoesToReplyClipboardAndFile) {
    refused("DT", "needs a data set");
    load(noisy(256, 1), domain_complex, true);
    const std::string text = summary_text(show);
    EXPECT_EQ(run("DataTable"), 2);
    EXPECT_TRUE(platform_.replies.back() == text && platform_.clipboards.back() == text);
    EXPECT_EQ(run("CB off"), 1);
    EXPECT_EQ(run("SUMMARY"), 2);
    EXPECT_EQ(platform_.clipboards.size(), 1U);
    session.fills_clipboard = true;
    EXPECT_EQ(run("SUMMARY a"), 1);
    EXPECT_EQ(test::read_file(root_.path("a.txt")), text);
    refused("SUMMARY a.TXT.zolt", "The summary is a text, not .zolt");
    for (const char* name : {"none/a.txt", "/dev/null"}) refused(std::string("SUMMARY ") + name, "Could not open File");
    root_.write("b.txt", "old");
    refused("SUMMARY b.txt", "Overwrite?");
    settings.no_file_overwrite = true;
    refused("SUMMARY b.txt", "System configured to prevent Overwriting");
}

}  // namespace
}  // namespace zolt
