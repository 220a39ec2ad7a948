// Import of Bruker data of more dimensions, of processed data and of other layouts: places of rows, tiles, axes, refusals.
#include <cmath>
#include <filesystem>
#include <map>

#include "datafile/native_file.h"
#include "import/bruker_samples.h"
#include "state/session.h"

namespace zolt {
namespace {

using Files = std::map<std::string, std::string>;

std::string acqu2s(int td, const Records& more = {}) {
    Records all = {"$SFO1= 100.5", "$SW_h= 2000", "$SW= 19.9", "$O1= 500", format_text("$TD= %d", td)};
    all.insert(all.end(), more.begin(), more.end());
    return parameter_file(all);
}

class BrukerSets : public BrukerImport {
protected:
    BrukerSets() { platform_.default_answer = Answer::yes; }
    // Writes the files into a fresh folder and imports one of them.
    int set(const Files& files, const std::string& name, const std::string& how = "") {
        folder_ = format_text("set%d/", ++sets_);
        for (const auto& [file, content] : files) data_.write(folder_ + file, content);
        platform_.forget();
        return run("IM " + data_.path(folder_ + name) + how);
    }
    void refused_set(const Files& files, const std::string& name, const std::string& text, const std::string& how = "") {
        const DataRecord before = show;
        EXPECT_EQ(set(files, name, how), 0) << text;
        EXPECT_TRUE(said(text)) << text << "\nnot in\n" << platform_.said();
        EXPECT_TRUE(before == show) << text;
    }
    std::vector<int> counts() const { return {show.dims[0].points, show.dims[1].points, show.dims[2].points}; }
    // First real part of each row.
    std::vector<int> row_starts() const {
        std::vector<int> starts;
        const auto all = grid();
        for (size_t i = 0; i < all.size(); i += static_cast<size_t>(show.dims[0].points))
            starts.push_back(static_cast<int>(all[i].real()));
        return starts;
    }
    std::string folder_;
};

// Rows of `length` words that begin `pitch` words apart; word w of row r is 100 r + w + 1, words between rows are -1.
template <class T = int32_t>
std::string rows_of(int rows, int length, int pitch, size_t bytes = std::string::npos) {
    std::vector<T> all(static_cast<size_t>(rows * pitch), T{-1});
    for (int r = 0; r < rows; ++r)
        for (int w = 0; w < length; ++w) all[static_cast<size_t>(r * pitch + w)] = static_cast<T>(100 * r + w + 1);
    return words(all).substr(0, bytes);
}

TEST_F(BrukerSets, RowsOfASerStandWhereTheFileHasThem) {
    // The ser, TD of both dimensions, further records, rows incomplete or missing.
    const std::tuple<std::string, int, int, Records, int> rows[] = {
        {rows_of(3, 6, 6), 6, 3, {}, 0},
        {rows_of(3, 6, 256), 6, 3, {}, 0},
        {rows_of(3, 6, 256, 2 * 1024 + 24), 6, 3, {}, 0},  // the last block ends with its points
        {rows_of(2, 6, 256), 6, 3, {}, 1},                 // whole blocks, but a row short
        {rows_of(3, 6, 6, 24 + 24 + 8), 6, 3, {}, 1},      // packed, cut off within the last row
        {rows_of(3, 7, 7), 7, 3, {}, 0},                   // the odd word of each row is left out
        {rows_of(3, 256, 256), 256, 3, {}, 0},
        {rows_of(3, 258, 512), 258, 3, {}, 0},
        {rows_of<double>(3, 6, 128), 6, 3, {"$DTYPA= 2"}, 0}};
    for (const auto& [ser, td, td2, records, missing] : rows) {
        ASSERT_EQ(set({{"ser", ser}, {"acqus", acqus(td, records)}, {"acqu2s", acqu2s(td2)}}, "ser"), 1) << platform_.said();
        EXPECT_EQ(counts(), (std::vector{td / 2, td2, 1}));
        const auto all = grid();
        const size_t held = ser.size() == 56 ? 7 : all.size() - static_cast<size_t>(missing * (td / 2));
        for (size_t i = 0; i < all.size(); ++i) {
            const float first =
                static_cast<float>(100 * (i / static_cast<size_t>(td / 2)) + 2 * (i % static_cast<size_t>(td / 2)) + 1);
            EXPECT_EQ(all[i], i < held ? Complex(first, first + 1) : Complex()) << ser.size() << " point " << i;
        }
        EXPECT_EQ(said(format_text("set%d/ser ends before its last row: %d of its rows", sets_, missing)), missing > 0);
    }
}

TEST_F(BrukerSets, WhatWasRecordedInDimensionTwoDecidesItsKey) {
    const std::string series = parameter_file({"$FT_mod= 0", "$MC2= 3", "$SF= 100.4999"}), procs = parameter_file({"$PHC0= 30"});
    // FnMODE, further files, key, domain code, A, offset of dimension 2.
    const std::tuple<int, Files, std::string, int, float, float> rows[] = {
        {1, {}, "2D_MAGNITUDE", 1, 5, 500},
        {2, {}, "2D_TPPI", 2, 5, 500},
        {3, {{"pdata/1/procs", procs}}, "2D_TPPI", 2, -30, 500},
        {4, {}, "2D_HYPERCOMPLEX", 1, 5, 500},
        {5, {}, "2D_STATESTPPI", 1, 5, 500},
        {6, {{"pdata/1/procs", procs}}, "2D_ECHOANTIECHO", 1, 60, 500},
        {6, {}, "2D_ECHOANTIECHO", 1, 5, 500},
        {0, {}, "1D", 1, 5, 500},
        {0, {{"pdata/1/proc2s", parameter_file({"$MC2= 4", "$SF= 100.49995"})}}, "2D_STATESTPPI", 1, 5, 50},
        {4, {{"pdata/1/proc2s", series}}, "1D", 1, 5, 100},
        {4, {{"pdata/1/proc2s", parameter_file({"$FT_mod= 6", "$FTSIZE= 0"})}}, "1D", 1, 5, 500},
        {4, {{"vclist", "# loops\n2\n\n4 x\n8"}}, "1D", 1, 5, 500}};
    settings.default_pa = 5;
    for (const auto& [mode, more, key, code, a, offset] : rows) {
        Files files = {{"ser", rows_of(4, 6, 6)}, {"acqus", acqus(6)}, {"acqu2s", acqu2s(4, {format_text("$FnMODE= %d", mode)})}};
        files.insert(more.begin(), more.end());
        ASSERT_EQ(set(files, "ser"), 1);
        EXPECT_EQ(show.process_type, key) << mode;
        EXPECT_EQ((std::pair{show.dims[1].domain_code, show.phase[0]}), (std::pair{code, a})) << mode << key;
        EXPECT_NEAR(show.dims[1].offset, offset, 1e-3) << mode;
    }
    EXPECT_EQ(show.array_values, (std::vector<double>{2, 4, 8}));
    EXPECT_EQ(platform_.replies.size(), 0U);
    const std::pair<std::string, std::vector<double>> lists[] = {
        {"10s\r\n500m\n20u\n3n\n0.25\n", {10, 0.5, 2e-5, 3e-9, 0.25}}, {"dB\n-5.5\n", {-5.5}}, {"inf\nnan\n", {}}};
    for (const auto& [text, values] : lists) {
        Files files = {{"ser", rows_of(4, 6, 6)}, {"acqus", acqus(6)}, {"acqu2s", acqu2s(4, {"$SW= 25"})}, {"vdlist", text}};
        ASSERT_EQ(set(files, "ser"), 1);
        ASSERT_EQ(show.array_values.size(), values.size()) << text;
        for (size_t i = 0; i < values.size(); ++i) EXPECT_DOUBLE_EQ(show.array_values[i], values[i]);
    }
    // The widths contradict one another: 25 ppm of 100.5 MHz.
    EXPECT_EQ((std::pair{show.dims[1].sw, show.other_sw2}), (std::pair{2000.0F, 2512.5}));
    EXPECT_TRUE(said("SW2 is 2000 Hz, SW_h of acqu2s; its SW x SFO1 gives 2512.5 Hz."));
}

TEST_F(BrukerSets, SparseRowsAndThirdDimensionsFindTheirPlaces) {
    const std::string pairs = "$FnMODE= 5", single = "$FnMODE= 1", third = acqu2s(2, {"$FnMODE= 1", "$NusTD= 2"});
    // Rows in the file, acqus records, acqu2s, further files, counts of dimensions 2 and 3, row that stands at each place.
    using Rows = std::vector<int>;
    const std::tuple<int, Records, std::string, Files, Rows, Rows> rows[] = {
        {4, {}, acqu2s(4, {single, "$NusTD= 7"}), {{"nuslist", "5\n0\n\n1\n3\n"}}, {7, 1}, {101, 201, 0, 301, 0, 1, 0}},
        {4,
         {"$FnTYPE= 2"},
         acqu2s(4, {pairs}),
         {{"nuslist", "2\n0"}, {"acqu2", acqu2s(8)}},
         {8, 1},
         {201, 301, 0, 0, 1, 101, 0, 0}},
        {4, {}, acqu2s(4, {single}), {{"nuslist", "5 "}}, {6, 1}, {0, 0, 0, 0, 0, 1}},
        {2, {}, acqu2s(4, {single}), {{"nuslist", "3\n1\n0\n"}}, {4, 1}, {0, 101, 0, 1}},  // the third row is missing
        {4, {"$FnTYPE= 0"}, acqu2s(4, {single}), {{"nuslist", "5\n0\n1\n3\n"}}, {4, 1}, {1, 101, 201, 301}},
        {4, {}, acqu2s(2), {{"acqu3s", acqu2s(2)}}, {2, 2}, {1, 101, 201, 301}},
        {6, {"$AQSEQ= 1"}, acqu2s(3), {{"acqu3s", acqu2s(2)}}, {3, 2}, {1, 201, 401, 101, 301, 501}},
        {4,
         {},
         acqu2s(2, {pairs, "$NusTD= 6"}),
         {{"acqu3s", third}, {"nuslist", "2 1\n0 0\n"}},
         {6, 2},
         {201, 301, 0, 0, 0, 0, 0, 0, 0, 0, 1, 101}},
        {4,
         {},
         acqu2s(2, {pairs, "$NusTD= 6"}),
         {{"acqu3s", third}, {"nuslist", "1 2\n0 0\n"}},
         {6, 2},
         {201, 301, 0, 0, 0, 0, 0, 0, 0, 0, 1, 101}}};
    for (const auto& [count, records, second, more, want_counts, starts] : rows) {
        Files files = {{"ser", rows_of(count, 6, 6)}, {"acqus", acqus(6, records)}, {"acqu2s", second}};
        files.insert(more.begin(), more.end());
        ASSERT_EQ(set(files, "ser", more.contains("acqu3s") ? " -BRUKERUNIX3" : ""), 1) << platform_.said();
        EXPECT_EQ(counts(), (Rows{3, want_counts[0], want_counts[1]}));
        EXPECT_EQ(row_starts(), starts);
        EXPECT_EQ(said("Sparse sampling: "), more.contains("nuslist") && records != Records{"$FnTYPE= 0"});
    }
    EXPECT_EQ(show.process_type, "3D_GENERIC");
    EXPECT_EQ((std::pair{show.dims[2].sf, show.dims[2].sw}), (std::pair{100.5F, 2000.0F}));
    for (const char* list : {"x\n", "-1\n", "1.5\n", "\n", "99999999999\n"})
        refused_set({{"ser", rows_of(4, 6, 6)}, {"acqus", acqus(6)}, {"acqu2s", acqu2s(4)}, {"nuslist", list}}, "ser", "nuslist");
}

TEST_F(BrukerSets, ProcessedDataKeepTheirStoredValues) {
    const std::string procs =
                          parameter_file({"$OFFSET= 10", "$SF= 400.498", "$NC_proc= -3", "$SI= 4", "$PHC0= 40", "$TI= <of procs>"}),
                      big = parameter_file({"$BYTORDP= 1"}), doubles = parameter_file({"$DTYPP= 2", "$BYTORDP= 0"}),
                      big_acqus = acqus(8, {"$BYTORDA= 1", "$GRPDLY= 3", "$INSTRUM= <spect>"}), re = words<int32_t>({1, -2, 3, 4}),
                      im = words<int32_t>({5, 6, -7, 8});
    const std::vector<float> both = {1, 5, -2, 6, 3, -7, 4, 8}, real = {1, 0, -2, 0, 3, 0, 4, 0};
    const std::tuple<Files, std::string, std::string, std::vector<float>> rows[] = {
        {{{"1r", re}, {"1i", im}, {"acqus", acqus(8)}}, "1r", "", both},
        {{{"pdata/2/1r", re}, {"pdata/2/procs", procs}, {"acqus", acqus(8)}}, "pdata/2/1r", "Could not open ", real},
        {{{"1r", words<int32_t>({1, -2, 3, 4}, ByteOrder::big)},
          {"1i", words<int32_t>({5, 6, -7, 8}, ByteOrder::big)},
          {"acqus", big_acqus}},
         "1r",
         "",
         both},
        {{{"1r", words<int32_t>({1, -2, 3, 4}, ByteOrder::big)},
          {"1i", words<int32_t>({5, 6}, ByteOrder::big)},
          {"procs", big},
          {"acqus", acqus(8)}},
         "1r",
         "1i ends before its last point",
         {1, 5, -2, 6, 3, 0, 4, 0}},
        {{{"1r", words<double>({1, -2, 3, 4})}, {"1i", words<double>({5, 6, -7, 8})}, {"procs", doubles}, {"acqus", big_acqus}},
         "1r",
         "",
         both},
        {{{"1r", re}, {"1i", im}, {"procs", procs}, {"title", "own"}, {"acqus", acqus(8, {"$GRPDLY= 3", "$INSTRUM= <spect>"})}},
         "1r",
         "",
         both}};
    for (const auto& [files, name, text, want] : rows) {
        ASSERT_EQ(set(files, name), 1) << platform_.said();
        EXPECT_EQ(values(), want);
        EXPECT_TRUE(said(text) && said("Could not open ") == text.starts_with("Could")) << platform_.said();
        EXPECT_TRUE(show.dims[0].frequency && show.dims[0].sense == 1 && show.group_delay == 0 && show.phase[0] == 0);
    }
    EXPECT_NEAR(show.dims[0].offset, 10 * 400.498 - 4000, 1e-3);
    EXPECT_NEAR(show.o1, 10 * 400.5 - 4000, 1e-9);
    EXPECT_EQ(show.comment + "|" + show.title, "spect, NC_proc= -3|own");
    refused_set({{"1r", "123"}, {"acqus", acqus(8)}}, "1r", "it holds 0 points");
    refused_set({{"1r", re}, {"procs", procs}}, "1r", "File error for Bruker acqus (Missing]");
}

TEST_F(BrukerSets, TilesOfAPlaneAreInOrder) {
    const auto procs = [](int si, int tile, const Records& more = {}) {
        Records all = {format_text("$SI= %d", si), format_text("$XDIM= %d", tile), "$FT_mod= 6"};
        all.insert(all.end(), more.begin(), more.end());
        return parameter_file(all);
    };
    const auto as_text = [](const std::vector<Complex>& all) {
        std::string text;
        for (const Complex point : all) text += format_text(point.imag() != 0 ? "%g/%g " : "%g ", point.real(), point.imag());
        return text;
    };
    std::vector<int32_t> values;
    for (int i = 1; i <= 16; ++i) values.push_back(i);
    const std::string plane = words(values), eight = words(std::vector<int32_t>(values.begin(), values.begin() + 8));
    const std::string ordered = "1 2 5 6 3 4 7 8 9 10 13 14 11 12 15 16 ", pairs = "1/8 2/7 3/6 4/5 5/4 6/3 7/2 8/1 ";
    const std::string other = words<int32_t>({8, 7, 6, 5, 4, 3, 2, 1});
    // The file given and the others of its folder, procs and proc2s, what comes out.
    const std::tuple<std::string, Files, std::string, std::string, std::string> rows[] = {
        {"2rr", {{"2rr", plane}}, procs(4, 2), procs(4, 2), ordered},
        {"2rr", {{"2rr", plane}}, procs(4, 0), procs(4, 9), "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 "},
        {"2rr", {{"2rr", eight}}, procs(4, 2), procs(2, 2), "1 2 5 6 3 4 7 8 "},
        {"2rr", {{"2rr", eight}}, procs(2, 2), procs(4, 2), "1 2 3 4 5 6 7 8 "},
        {"2rr", {{"2rr", eight}, {"2ii", other}}, procs(4, 4), procs(2, 2), pairs},
        {"2rr", {{"2rr", eight}, {"2ir", other}, {"2ri", eight}, {"2ii", plane}}, procs(4, 4), procs(2, 2), pairs},
        {"2rr", {{"2rr", eight}, {"2ri", other}, {"2ii", plane}}, procs(4, 4), procs(2, 2), "1 2 3 4 5 6 7 8 "},
        {"2ri", {{"2ri", eight}, {"2ii", other}}, procs(4, 4), procs(2, 2), pairs},
        {"2ir", {{"2ir", eight}, {"2ii", other}}, procs(4, 4), procs(2, 2), "1 2 3 4 5 6 7 8 "},
        {"2rr", {{"2rr", eight}}, procs(64, 2, {"$STSI= 4"}), procs(2, 2), "1 2 5 6 3 4 7 8 "}};
    for (const auto& [name, files, first, second, want] : rows) {
        Files all = {{"acqus", "##TITLE= TopSpin\n" + acqus(8)},
                     {"acqu2s", acqu2s(4)},
                     {"pdata/1/procs", first},
                     {"pdata/1/proc2s", second}};
        for (const auto& [file, content] : files) all["pdata/1/" + file] = content;
        ASSERT_EQ(set(all, "pdata/1/" + name), 1) << platform_.said();
        EXPECT_EQ(as_text(grid()), want) << name;
        EXPECT_TRUE(show.dims[0].frequency && show.dims[1].frequency && show.process_type == "2D_MAGNITUDE");
        EXPECT_EQ(show.dims[0].sw, first.find("STSI") == std::string::npos ? 8000 : 500);
    }
    Files all = {{"3rrr", plane},        {"acqus", "##TITLE= XWIN-NMR\n" + acqus(8)},
                 {"acqu2s", acqu2s(4)},  {"acqu3s", acqu2s(2)},
                 {"procs", procs(2, 1)}, {"proc2s", procs(4, 2, {"$OFFSET= 20", "$SW_p= 3000", "$SF= 100"})},
                 {"proc3s", procs(2, 2)}};
    ASSERT_EQ(set(all, ""), 1) << platform_.said();
    EXPECT_EQ(counts(), (std::vector{2, 4, 2}));
    EXPECT_EQ(as_text(grid()), "1 5 2 6 9 13 10 14 3 7 4 8 11 15 12 16 ");
    EXPECT_EQ((std::pair{show.dims[1].sw, show.dims[1].offset}), (std::pair{3000.0F, 500.0F}));
    const std::pair<std::string, std::string> wrong[] = {{procs(3, 2), "no whole number of tiles of 2"},
                                                         {procs(0, 2), "give 0 points (##$SI) of dimension 1"},
                                                         {procs(-4, 2), "give -4 points"},
                                                         {procs(1 << 30, 2), "it holds 16 words of the"}};
    for (const auto& [first, text] : wrong) {
        all["procs"] = first;
        refused_set(all, "3rrr", text);
    }
    all.erase("proc3s");
    refused_set(all, "3rrr", "File error for Bruker proc3s (Missing]");
}

TEST_F(BrukerSets, OtherLayoutsOfTextParametersAreRead) {
    const std::vector<float> row = {1, 2, 3, 4};
    const std::string points = words<int32_t>({1, 2, 3, 4}), text = acqus(4);
    const std::string spectrum = parameter_file({"$SF= 300", "$SW_p= 3000", "$OFFSET= 10"});
    // The files, the one given, the key.
    const std::tuple<Files, std::string, std::string> rows[] = {
        {{{"fid", "A000 header, 28 bytes long. " + points}, {"acqus", text}}, "fid", ""},
        {{{"w.PAR", text}, {"w.fid", points}, {"W.tit", "A title\nmore"}}, "w.PAR", " -WINNMR1DOF"},
        {{{"w.DIS", text}, {"w.ser", points + points}}, "w.ser", " -WINNMR2DNF"},
        {{{"w.DIS", acqus(4) + "##$SI= 2"}, {"w.1R", words<int32_t>({1, 3})}, {"w.1i", words<int32_t>({2, 4})}},
         "w.dis",
         " -WINNMR1DNS"},
        {{{"w.fqs", spectrum}, {"w.1R", words<int32_t>({1, 3})}, {"w.1i", words<int32_t>({2, 4})}}, "w.fqs", " -WINNMRFQS"}};
    for (const auto& [files, name, key] : rows) {
        const bool there = files.contains(name);
        ASSERT_EQ(set(files, there ? name : files.begin()->first, key), 1) << platform_.said();
        EXPECT_EQ(values(), row) << key;
        EXPECT_EQ(show.dims[1].points, key == " -WINNMR2DNF" ? 2 : 1);
        EXPECT_EQ(show.title, files.contains("W.tit") ? "A title" : "");
    }
    EXPECT_EQ((std::vector{show.dims[0].sf, show.dims[0].sw, show.dims[0].offset}), (std::vector{300.0F, 3000.0F, 1500.0F}));
    const std::tuple<Files, std::string, std::string, std::string> wrong[] = {
        {{{"w.fid", points}}, "w.fid", " -WINNMR1DOF", "Could not open w.PAR"},
        {{{"w.dis", text}}, "w.dis", " -WINNMR2DNF", "Could not open w.SER"},
        {{{"w.par", std::string(40, '\1')}, {"w.fid", points}}, "w.fid", " -WINNMR1DOF", "is no text of labelled records"},
        {{{"w.par", text}, {"w.smx", points}}, "w.par", " -WINNMR2DOS", "SMX files not supported"}};
    for (const auto& [files, name, key, said_text] : wrong) refused_set(files, name, said_text, key);
}

TEST_F(BrukerSets, ConfigurationSwapsThePartsUnlessTyped) {
    const Files topspin = {{"fid", words<int32_t>({1, 2})}, {"acqus", "##TITLE= TopSpin\n" + acqus(2)}};
    // RI_ON_IMPORT, BRUKER_XWIN_RI, BRUKER_ASPECT_RI, the option word, swapped.
    const std::tuple<bool, bool, bool, std::string, bool> rows[] = {
        {false, false, false, "", false}, {true, false, false, "", true},    {false, true, false, "", true},
        {false, false, true, "", false},  {true, true, true, " SR0", false}, {false, false, false, " SR1", true}};
    for (const auto& [all, xwin, aspect, word, swapped] : rows) {
        settings.ri_on_import = all;
        settings.bruker_xwin_ri = xwin;
        settings.bruker_aspect_ri = aspect;
        ASSERT_EQ(set(topspin, "fid", word), 1);
        EXPECT_EQ(values(), swapped ? (std::vector<float>{2, 1}) : (std::vector<float>{1, 2})) << word;
        EXPECT_EQ(show.dims[0].sense, swapped ? 1 : -1);
    }
}

TEST_F(BrukerSets, HostileSetsAreRefusedOrFinite) {
    const std::string ser = rows_of(4, 6, 6);
    load(test::sample_points(4));
    const std::tuple<Files, std::string> wrong[] = {
        {{{"acqus", acqus(6)}}, "File error for Bruker acqu2s (Missing]"},
        {{{"acqus", acqus(6)}, {"acqu2s", acqu2s(0)}}, "gives no number of rows (##$TD)"},
        {{{"acqus", acqus(6)}, {"acqu2s", acqu2s(-3)}}, "gives no number of rows (##$TD)"},
        {{{"acqus", acqus(6)}, {"acqu2s", acqu2s(2147483647)}}, "its 96 bytes are far from the 2147483647 rows"},
        {{{"acqus", acqus(6)}, {"acqu2s", acqu2s(4)}, {"nuslist", "999999999"}}, "its 96 bytes are far from the 1000000000 rows"},
        {{{"acqus", acqus(6)}, {"acqu2s", acqu2s(50000)}, {"acqu3s", acqu2s(50000)}}, "are far from the 2500000000 rows"}};
    for (const auto& [files, text] : wrong) {
        Files all = files;
        all["ser"] = ser;
        refused_set(all, "ser", text);
    }
    for (const char* name : {"ser", "acqu2s"}) {
        Files all = {{"ser", ser}, {"acqus", acqus(6)}, {"acqu2s", acqu2s(4)}};
        all.erase(name);
        folder_ = format_text("device_%s/", name);
        for (const auto& [file, content] : all) data_.write(folder_ + file, content);
        std::filesystem::create_symlink("/dev/zero", data_.path(folder_ + name));
        refused("IM " + data_.path(folder_ + "ser"), name);
    }
    // Whatever is cut off or broken: refused without a trace, or data with counts and finite axes.
    const Files good = {{"ser", ser},
                        {"acqus", acqus(6)},
                        {"acqu2s", acqu2s(4)},
                        {"nuslist", "3\n1\n0\n2\n"},
                        {"2rr", ser.substr(0, 64)},
                        {"procs", parameter_file({"$SI= 4", "$XDIM= 2", "$OFFSET= 3"})},
                        {"proc2s", parameter_file({"$SI= 4", "$XDIM= 2", "$STSI= 2"})}};
    const auto survives = [&](const Files& files, const char* name, const char* key) {
        const DataRecord before = show;
        if (set(files, name, key) == 0) return before == show;
        const auto sane = [](const Dimension& d) {
            return d.points > 0 && d.points < 1 << 22 && std::isfinite(d.sf + d.sw + d.offset);
        };
        return sane(show.dims[0]) && sane(show.dims[1]) && grid().size() > 0;
    };
    for (const auto& [file, content] : good) {
        const char* name = file == "2rr" || file.starts_with("proc") ? "2rr" : "ser";
        for (size_t i = 0; i < content.size(); i += 1 + content.size() / 40) {
            Files files = good;
            files[file] = content.substr(0, i);
            EXPECT_TRUE(survives(files, name, " -BRUKERUNIX2")) << file << " cut at " << i;
            files[file] = content;
            files[file][i] = static_cast<char>(content[i] ^ (i % 3 == 0 ? 0x80 : 0x09));
            EXPECT_TRUE(survives(files, name, " -BRUKERUNIX2")) << file << " broken at " << i;
        }
    }
}

}  // namespace
}  // namespace zolt
