// Import of Bruker FIDs through the typed commands: values, parameters, names, questions and refusals.
#include <cmath>
#include <ctime>
#include <filesystem>

#include "common/bytes.h"
#include "common/text.h"
#include "datafile/native_file.h"
#include "import/bruker_delay.h"
#include "import/bruker_samples.h"
#include "import/labelled.h"
#include "import/merge.h"
#include "import/tranauto.h"
#include "state/session.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;

TEST_F(BrukerImport, ReadsWordsOfEveryKind) {
    const std::vector<int32_t> integers = {1, -2, 0x12345678, -0x12345678, 2147483647, -2147483647 - 1, 255, 256};
    const std::vector<double> doubles = {1.5, -2.25e10, 3e-5, 0};
    const std::vector<float> of_integers(integers.begin(), integers.end()), of_doubles(doubles.begin(), doubles.end());
    const std::tuple<std::string, Records, std::vector<float>> rows[] = {
        {words(integers), {"$BYTORDA= 0"}, of_integers},
        {words(integers), {"ORIGIN= UXNMR, Bruker Analytische Messtechnik"}, of_integers},
        {words(integers, ByteOrder::big), {"$BYTORDA= 1"}, of_integers},
        {words(integers, ByteOrder::big), {"$BYTORDA= 2"}, of_integers},
        {words(doubles), {"$DTYPA= 2"}, of_doubles},
        {words(doubles, ByteOrder::big), {"$DTYPA= 2", "$BYTORDA= 1"}, of_doubles},
        // 24 bits: bytes reversed, then the sign taken from bit 23 whatever the top byte holds.
        {{"\x00\x7F\xFF\xFF\x5A\x80\x00\x00", 8}, {"ORIGIN= UXNMR/P"}, {8388607, -8388608}},
        // Big-endian as well: both reversals, the sign extended between them.
        {{"\x5A\x00\x00\x7F\x00\x80\x00\xFF", 8}, {"ORIGIN= UXNMR/P", "$BYTORDA= 1"}, {2130706432, -16744193}}};
    for (const auto& [fid, records, want] : rows) {
        ASSERT_EQ(import(fid, acqus(65536, records)), 1) << platform_.said();
        EXPECT_EQ(values(), want) << records.back();
    }
}

TEST_F(BrukerImport, CountsPointsAsTheFileAllows) {
    const auto all = some_values(140000);  // more than are converted at a time
    const std::tuple<int, size_t, int> rows[] = {{200000, 560000, 70000}, {140001, 560000, 70000}, {131074, 560000, 65537},
                                                 {120, 560000, 60},       {7, 560000, 3},          {200000, 559997, 69999},
                                                 {200000, 8, 1}};
    for (const auto& [td, bytes, points] : rows) {
        ASSERT_EQ(import(words(all).substr(0, bytes), acqus(td)), 1) << td;
        EXPECT_EQ(values(), std::vector<float>(all.begin(), all.begin() + 2 * points)) << td;
    }
}

TEST_F(BrukerImport, KeepsModeAndGroupDelayWithTheFile) {
    const std::tuple<Records, int, double> rows[] = {
        {{"$DIGMOD= 1", "$DECIM= 2218.66666666667", "$DSPFVS= 20", "$GRPDLY= 67.9862518310547"}, 2, 67.9862518310547},
        {{"$DIGMOD= 1", "$DECIM= 4", "$DSPFVS= 12", "$GRPDLY= -1", "$AQ_mod= 1"}, 1, 48},
        {{"$DIGMOD= 0", "$DECIM= 4", "$DSPFVS= 12", "$aq_MOD= 0"}, 0, 0},
        {{"$GRPDLY= 80", "$AQ_mod= 2"}, 2, 80},
        {{"$GRPDLY= 80.1", "$AQ_mod= 3"}, 1, 0},
        {{"$AQ_mod= -1"}, 1, 0}};
    for (const auto& [records, mode, delay] : rows) {
        settings.bruker_filter = delay > 60;  // whether the transform uses it is not the import's business
        ASSERT_EQ(import(words(some_values(160)), acqus(160, records)), 1);
        for (const char* when : {"imported", "read again"}) {
            EXPECT_EQ(show.group_delay, delay) << when;
            EXPECT_TRUE(show.dims[0].domain_code == mode && show.dims[0].sense == -1) << when << records.back();
            ASSERT_EQ(run("GA " + show.file_a), 1);
        }
    }
}

TEST_F(BrukerImport, FillsTheRecord) {
    ::setenv("TZ", "UTC", 1);
    ::tzset();
    const std::string name = "strychnine/10/";
    data_.write(name + "acqus",
                acqus(16, {"OWNER= nmrsu", "$DATE= 1046701230", "$PULPROG= <zg30>", "$NS= 16", "$NUC1= <13C>", "$INSTRUM= <spect>",
                           "$SOLVENT= <CDCl3>", "$D= (0..3)\n0.125\n2.5 0.03", "$P= (0..2)\n1.25 9.75 19"}));
    data_.write(name + "pdata/1/procs", parameter_file({"$SF= 400.4975", "$PHC0= 136.5", "$PHC1= -21.25", "$LB= 0.5"}));
    data_.write(name + "pdata/1/title", "A spectrum at 25\xB0\nsecond line\n");
    ASSERT_EQ(run("IM " + data_.write(name + "fid", words(some_values(16)))), 1) << platform_.said();
    const Dimension& d = show.dims[0];
    using Numbers = std::vector<double>;
    EXPECT_EQ((Numbers{d.sf, d.sw, d.offset, show.o1, show.o2, show.d1, show.p1}),
              (Numbers{400.5, 8000, 2500, 1880.5, -7, 2.5, 9.75}));
    EXPECT_EQ((Numbers{show.phase[0], show.phase[1], show.phase[2], show.lb()}), (Numbers{-136.5, 21.25, 0, 0.5}));
    EXPECT_EQ((std::vector{show.dims[1].sense, d.axis_unit, show.scans}), (std::vector{1, 3, 16}));
    EXPECT_TRUE(show.loaded && !show.changed && !d.frequency);
    EXPECT_EQ((Records{d.nucleus, show.comment, show.solvent, show.experiment, show.date, show.owner, show.user, show.title}),
              (Records{"13C", "spect, CDCl3, ", "CDCl3", "zg30", "Mon Mar  3 14:20:30 2003", "nmrsu", "nmrsu",
                       "A spectrum at 25\xC2\xB0"}));
    EXPECT_EQ((Records{show.source, show.process_type, show.path}), (Records{"1D Bruker Unix", "1D", data_.path("strychnine/10")}));
    EXPECT_TRUE(said("Starting translation for " + data_.path(name) + "fid of 1D Bruker Unix data type."));
}

TEST_F(BrukerImport, TakesWhatIsMissingFromTheDefaults) {
    settings.default_pa = 11;
    settings.default_pb = 22;
    settings.default_pc = 33;
    data_.write("a/pdata/1/procs", parameter_file({"$SF= 0", "$PHC1= 0", "$LB= -1"}));
    data_.write("a/acqus", acqus(16, {"$SOLVENT= <D2O>", "$INSTRUM= <spect>", "$PULPROG= <" + std::string(200, 'p') + ">"}));
    const std::string path = data_.write("a/fid", words<int32_t>({3, 5}));
    ASSERT_EQ(run("IM " + path), 1);
    EXPECT_EQ(show.phase, (std::array<float, 3>{11, 0, 33}));
    EXPECT_TRUE(show.lb() == 0 && show.experiment.size() == 127);
    EXPECT_EQ(show.dims[0].offset, 1880.5F) << "without a reference the offset is O1";
    EXPECT_EQ(show.comment, "spect, ") << "the instrument replaces what stands before it";
    ASSERT_EQ(import(words(some_values(16)), acqus(16, {"$SFO1= nan", "$SW_h= 1e300", "$O1= inf", "$SOLVENT= <D2O>"})), 1);
    EXPECT_TRUE(show.dims[0].sf == 0 && show.dims[0].sw == 0 && show.o1 == 0);
    EXPECT_EQ(show.comment, "spect, D2O, ");
    // With the parts swapped the FID turns the other way and stands a quarter turn off.
    platform_.answers = {"yes"};
    ASSERT_EQ(run("IM " + path + " -BrukerUnix1 SR1"), 1) << platform_.said();
    EXPECT_EQ(data(), (std::vector<Complex>{{5, 3}}));
    EXPECT_TRUE(show.dims[0].sense == 1 && show.phase[0] == 101);
}

TEST(GroupDelay, FollowsTheStatedValueThenTheTable) {
    const std::pair<DigitalFilter, double> rows[] = {
        {{67.98, true, 20, 2080}, 67.98}, {{-1, true, 12, 15.6}, 71.625}, {{0, false, 12, 16}, 0},
        {{0, true, 14, 16}, 0},           {{0, true, 9, 16}, 0},          {{NAN, true, 12, 5}, 0}};
    for (const auto& [filter, want] : rows)
        EXPECT_NEAR(group_delay(filter), want, 1e-9) << filter.firmware << " " << filter.decimation;
    // Every published delay times its decimation: no entry is wrong, missing or one too many.
    for (const auto& [firmware, want] :
         {std::pair(10, 477451.5), std::pair(11, 514826.5), std::pair(12, 514756.5), std::pair(13, 939.0)}) {
        double sum = 0;
        for (int d = 0; d < 5000; ++d) sum += d * group_delay({0, true, firmware, static_cast<double>(d)});
        EXPECT_NEAR(sum, want, 1e-6) << firmware;
    }
}

TEST_F(BrukerImport, FindsTheParameterFileAndNamesTheOutput) {
    // Files with the SF that each gives, the data, what is typed, the SF and the name that come out.
    const std::tuple<std::vector<std::pair<std::string, int>>, std::string, std::string, int, std::string> rows[] = {
        {{{"s/10/acqus", 101}, {"s/10/acqu", 102}, {"s/10/1/acqus", 103}}, "s/10/fid", "s/10/fid", 101, "s_10.zolt"},
        {{{"s/10/ACQU", 102}, {"s/10/1/acqus", 103}}, "s/10/fid", "s/10", 102, "s_10.zolt"},
        {{{"s/9/4/acqus", 104}, {"s/9/2/acqu", 105}, {"s/9/10/acqus", 106}}, "s/9/fid", "s/", 105, "s_9.zolt"},
        {{{"own/9/acqus", 104}}, "own/fid", "\"own\"", 104, "own.zolt"},
        {{{"own/proton.fid/acqus", 110}}, "own/proton.fid/fid", "own\\proton.fid", 110, "proton.zolt"},
        {{{"e/acqus", 107}, {"e/pdata/1/acqus", 108}, {"acqus", 109}}, "e/pdata/fid", "e/pdata/fid", 107, "e.zolt"},
        {{{"e/acqus", 107}, {"acqus", 109}}, "e/PData/3/fid", "e/PData/3", 107, "e.zolt"},
        {{{"acqus", 111}}, "my.run.dat", "my.run.dat", 111, "my.run.zolt"},
        {{{"acqus", 111}}, "my.dat", "my.dat SPECIAL_NAME other", 111, "other"}};
    platform_.default_answer = Answer::yes;
    for (const auto& [files, fid, typed, sf, name] : rows) {
        const std::string folder = format_text("%d/", ++sets_);
        for (const auto& [file, file_sf] : files) data_.write(folder + file, acqus(8, {format_text("$SFO1= %d", file_sf)}));
        data_.write(folder + fid, words(some_values(8)));
        fs::current_path(data_.path(folder));
        ASSERT_EQ(run("IM -BRUKERUNIX1 " + typed), 1) << typed << platform_.said();
        EXPECT_EQ(show.dims[0].sf, static_cast<float>(sf)) << typed;
        EXPECT_EQ(show.file_a, root_.path("DATA/" + name));
    }
    for (const char* name : {"s/9/fid", "s/10/fid", "t/10/acqus", "t/0/acqus", "t/fid", "u/x"})
        data_.write(name, words(some_values(8)));
    data_.write("s/9/acqus", acqus(8));
    refused("IM " + data_.path("s"), "holds several experiments (9, 10).");
    refused("IM -BRUKERUNIX1 " + data_.path("t"), "File error for Bruker acqus (Missing]");
    EXPECT_TRUE(said("Failed to import\n"));
    refused("IM " + data_.path("u"), "u holds no data file");
    settings.import_out_dir = data_.path("none");
    refused("IM " + data_.path("s/9"), "Unable to open output file\n" + data_.path("none/s_9.zolt") + "\nfor writing!");
}

TEST(LabelledFiles, ReadAsLinesOfTokens) {
    const TemporaryFolder folder;
    const std::string long_line = "##$X= " + std::string(2041, 'x') + "##$Y= 5\n",  // the label begins character 2048
        lines = "##$A= <one two>\r\n##$a=2\n$$ ##$B= 3\n##$TD=1,5\n##$E= <>\n##$A= last\n##END=\n##$Z= 1\n";
    LabelledFile file;
    ASSERT_TRUE(read_labelled(folder.write("p", long_line + lines), file));
    std::string all;
    for (const LabelledRecord& record : file.records) all += "/" + record.label + "|" + record.value + "|" + record.text;
    EXPECT_EQ(all.substr(all.find("/##$Y")), "/##$Y|5|5/##$A|one|one two/##$a|2|2/##$TD|1|1,5/##$E||/##$A|last|last");
    EXPECT_EQ(file.find("##$A")->value, "last");
    EXPECT_EQ(readable_text(std::string_view("\xC3\xA4\xE4\0z", 5)), "\xC3\xA4\xC3\xA4 z");
}

TEST_F(BrukerImport, AsksBeforeItReplaces) {
    const std::string path = put(words<int32_t>({1, 2}), acqus(2));
    ASSERT_EQ(run("IM " + path), 1);
    data_.write("set1/fid", words<int32_t>({3, 4}));
    refused("IM " + path, "Target file name already exists: " + show.file_a + "\nOverwrite?");
    refused("IM " + path + " SPECIAL_NAME " + path, "Input and Output file names are identical.\nNot allowed!");
    settings.no_file_overwrite = true;
    refused("IM " + path, "System configured to prevent Overwriting of existing files.");
    settings.no_file_overwrite = false;
    show.changed = true;
    show.file_b = "/some/b";
    refused("IM " + path, "File A is opened and has been modified.\nOverwrite with imported file?");
    EXPECT_EQ(platform_.questions.size(), 1U);
    platform_.answers = {"yes", "yes"};
    EXPECT_EQ(run("IM " + path), 1);
    EXPECT_EQ(data(), (std::vector<Complex>{{3, 4}}));
    EXPECT_EQ(show.file_b, "/some/b");
}

TEST_F(BrukerImport, RecognisesWhatItCannotReadYet) {
    // The file and what stands beside it, the text in all of them, the number of the format.
    const std::tuple<std::string, std::string, int> rows[] = {
        {"ser", "x", 24},      {"ser acqu3s", "x", 80},    {"fid acqus procpar", "x", 23},
        {"fid", "x", 22},      {"fid Procpar", "x", 22},   {"phasefile procpar", "x", 22},
        {"d pb", "x", 35},     {"fid.txt acqus", "x", 0},  {"ser acqus", "TopSpin", 71},
        {"data acq", "x", 0},  {"fid acqus", "A000", 27},  {"FID acqus", "XWin-NMR", 70},
        {"1r procs", "x", 65}, {"data acq proc", "x", 36}, {"1r procs acqus", "TOPSPIN", 71}};
    for (const auto& [names, content, number] : rows) {
        const TemporaryFolder folder;
        const auto files = split_fields(names, " ");
        for (const std::string_view file : files) folder.write(std::string(file), content);
        const Detection detection = detect_format(folder.path(std::string(files[0])));
        EXPECT_EQ(detection.format != nullptr ? detection.format->number : 0, number) << names << " " << content;
    }
    const std::string path = data_.write("x.dat", words(some_values(8)));
    refused("IM " + path + " -GaML", "Recognised Philips-2 Import data, which cannot be imported yet.");
    EXPECT_TRUE(said("Starting translation for " + path + " of GAML XML data."));
    refused("IM -winnmr1d97 " + path, "Starting translation for " + path + " of unknown data type.");
    refused("IM " + path + " nosuchkey", "Unknown data source for " + path + "\n Don't know what to do with it!!!\n");
    EXPECT_EQ(import(words(some_values(8)), "##TITLE= Parameter file, TopSpin 4.0.6\n" + acqus(8)), 1);
}

TEST_F(BrukerImport, RefusesBadInputAndChangesNothing) {
    const std::string fid = words(some_values(80));
    const std::string good = acqus(80, {"$BYTORDA= 0", "$D= (0..1)\n1 2", "$GRPDLY= 10", "$INSTRUM= <spect>"});
    load(test::sample_points(4));
    refused("IM " + put("", good), "set1/fid is empty.");
    for (const int td : {0, -5}) refused("IM " + put(fid, acqus(td)), "it holds 80 words");
    refused("IM " + put("1234567", good), "it holds 1 words of the 80 that");
    refused("IM " + put(fid, parameter_file({"$SW_h= 5000"})), "gives no number of points (##$TD)");
    refused("IM " + data_.path("none"), "Could not find file - " + data_.path("none"));
    refused("IM", "");  // the dialog was cancelled
    data_.write("device/acqus", good);
    fs::create_symlink("/dev/zero", data_.path("device/fid"));
    fs::create_symlink("/dev/zero", data_.path("acqus"));
    for (const char* command : {"IM ", "GA "}) refused(command + data_.path("device/fid"), "device/fid is no ordinary file");
    refused("IM " + data_.write("fid", fid) + " TOPSPIN", "File error for Bruker acqus (Missing]");

    // Whatever is cut off or broken: what is imported has points and finite parameters, what is refused changes nothing.
    platform_.default_answer = Answer::yes;
    const auto survives = [&](const std::string& bytes, const std::string& parameters) {
        data_.write("s/acqus", parameters);
        const DataRecord before = show;
        if (run("IM " + data_.write("s/fid", bytes)) == 0) return before == show;
        const Dimension& d = show.dims[0];
        return d.points > 0 && std::isfinite(d.sf) && std::isfinite(d.sw) && std::isfinite(d.offset) &&
               show.group_delay <= d.points;
    };
    for (size_t i = 0; i < 40; ++i) {
        EXPECT_TRUE(survives(fid.substr(0, fid.size() * i / 40), good)) << i;
        EXPECT_TRUE(survives(fid, good.substr(0, good.size() * i / 40))) << i;
    }
    for (size_t i = 0; i < good.size(); ++i) {
        std::string broken = good;
        broken[i] = static_cast<char>(broken[i] ^ (i % 2 == 0 ? 0x80 : 0x11));
        EXPECT_TRUE(survives(fid, broken)) << i;
    }
}

TEST_F(BrukerImport, GetFileOffersTheImport) {
    const std::string path = put(words<int32_t>({1, 2, 3, 4}), acqus(4)), none = data_.path("none");
    refused("GA " + path, "Selected file: " + path + ",\nis not a CDFF file.  \nWant to try an Auto Detect Import?");
    platform_.answers = {"yes"};
    EXPECT_EQ(run("GA " + path), 1);
    const std::string native = show.file_a;
    const std::pair<std::string, std::string> rows[] = {
        {none, "File [ " + none +
                   " ] not found.\nIn module FILE function IsFileCDFF\nSpelled correctly?\nPath correct?\nDoes the file exist?"},
        {data_.write("tiny", "abc"), "tiny is no data file"},
        {data_.write("empty", ""), "empty is empty."},
        {data_.path(), ""}};
    for (const auto& [file, text] : rows) {
        refused("GA " + file, text);
        EXPECT_TRUE(platform_.questions.empty()) << file;
    }
    show.changed = true;
    settings.default_pb = 45;
    refused("GA " + native, "The current opened data set has been modified\nand NOT saved to disk.");
    // IM takes a native file as it stands, whatever its name.
    show.changed = false;
    fs::copy_file(native, path, fs::copy_options::overwrite_existing);
    EXPECT_EQ(run("IM " + path), 1);
    EXPECT_EQ(show.file_a, path);
    EXPECT_EQ(show.phase, (std::array<float, 3>{0, 45, 0}));
    EXPECT_EQ(data(), (std::vector<Complex>{{1, 2}, {3, 4}}));
}

TEST_F(BrukerImport, MergesRowsInOrder) {
    const auto points = test::sample_points(50000);
    std::vector<float> re, im;
    for (const Complex point : points) re.push_back(point.real()), im.push_back(point.imag());
    DataSet set;
    for (Dimension& dimension : set.dims) dimension.points = 1;
    set.dims[0].points = 10000;
    for (const bool whole : {true, false}) {  // three rows are read at a time, then two; there is no sixth
        set.dims[2].points = whole ? 5 : 6;
        TemporaryFiles files;
        std::string message;
        ASSERT_TRUE(files.open(message) && files.file(1).write(re.data(), 4 * re.size()) &&
                    files.file(2).write(im.data(), 4 * im.size()));
        ReplacedFile output;
        ASSERT_TRUE(output.open(root_.path("merged")));
        EXPECT_EQ(merge_parts(files.file(1), files.file(2), set, false, output, message) && output.commit(), whole);
    }
    EXPECT_TRUE(test::read_file(root_.path("merged")) == std::string(reinterpret_cast<const char*>(points.data()), 400000));
}

}  // namespace
}  // namespace zolt
