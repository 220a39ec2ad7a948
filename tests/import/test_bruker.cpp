// Import of Bruker FIDs through the typed commands: values, parameters, names, questions and refusals.
#include <cmath>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "common/bytes.h"
#include "common/text.h"
#include "datafile/native_file.h"
#include "import/bruker_delay.h"
#include "import/format.h"
#include "import/labelled.h"
#include "import/merge.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::TemporaryFolder;

using Integers = std::vector<std::pair<int32_t, int32_t>>;

std::string words(const Integers& points, ByteOrder order = ByteOrder::little) {
    std::string bytes(points.size() * 8, '\0');
    for (size_t i = 0; i < points.size(); ++i) {
        store_word(bytes.data() + 8 * i, points[i].first, order);
        store_word(bytes.data() + 8 * i + 4, points[i].second, order);
    }
    return bytes;
}

// n points that differ in every byte.
Integers some_points(size_t n) {
    Integers points;
    for (size_t i = 0; i < n; ++i) {
        const auto k = static_cast<int32_t>(i);
        points.emplace_back(k * 70001 - 123456, 987654 - k * 300007);
    }
    return points;
}

std::vector<Complex> values_of(const Integers& points) {
    std::vector<Complex> values;
    for (const auto& [re, im] : points) values.emplace_back(static_cast<float>(re), static_cast<float>(im));
    return values;
}

// A parameter file of the given records, without their "##".
std::string records(const std::vector<std::string>& lines) {
    std::string text = "##TITLE= Parameter file\n##JCAMPDX= 5.0\n";
    for (const std::string& line : lines) text += "##" + line + "\n";
    return text + "##END=\n";
}

std::string acqus(int td, const std::vector<std::string>& more = {}) {
    std::vector<std::string> lines = {"ORIGIN= Bruker BioSpin GmbH", "$O1= 1880.5", "$O2= -7", "$SFO1= 400.5", "$SW_h= 8000",
                                      format_text("$TD= %d", td)};
    lines.insert(lines.end(), more.begin(), more.end());
    return records(lines);
}

class BrukerImport : public CommandTest {
protected:
    // Imports a fid of these bytes with this acqus, in a folder of its own; the result of the line.
    int import(const std::string& fid, const std::string& parameters) {
        const std::string name = format_text("set%d/", ++sets_);
        data_.write(name + "acqus", parameters);
        return run("IM " + data_.write(name + "fid", fid));
    }
    bool said(const std::string& text) const { return platform_.said().find(text) != std::string::npos; }
    void forget() {
        platform_.messages.clear(), platform_.questions.clear(), platform_.captions.clear(), platform_.statuses.clear();
    }

    TemporaryFolder data_;
    int sets_ = 0;
};

TEST_F(BrukerImport, ReadsWordsOfEveryKind) {
    const Integers points = {{1, -2}, {0x12345678, -0x12345678}, {2147483647, -2147483647 - 1}, {255, 256}};
    for (const auto& [code, order] :
         {std::pair("0", ByteOrder::little), std::pair("1", ByteOrder::big), std::pair("2", ByteOrder::big)}) {
        ASSERT_EQ(import(words(points, order), acqus(8, {std::string("$BYTORDA= ") + code})), 1) << platform_.said();
        EXPECT_EQ(data(), values_of(points)) << code;
    }
    // 24-bit words: bytes reversed, then the sign taken from bit 23 whatever the top byte holds.
    const std::string old_words("\x00\x7F\xFF\xFF\x5A\x80\x00\x00\x00\xFF\xFF\xFF\xFF\x00\x00\x01", 16);
    ASSERT_EQ(import(old_words, acqus(4, {"ORIGIN= UXNMR/P"})), 1);
    EXPECT_EQ(data(), (std::vector<Complex>{{8388607, -8388608}, {-1, 1}}));
    // Big-endian as well: both reversals, the sign extended between them.
    const std::string twice("\x5A\x00\x00\x7F\x00\x80\x00\xFF", 8);
    ASSERT_EQ(import(twice, acqus(2, {"ORIGIN= UXNMR/P", "$BYTORDA= 1"})), 1);
    EXPECT_EQ(data(), (std::vector<Complex>{{2130706432, -16744193}}));
    ASSERT_EQ(import(words(points), acqus(8, {"ORIGIN= UXNMR, Bruker Analytische Messtechnik"})), 1);
    EXPECT_EQ(data(), values_of(points));

    const double doubles[] = {1.5, -2.25e10, 3e-5, 0};
    std::string bytes(sizeof doubles, '\0');
    std::memcpy(bytes.data(), doubles, sizeof doubles);
    ASSERT_EQ(import(bytes, acqus(65536, {"$DTYPA= 2"})), 1);
    EXPECT_EQ(data(), (std::vector<Complex>{{1.5F, -2.25e10F}, {3e-5F, 0}}));
    for (size_t i = 0; i < bytes.size(); i += 8)
        std::reverse(bytes.begin() + static_cast<long>(i), bytes.begin() + static_cast<long>(i) + 8);
    ASSERT_EQ(import(bytes, acqus(2, {"$DTYPA= 2", "$BYTORDA= 1"})), 1);
    EXPECT_EQ(data(), (std::vector<Complex>{{1.5F, -2.25e10F}}));
}

TEST_F(BrukerImport, CountsPointsAsTheFileAllows) {
    const Integers points = some_points(100);
    const std::string fid = words(points);
    const struct {
        int td;
        size_t cut, want;
    } rows[] = {{65536, 0, 100}, {200, 0, 100}, {120, 0, 60}, {7, 0, 3}, {201, 0, 100}, {65536, 3, 99}, {65536, 792, 1}};
    for (const auto& row : rows) {
        ASSERT_EQ(import(fid.substr(0, fid.size() - row.cut), acqus(row.td)), 1) << row.td;
        EXPECT_EQ(data(), values_of({points.begin(), points.begin() + static_cast<long>(row.want)})) << row.td << " " << row.cut;
    }
    const struct {
        const char* record;
        int want;
    } modes[] = {{"$AQ_mod= 0", 0},  {"$AQ_mod= 1", 1}, {"$AQ_mod= 2", 2}, {"$AQ_mod= 3", 1},
                 {"$AQ_mod= -1", 1}, {"$X= 1", 2},      {"$aq_MOD= 0", 0}};
    for (const auto& row : modes) {
        ASSERT_EQ(import(fid, acqus(200, {row.record})), 1);
        EXPECT_EQ(show.dims[0].domain_code, row.want) << row.record;
    }
}

TEST_F(BrukerImport, FillsTheRecord) {
    ::setenv("TZ", "UTC", 1);
    ::tzset();
    const std::string name = "strychnine/10/";
    data_.write(name + "acqus",
                acqus(16, {"OWNER= nmrsu", "$DATE= 1046701230", "$PULPROG= <zg30>", "$NS= 16", "$NUC1= <13C>", "$INSTRUM= <spect>",
                           "$SOLVENT= <CDCl3>", "$D= (0..3)\n0.125\n2.5 0.03", "$P= (0..2)\n1.25 9.75 19"}));
    data_.write(name + "pdata/1/procs", records({"$SF= 400.4975", "$PHC0= 136.5", "$PHC1= -21.25", "$LB= 0.5"}));
    data_.write(name + "pdata/1/title", "A spectrum at 25\xB0\nsecond line\n");
    ASSERT_EQ(run("IM " + data_.write(name + "fid", words(some_points(8)))), 1) << platform_.said();
    const Dimension& d = show.dims[0];
    EXPECT_EQ(d.sf, 400.5F);
    EXPECT_EQ(d.sw, 8000.0F);
    EXPECT_NEAR(d.offset, 2500.0, 1e-3);
    EXPECT_FALSE(d.frequency);
    EXPECT_EQ(d.sense, -1);
    EXPECT_EQ(show.dims[1].sense, 1);
    EXPECT_EQ(d.axis_unit, unit_ppm);
    EXPECT_EQ(d.nucleus, "13C");
    EXPECT_EQ(show.o1, 1880.5);
    EXPECT_EQ(show.o2, -7);
    EXPECT_EQ(show.d1, 2.5);
    EXPECT_EQ(show.p1, 9.75);
    EXPECT_EQ(show.scans, 16);
    EXPECT_EQ(show.phase, (std::array<float, 3>{-136.5F, 21.25F, 0}));
    EXPECT_EQ(show.lb(), 0.5F);
    EXPECT_EQ(show.comment, "spect, CDCl3, ");
    EXPECT_EQ(show.solvent, "CDCl3");
    EXPECT_EQ(show.experiment, "zg30");
    EXPECT_EQ(show.date, "Mon Mar  3 14:20:30 2003");
    EXPECT_EQ(show.owner, "nmrsu");
    EXPECT_EQ(show.user, "nmrsu");
    EXPECT_EQ(show.title, "A spectrum at 25\xC2\xB0");
    EXPECT_EQ(show.source, "1D Bruker Unix");
    EXPECT_EQ(show.process_type, "1D");
    EXPECT_EQ(show.path, data_.path("strychnine/10"));
    EXPECT_EQ(show.file_a, root_.path("DATA/strychnine_10.zolt"));
    EXPECT_TRUE(show.loaded);
    EXPECT_FALSE(show.changed);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root_.path()))
        EXPECT_FALSE(entry.path().filename().string().starts_with("CDFF")) << "a temporary file is left";
}

TEST_F(BrukerImport, TakesWhatIsMissingFromTheDefaults) {
    settings.default_pa = 11;
    settings.default_pb = 22;
    settings.default_pc = 33;
    const std::string fid = words(some_points(8));
    data_.write("a/pdata/1/procs", records({"$SF= 0", "$PHC1= 0", "$LB= -1"}));
    data_.write("a/acqus", acqus(16, {"$SOLVENT= <D2O>", "$INSTRUM= <spect>", "$PULPROG= <" + std::string(200, 'p') + ">"}));
    ASSERT_EQ(run("IM " + data_.write("a/fid", fid)), 1);
    EXPECT_EQ(show.phase, (std::array<float, 3>{11, 0, 33}));
    EXPECT_FALSE(std::signbit(show.phase[1]));
    EXPECT_EQ(show.lb(), 0.0F);
    EXPECT_EQ(show.dims[0].offset, 1880.5F) << "without a reference the offset is O1";
    EXPECT_EQ(show.comment, "spect, ") << "the instrument replaces what stands before it";
    EXPECT_EQ(show.experiment.size(), 127U);
    ASSERT_EQ(import(fid, acqus(16, {"$SFO1= nan", "$SW_h= 1e300", "$O1= inf", "$SOLVENT= <D2O>"})), 1);
    EXPECT_EQ(show.dims[0].sf, 0.0F);
    EXPECT_EQ(show.dims[0].sw, 0.0F);
    EXPECT_EQ(show.o1, 0);
    EXPECT_EQ(show.comment, "spect, D2O, ");

    // With the parts swapped the FID turns the other way and stands a quarter turn off.
    const std::string path = data_.write("a/fid", words({{3, 5}}));
    platform_.answers = {"yes"};
    ASSERT_EQ(run("IM " + path + " -BrukerUnix1 SR1"), 1) << platform_.said();
    EXPECT_EQ(data(), (std::vector<Complex>{{5, 3}}));
    EXPECT_EQ(show.dims[0].sense, 1);
    EXPECT_EQ(show.phase[0], 101.0F);
}

TEST(GroupDelay, FollowsTheStatedValueThenTheTable) {
    const struct {
        DigitalFilter filter;
        double want;
    } rows[] = {{{67.98, true, 20, 2080}, 67.98},
                {{0, true, 10, 24}, 61.0208333333},
                {{-1, true, 11, 16}, 72.25},
                {{0, true, 12, 16}, 71.625},
                {{0, true, 12, 2048}, 72.03125},
                {{0, true, 13, 96}, 2.9947916667},
                {{0, true, 13, 128}, 0},
                {{0, false, 12, 16}, 0},
                {{0, true, 12, 15.6}, 71.625},
                {{0, true, 14, 16}, 0},
                {{0, true, 9, 16}, 0},
                {{NAN, true, 12, 5}, 0}};
    for (const auto& row : rows)
        EXPECT_NEAR(group_delay(row.filter), row.want, 1e-9) << row.filter.firmware << " " << row.filter.decimation;
}

TEST_F(BrukerImport, KeepsTheGroupDelayWithTheFile) {
    const std::string fid = words(some_points(80));
    const struct {
        std::vector<std::string> lines;
        double want;
    } rows[] = {{{"$DIGMOD= 1", "$DECIM= 2218.66666666667", "$DSPFVS= 20", "$GRPDLY= 67.9862518310547"}, 67.9862518310547},
                {{"$DIGMOD= 1", "$DECIM= 4", "$DSPFVS= 12", "$GRPDLY= -1"}, 48},
                {{"$DIGMOD= 0", "$DECIM= 4", "$DSPFVS= 12"}, 0},
                {{"$GRPDLY= 81"}, 0}};
    for (const auto& row : rows) {
        settings.bruker_filter = row.want > 60;  // whether the transform uses it is not the import's business
        ASSERT_EQ(import(fid, acqus(160, row.lines)), 1);
        EXPECT_EQ(show.group_delay, row.want);
        ASSERT_EQ(run("GA " + show.file_a), 1);
        EXPECT_EQ(show.group_delay, row.want) << "read again";
        EXPECT_EQ(show.dims[0].sense, -1) << "read again";
    }
}

TEST_F(BrukerImport, FindsTheParameterFile) {
    const std::string fid = words(some_points(4));
    const auto with_sf = [](int sf) { return acqus(8, {format_text("$SFO1= %d", sf)}); };
    const struct {
        std::vector<std::pair<std::string, int>> files;
        const char* data;
        int want;  ///< 0: refused
    } rows[] = {{{{"acqus", 101}, {"acqu", 102}, {"1/acqus", 103}}, "fid", 101},
                {{{"ACQU", 102}, {"1/acqus", 103}}, "fid", 102},
                {{{"4/acqus", 104}, {"2/acqu", 105}, {"10/acqus", 106}}, "fid", 105},
                {{{"e/acqus", 107}, {"e/pdata/1/acqus", 108}, {"acqus", 109}}, "e/pdata/fid", 107},
                {{{"e/acqus", 107}, {"acqus", 109}}, "e/PData/3/fid", 107},
                {{{"10/acqus", 106}, {"0/acqus", 106}}, "fid", 0}};
    for (const auto& row : rows) {
        const TemporaryFolder folder;
        for (const auto& [name, sf] : row.files) folder.write(name, with_sf(sf));
        platform_.default_answer = Answer::yes;
        EXPECT_EQ(run("IM " + folder.write(row.data, fid) + " brukerunix1"), row.want != 0 ? 1 : 0) << row.data;
        if (row.want != 0) {
            EXPECT_EQ(show.dims[0].sf, static_cast<float>(row.want)) << row.data;
        }
    }
    EXPECT_TRUE(said("File error for Bruker acqus (Missing]"));
    EXPECT_TRUE(said("Failed to import\n"));
}

TEST(LabelledFiles, ReadAsLinesOfTokens) {
    const TemporaryFolder folder;
    const std::string long_line = "##$X= " + std::string(2041, 'x') + "##$Y= 5\n";  // the label begins character 2048
    LabelledFile file;
    ASSERT_TRUE(read_labelled(folder.write("p", "##$A= <one two>\r\n##$a=2\n$$ ##$B= 3\n##$TD=1,5\n##$E= <>\n" + long_line +
                                                    "##$A= last\n##END=\n##$Z= 1\n"),
                              file));
    EXPECT_EQ(file.find("##$A")->value, "last");
    EXPECT_EQ(file.records[0].value, "one");
    EXPECT_EQ(file.records[0].text, "one two");
    EXPECT_EQ(file.number("##$a"), 2);
    EXPECT_EQ(file.number("##$TD"), 1);
    EXPECT_EQ(file.find("##$E")->value, "");
    EXPECT_EQ(file.number("##$Y"), 5);
    EXPECT_EQ(file.find("##$B"), nullptr);
    EXPECT_EQ(file.find("##$Z"), nullptr);
    EXPECT_FALSE(read_labelled("/dev/zero", file));
    EXPECT_EQ(readable_text(std::string_view("\xC3\xA4\xE4\0z", 5)), "\xC3\xA4\xC3\xA4 z");
}

TEST_F(BrukerImport, TakesFoldersAndNamesTheOutput) {
    const std::string fid = words(some_points(4));
    const auto experiment = [&](const std::string& name) {
        data_.write(name + "/fid", fid);
        return data_.write(name + "/acqus", acqus(8));
    };
    experiment("sample/10");
    experiment("own/proton.fid");
    data_.write("sample/notes/x", "");
    for (const char* typed : {"sample/10/fid", "sample/10", "sample/", "\"sample\\10\""}) {
        std::filesystem::remove(root_.path("DATA/sample_10.zolt"));
        ASSERT_EQ(run("IM " + (typed[0] == '"' ? "\"" + data_.path("sample\\10") + "\"" : data_.path(typed))), 1)
            << typed << platform_.said();
        EXPECT_EQ(show.file_a, root_.path("DATA/sample_10.zolt")) << typed;
    }
    ASSERT_EQ(run("IM " + data_.path("own/proton.fid")), 1);
    EXPECT_EQ(show.file_a, root_.path("DATA/proton.zolt"));
    data_.write("own/acqus", acqus(8));
    ASSERT_EQ(run("IM -BRUKERUNIX1 " + data_.write("own/my.run.dat", fid)), 1);
    EXPECT_EQ(show.file_a, root_.path("DATA/my.run.zolt"));
    settings.import_out_dir = data_.path("own");
    ASSERT_EQ(run("IM " + data_.path("sample/10") + " SPECIAL_NAME other"), 1);
    EXPECT_EQ(show.file_a, data_.path("own/other"));

    experiment("sample/9");
    EXPECT_EQ(run("IM " + data_.path("sample")), 0);
    EXPECT_TRUE(said("holds several experiments (9, 10). Name one of them.")) << platform_.said();
    EXPECT_EQ(run("IM " + data_.path("sample/notes")), 0);
    EXPECT_TRUE(said("sample/notes holds no data file"));
    settings.import_out_dir = data_.path("nowhere");
    EXPECT_EQ(run("IM " + data_.path("sample/9")), 0);
    EXPECT_TRUE(said("Unable to open output file\n" + data_.path("nowhere/sample_9.zolt") + "\nfor writing!"));
}

TEST_F(BrukerImport, AsksBeforeItReplaces) {
    const std::string path = data_.write("s/1/fid", words({{1, 2}}));
    data_.write("s/1/acqus", acqus(2));
    ASSERT_EQ(run("IM " + path), 1);
    const std::string target = show.file_a, before = test::read_file(target);
    data_.write("s/1/fid", words({{3, 4}}));
    forget();
    EXPECT_EQ(run("IM " + path), 0);
    EXPECT_TRUE(said("Target file name already exists: " + target + "\nOverwrite?"));
    EXPECT_TRUE(said(target + " was kept."));
    EXPECT_EQ(test::read_file(target), before);
    EXPECT_EQ(data(), (std::vector<Complex>{{1, 2}}));
    settings.no_file_overwrite = true;
    EXPECT_EQ(run("IM " + path), 0);
    EXPECT_TRUE(said("System configured to prevent Overwriting of existing files."));
    settings.no_file_overwrite = false;
    EXPECT_EQ(run("IM " + path + " SPECIAL_NAME " + path), 0);
    EXPECT_TRUE(said("Input and Output file names are identical.\nNot allowed!"));

    show.changed = true;
    platform_.answers = {"no"};
    forget();
    EXPECT_EQ(run("IM " + path), 0);
    EXPECT_EQ(platform_.questions.size(), 1U);
    EXPECT_EQ(platform_.questions[0], "File A is opened and has been modified.\nOverwrite with imported file?");
    EXPECT_TRUE(platform_.messages.empty());
    platform_.answers = {"yes", "yes"};
    show.file_b = "/some/b";
    EXPECT_EQ(run("IM " + path), 1);
    EXPECT_EQ(data(), (std::vector<Complex>{{3, 4}}));
    EXPECT_EQ(show.file_b, "/some/b");
}

TEST_F(BrukerImport, RecognisesWhatItCannotReadYet) {
    const std::string fid = words(some_points(4)), text = "##TITLE= Parameter file, ";
    const struct {
        const char* name;
        std::vector<std::pair<const char*, std::string>> beside;
        const char* key;
        const char* phrase;   ///< "": no translation starts
        const char* refusal;  ///< "": imported
    } rows[] = {
        {"fid", {{"acqus", acqus(8)}}, "", "of 1D Bruker Unix data type.", ""},
        {"FID", {{"acqus", text + "XWin-NMR  Version 3.5\n" + acqus(8)}}, "", "of Xwin NMR type.", ""},
        {"fid", {{"acqus", text + "TopSpin 4.0.6\n" + acqus(8)}, {"procpar", "x"}}, "nosuchkey", "of TopSpin NMR type.", ""},
        {"fid", {{"Procpar", "x"}}, "", "of Varian Unix data type.", "Recognised Varian Unix data, which cannot be imported yet."},
        {"fid", {}, "", "of Varian Unix data type.", "Recognised Varian Unix data"},
        {"phasefile", {{"procpar", "x"}}, "", "of Varian Unix data type.", "Recognised Varian Unix data"},
        {"1r", {{"procs", "x"}}, "", "of Bruker Unix conversion type 1R.", "Recognised Bruker Unix 1R data"},
        {"ser", {}, "", "of 2D Bruker Unix data type.", "Recognised 2D Bruker Unix data"},
        {"ser", {{"acqu3s", "x"}}, "", "of 3D Bruker Unix data type.", "Recognised 3D Bruker Unix data"},
        {"ser", {{"acqus", text + "TOPSPIN 3.2\n"}}, "", "of TopSpin NMR type.", "Recognised 2D Bruker Unix data"},
        {"d", {{"pb", "x"}}, "", "of Chemagnetics Type 2 data type.", "Recognised Chemagnetics Type 2 data"},
        {"data", {{"acq", "x"}, {"proc", "x"}}, "", "of Chemagnetics Type 3 data type.", "Recognised Chemagnetics Type 3 data"},
        {"x.dat", {}, "winnmr1d97", "of unknown data type.", "Recognised unknown data"},
        {"x.dat", {}, "GaML", "of GAML XML data.", "Recognised Philips-2 Import data"},
        {"data", {{"acq", "x"}}, "", "", "Don't know what to do with it!!!\n"},
        {"fid.txt", {{"acqus", "x"}}, "", "", "Unknown data source for "},
    };
    platform_.default_answer = Answer::yes;
    for (const auto& row : rows) {
        const TemporaryFolder folder;
        for (const auto& [name, content] : row.beside) folder.write(name, content);
        const std::string path = folder.write(row.name, fid);
        forget();
        EXPECT_EQ(run("IM " + path + " -" + row.key), row.refusal[0] == '\0' ? 1 : 0) << row.name << " " << row.phrase;
        EXPECT_EQ(said("Starting translation for " + path + " " + row.phrase), row.phrase[0] != '\0') << platform_.said();
        EXPECT_EQ(said("Failed to import\n"), row.refusal[0] != '\0');
        EXPECT_TRUE(said(row.refusal)) << row.name << platform_.said();
    }
}

TEST_F(BrukerImport, RefusesBadInputAndChangesNothing) {
    const Integers points = some_points(40);
    const std::string good_acqus = acqus(80, {"$BYTORDA= 0", "$D= (0..1)\n1 2", "$GRPDLY= 10", "$INSTRUM= <spect>"});
    load({{1, 2}, {3, 4}, {5, 6}, {7, 8}});
    const std::vector<Complex> before = data();
    const auto unchanged = [&] {
        return data() == before && show.file_a == root_.path("a.zolt") && show.dims[0].sf == 400.0F && !show.changed;
    };
    const auto files = [&] {
        std::error_code error;
        const std::filesystem::directory_iterator none, first(root_.path("DATA"), error);
        return error ? 0 : std::distance(first, none);
    };
    EXPECT_EQ(import("", good_acqus), 0);
    EXPECT_TRUE(said("set1/fid is empty.")) << platform_.said();
    EXPECT_EQ(import(words(points), acqus(0)), 0);
    EXPECT_EQ(import(words(points), acqus(-5)), 0);
    EXPECT_EQ(import("1234567", good_acqus), 0);
    EXPECT_TRUE(said("set4/fid cannot be imported: it holds 1 words of the 80 that"));
    EXPECT_EQ(import(words(points), records({"$SW_h= 5000"})), 0);
    EXPECT_TRUE(said("gives no number of points (##$TD)"));
    EXPECT_EQ(run("IM " + data_.path("none")), 0);
    EXPECT_TRUE(said("Could not find file - " + data_.path("none")));
    EXPECT_EQ(run("IM"), 0) << "the dialog was cancelled";
    EXPECT_EQ(platform_.dialogs.size(), 1U);
    data_.write("device/acqus", good_acqus);
    std::filesystem::create_symlink("/dev/zero", data_.path("device/fid"));
    EXPECT_EQ(run("IM " + data_.path("device/fid")), 0);
    EXPECT_TRUE(said("device/fid is no ordinary file"));
    EXPECT_EQ(run("GA " + data_.path("device/fid")), 0);
    std::filesystem::create_symlink("/dev/zero", data_.path("acqus"));
    EXPECT_EQ(run("IM " + data_.write("fid", words(points)) + " TOPSPIN"), 0);
    EXPECT_TRUE(unchanged());
    EXPECT_EQ(files(), 0);

    // Whatever is cut off or broken: what is imported has points and finite parameters, what is refused leaves no trace.
    platform_.default_answer = Answer::yes;
    const auto survives = [&](const std::string& fid, const std::string& parameters) {
        data_.write("s/acqus", parameters);
        const auto count = files();
        if (run("IM " + data_.write("s/fid", fid)) == 0) return files() == count;
        return !show.cvNMRdata().empty() && std::isfinite(show.dims[0].sf) && std::isfinite(show.dims[0].sw) &&
               std::isfinite(show.dims[0].offset) && show.group_delay <= show.pts1d();
    };
    const std::string fid = words(points);
    for (size_t i = 0; i < 40; ++i) {
        EXPECT_TRUE(survives(fid.substr(0, fid.size() * i / 40), good_acqus)) << i;
        EXPECT_TRUE(survives(fid, good_acqus.substr(0, good_acqus.size() * i / 40))) << i;
    }
    for (size_t i = 0; i < good_acqus.size(); ++i) {
        std::string broken = good_acqus;
        broken[i] = static_cast<char>(broken[i] ^ (i % 2 == 0 ? 0x80 : 0x11));
        EXPECT_TRUE(survives(fid, broken)) << i;
    }
}

TEST_F(BrukerImport, GetFileOffersTheImport) {
    const std::string path = data_.write("s/1/fid", words({{1, 2}, {3, 4}}));
    data_.write("s/1/acqus", acqus(4));
    const std::string question = "Selected file: " + path + ",\nis not a CDFF file.  \nWant to try an Auto Detect Import?";
    EXPECT_EQ(run("GA " + path), 0);
    ASSERT_EQ(platform_.questions.size(), 1U);
    EXPECT_EQ(platform_.questions[0], question);
    EXPECT_FALSE(show.loaded);
    platform_.answers = {"yes"};
    EXPECT_EQ(run("GA " + path), 1);
    const std::string native = show.file_a;
    EXPECT_EQ(run("GA " + data_.path("none")), 0);
    EXPECT_TRUE(said("File [ " + data_.path("none") +
                     " ] not found.\nIn module FILE function IsFileCDFF\nSpelled correctly?\nPath correct?\nDoes the file exist?"));
    forget();
    EXPECT_EQ(run("GA " + data_.write("tiny", "abc")), 0);
    EXPECT_EQ(run("GA " + data_.write("empty", "")), 0);
    EXPECT_EQ(run("GA " + data_.path()), 0);
    EXPECT_TRUE(platform_.questions.empty());
    EXPECT_TRUE(said("tiny is no data file") && said("empty is empty."));

    show.changed = true;
    show.phase = {1, 2, 3};
    settings.default_pb = 45;
    EXPECT_EQ(run("GA " + native), 0);
    ASSERT_EQ(platform_.questions.size(), 1U);
    EXPECT_EQ(platform_.captions.back(), "GetFile");
    EXPECT_EQ(show.phase[0], 1.0F);
    // IM takes a native file as it stands, whatever its name.
    show.changed = false;
    std::filesystem::copy_file(native, data_.path("s/1/fid"), std::filesystem::copy_options::overwrite_existing);
    EXPECT_EQ(run("IM " + path), 1);
    EXPECT_EQ(show.file_a, path);
    EXPECT_EQ(show.phase, (std::array<float, 3>{0, 45, 0}));
    EXPECT_EQ(data(), (std::vector<Complex>{{1, 2}, {3, 4}}));
}

TEST_F(BrukerImport, MergesRowsInOrder) {
    DataSet set;
    const int32_t counts[] = {5, 3, 2, 2};
    for (size_t d = 0; d < 4; ++d) set.dims[d].points = counts[d];
    for (const bool swap : {false, true}) {
        TemporaryFiles files;
        std::string message;
        ASSERT_TRUE(files.open(message)) << message;
        for (int i = 0; i < 60; ++i) {
            const float re = static_cast<float>(i), im = static_cast<float>(-1000 - i);
            files.file(1).write(&re, 4);
            files.file(2).write(&im, 4);
        }
        const std::string path = root_.path("merged");
        ReplacedFile output;
        ASSERT_TRUE(output.open(path));
        ASSERT_TRUE(merge_parts(files.file(1), files.file(2), set, swap, output, message) && output.commit()) << message;
        const std::string bytes = test::read_file(path);
        ASSERT_EQ(bytes.size(), 60U * 8);
        for (int i = 0; i < 60; ++i) {
            const float first = load_word<float>(bytes.data() + 8 * i, ByteOrder::little);
            EXPECT_EQ(first, swap ? static_cast<float>(-1000 - i) : static_cast<float>(i));
        }
        // A part that is too short is noticed.
        set.dims[1].points = 4;
        EXPECT_FALSE(merge_parts(files.file(1), files.file(2), set, swap, output, message));
        EXPECT_EQ(message, "Temporary file 1 ends before the last row.");
        set.dims[1].points = 3;
    }
}

}  // namespace
}  // namespace zolt
