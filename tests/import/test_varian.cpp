// Import of Varian and Agilent data: headers that disagree, words of every kind, parameters, what the rows stand for.
#include <algorithm>
#include <filesystem>
#include <limits>

#include "common/bytes.h"
#include "common/text.h"
#include "import/quantities.h"
#include "import/varian_pairs.h"
#include "import/varian_procpar.h"
#include "support.h"

namespace zolt {
namespace {

using test::TemporaryFolder;
using Values = std::vector<double>;

void put_words(std::string& bytes, int width, std::initializer_list<int64_t> words) {
    for (const int64_t word : words)
        for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) bytes += static_cast<char>(word >> shift);
}

// What a data file says of itself, and what stands in it.
struct Fid {
    int blocks = 1, traces = 1, values = 4;
    int width = 4;        ///< bytes of a value as it stands
    int value_bytes = 0;  ///< as the header says, 0: the truth
    int status = 0x5, block_status = 0x5;
    int headers = 1;       ///< as the file header says
    int real_headers = 1;  ///< that stand before each block
    int64_t block_bytes = 0;

    // Value k of the file is (k + 1) * 257, negative where k is odd.
    static double value(int k) { return (k % 2 == 0 ? 1 : -1) * (k + 1) * 257.0; }

    std::string bytes() const {
        const int stated = value_bytes != 0 ? value_bytes : width;
        const int64_t block = block_bytes != 0 ? block_bytes : 28 * real_headers + stated * values * traces;
        std::string out;
        put_words(out, 4, {blocks, traces, values, stated, stated * values, block});
        put_words(out, 2, {0, status});
        put_words(out, 4, {headers});
        for (int b = 0, k = 0; b < blocks; ++b) {
            for (int h = 0; h < real_headers; ++h) {
                put_words(out, 2, {0, h == 0 ? block_status : 0x7FFF, b, 0});
                put_words(out, 4, {4, 0x12345678, -1, 0x3F800000, 0});
            }
            for (int i = 0; i < traces * values; ++i, ++k) {
                const bool floats = (status & 8) != 0;
                put_words(out, width,
                          {floats ? std::bit_cast<int32_t>(static_cast<float>(value(k))) : static_cast<int64_t>(value(k))});
            }
        }
        return out;
    }
    std::vector<float> expected() const {
        std::vector<float> out;
        for (int k = 0; k < blocks * traces * values; ++k) out.push_back(static_cast<float>(value(k)));
        return out;
    }
};

// "name=value value" for numbers, "name='text' 'text'" for texts, between semicolons: as the lines of a procpar.
std::string procpar(const std::string& settings) {
    std::string out;
    for (const std::string_view setting : split_fields(settings, ";")) {
        const size_t equals = setting.find('=');
        std::string value(setting.substr(equals + 1));
        const char mark = value.starts_with('\'') ? '\'' : ' ';
        const auto marks = static_cast<int>(std::count(value.begin(), value.end(), mark));
        for (size_t at = 0; (at = value.find("' '", at)) != value.npos;) value.replace(at, 3, "'\n'");
        std::replace(value.begin(), value.end(), '\'', '"');
        out += std::string(setting.substr(0, equals)) + " 1 1 8 0 0 2 1 8 1 64\n";
        out += format_text("%d %s \n0 \n", mark == ' ' ? marks + 1 : marks / 2, value.c_str());
    }
    return out;
}

class VarianImport : public test::CommandTest {
protected:
    std::string put(const std::string& bytes, const std::string& parameters, const std::string& name = "fid") {
        const std::string folder = format_text("set%d/", ++sets_);
        data_.write(folder + "procpar", parameters);
        return data_.write(folder + name, bytes);
    }
    int import(const Fid& fid, const std::string& parameters) { return run("IM " + put(fid.bytes(), parameters)); }
    // All parts of the native file's slices in order.
    std::vector<float> stored() const {
        const std::string bytes = test::read_file(show.file_a);
        size_t count = show.dims[0].points * 2;
        for (size_t d = 1; d < 4; ++d) count *= static_cast<size_t>(show.dims[d].points);
        const size_t start = bytes.find(std::string("\r\n\x1A")) + 3;
        std::vector<float> out(count);
        if (bytes.size() < start + count * 4) return {};
        for (size_t i = 0; i < count; ++i) out[i] = load_word<float>(bytes.data() + start + 4 * i, ByteOrder::little);
        return out;
    }

    TemporaryFolder data_;
    int sets_ = 0;
    const std::string plain_ = procpar("seqfil='s2pul';sfrq=400;sw=5000");
};

TEST_F(VarianImport, ReadsEveryKindOfBlock) {
    const Fid rows[] = {
        {.blocks = 3},
        {.blocks = 2, .traces = 3, .width = 2, .status = 0x1, .block_status = 0x1},
        {.blocks = 2, .values = 40000, .status = 0x9},
        {.blocks = 2, .headers = 2, .real_headers = 2},
        // Floats, whatever the header says of their width; then its sizes are those of the width it says.
        {.blocks = 2, .value_bytes = 2, .status = 0xC9},
        {.blocks = 2, .value_bytes = 8, .status = 0x9, .block_bytes = 28 + 16},
        // Integers of a width that is none: the status has a bit for it.
        {.value_bytes = 0x4000, .status = 0x5, .block_bytes = 28 + 16},
        // The size of a block tells its headers, where the count says otherwise or a hypercomplex block has one more.
        {.blocks = 2, .headers = 1, .real_headers = 3},
        {.blocks = 2, .headers = 9, .real_headers = 1},
        {.blocks = 2, .block_status = 0x25, .headers = 1, .real_headers = 2},
        // A size that fits nothing leaves the count, and the status bit.
        {.blocks = 2, .block_status = 0x25, .headers = 1, .real_headers = 2, .block_bytes = 3},
        {.blocks = 2, .headers = 2, .real_headers = 2, .block_bytes = -1},
        // Of two that fit, the one that fills the file.
        {.blocks = 2, .block_status = 0x25, .headers = 1, .real_headers = 2, .block_bytes = 28 + 16}};
    for (const Fid& fid : rows) {
        ASSERT_EQ(import(fid, plain_), 1) << platform_.said();
        EXPECT_EQ(stored(), fid.expected()) << &fid - rows;
        EXPECT_EQ(show.dims[1].points, fid.blocks * fid.traces);
    }
}

TEST_F(VarianImport, FillsTheRecord) {
    const std::string parameters = procpar(
        "seqfil='gHSQC';sfrq=400.5 1 "
        "2;sw=5000.5;sw1=12000;rfl=428.25;rfp=100;rfl1=0.25;rfp1=10;rp=-120;lp=30;lb=0.25;d1=1.5;pw=7.25;"
        "tof=-190;dof=-3500;ct=16;tn='H1';dn='C13';dfrq=100.5;refsource1='dfrq';solvent='cdcl3';date='Jun  6 "
        "2010';operator_='vnmr1';"
        "ni=2;phase=1 2;array='phase';f1coef='1 0 1 0 0 -1 0 1';title='sw 1 1 5';sfrqx=3");
    const std::string path = put(Fid{.blocks = 4, .status = 0x1}.bytes(), parameters);
    data_.write("set1/text", "Line 1 \xB5\n\nline 3\n");
    ASSERT_EQ(run("IM " + path), 1) << platform_.said();
    const Dimension &d1 = show.dims[0], &d2 = show.dims[1];
    EXPECT_EQ((Values{d1.sf, d1.sw, d1.offset, d2.sf, d2.sw, d2.offset}), (Values{400.5, 5000.5, 2172, 100.5, 12000, 6009.75}));
    EXPECT_EQ((Values{show.d1, show.p1, show.o1, show.o2, show.lb(), show.phase[0], show.phase[1]}),
              (Values{1.5, 7.25, -190, -3500, 0.25, -90, -30}));
    EXPECT_EQ((std::vector{d1.sense, d2.sense, d2.points, show.scans}), (std::vector{1, 1, 4, 16}));
    EXPECT_EQ((std::vector<std::string>{d1.nucleus, d2.nucleus, show.experiment, show.solvent, show.date, show.user, show.comment,
                                        show.process_type, show.source}),
              (std::vector<std::string>{"1H", "13C", "gHSQC", "cdcl3", "Jun  6 2010", "vnmr1", "Line 1 \xC2\xB5", "2D_ECHOANTIECHO",
                                        "Varian Unix"}));
    EXPECT_FALSE(said("No TEXT file") || d1.frequency);
}

TEST_F(VarianImport, ReadsSpectraAndDoesWithoutText) {
    ASSERT_EQ(run("IM " + put(Fid{.values = 8, .status = 0xB, .block_status = 0xB}.bytes(), plain_, "phasefile")), 1);
    EXPECT_TRUE(said("No TEXT file found for comment"));
    EXPECT_TRUE(show.dims[0].frequency && show.dims[0].points == 4);
    // fn tells real parts alone from pairs.
    const std::string phased = procpar("seqfil='s2pul';fn=16;rp=20");
    ASSERT_EQ(run("IM " + put(Fid{.values = 8, .status = 0xB, .block_status = 0xB}.bytes(), phased, "phasefile")), 1);
    EXPECT_TRUE(show.dims[0].points == 8 && show.cvNMRdata()[1] == Complex(static_cast<float>(Fid::value(1)), 0));
    EXPECT_EQ(show.phase[0], 0);
}

TEST_F(VarianImport, RefusesWhatCannotBe) {
    const std::string good = Fid{.blocks = 2}.bytes();
    load(test::sample_points(4));
    for (size_t length = 1; length < good.size(); length += 3)
        refused("IM " + put(good.substr(0, length), plain_), "cannot be imported");
    for (const int word : {0, 1, 2, 3})
        for (const int32_t absurd : {0, -1, std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min()}) {
            std::string bytes = Fid{.status = 0x1}.bytes();
            store_word(bytes.data() + 4 * word, absurd, ByteOrder::big);
            refused("IM " + put(bytes, plain_), "cannot be imported");
        }
    refused("IM " + put(good, procpar("sw=1")), "No Experiment listed in imported data header");
    refused("IM " + put(good, ""), "procpar");
    const std::string alone = data_.write("alone/fid", good);
    refused("IM " + alone, "procpar");
    std::filesystem::create_symlink("/dev/zero", data_.path("alone/procpar"));
    refused("IM " + alone, "\nError in VARU_procpar Module");
}

TEST(VarianRows, AreWhatTheExperimentSays) {
    const struct {
        const char* parameters;
        uint64_t rows;
        const char* type;
        int points_2, points_3, sense;
        Values values;
        bool combined = false;
    } cases[] = {{"ni=1;phase=1;array=''", 1, "1D", 1, 1, 1, {}},
                 {"sw1=500", 6, "2D_MAGNITUDE", 6, 1, 1, {}},
                 {"ni=3;phase=0", 3, "2D_MAGNITUDE", 3, 1, 1, {}},
                 {"ni=4;phase=3", 4, "2D_TPPI", 4, 1, 1, {}},
                 {"ni=3;phase=1 2;array='phase'", 6, "2D_HYPERCOMPLEX", 6, 1, 1, {}},
                 {"ni=3;phase=1 2;f1coef='1 0 0 0 0 0 -1 0'", 6, "2D_HYPERCOMPLEX", 6, 1, 1, {}},
                 {"ni=3;phase=1 2;f1coef='1 0 0 0 0 0 1 0'", 6, "2D_HYPERCOMPLEX", 6, 1, -1, {}},
                 {"ni=3;phase=1 2;f1coef='1 0 1 0 0 -1 0 1'", 6, "2D_ECHOANTIECHO", 6, 1, 1, {}},
                 {"ni=3;phase=1 2;f1coef='1 0 1 0 0 1 0 -1'", 6, "2D_ECHOANTIECHO", 6, 1, -1, {}},
                 {"ni=3;phase=1 2;f1coef='1 0 1 0 1 0 -1 0'", 6, "2D_HYPERCOMPLEX", 6, 1, -1, {}, true},
                 {"ni=3;phase=1 2;f1coef='1 0 0 1'", 6, "2D_HYPERCOMPLEX", 6, 1, 1, {}},
                 {"ni=6;phase=1;f1coef='1 0 1 0 0 -1 0 1'", 6, "2D_MAGNITUDE", 6, 1, 1, {}},
                 {"array='tau';tau=1 2 4", 3, "1D", 3, 1, 1, {1, 2, 4}},
                 {"array='(pw,tau)';pw='a' 'b';tau=3 5", 2, "1D", 2, 1, 1, {3, 5}},
                 {"array='tau,pw';tau=1 2;pw=1 2 3", 6, "1D", 6, 1, 1, {}},
                 {"array='IPAP,phase';phase=1 2;ni=3", 12, "1D", 12, 1, 1, {}},
                 {"ni=2;ni2=3;phase=1 2;phase2=1 2;array='phase,phase2'", 24, "3D_GENERIC", 8, 3, 1, {}},
                 {"ni=1;ni2=3;phase2=1 2;f2coef='1 0 0 0 0 0 1 0'", 6, "2D_HYPERCOMPLEX", 6, 1, -1, {}},
                 {"ni=1e300;ni2=-5;phase=1 2", 5, "1D", 5, 1, 1, {}}};
    TemporaryFolder folder;
    for (const auto& c : cases) {
        Procpar p;
        ASSERT_TRUE(read_procpar(folder.write("procpar", procpar(c.parameters)), p));
        const RowPlan plan = plan_rows(p, c.rows);
        EXPECT_EQ(plan.process_type, c.type) << c.parameters;
        EXPECT_EQ(plan.points, (std::array{1, c.points_2, c.points_3})) << c.parameters;
        EXPECT_EQ(plan.sense, c.sense) << c.parameters;
        EXPECT_EQ(plan.values, c.values) << c.parameters;
        EXPECT_EQ(plan.combination.has_value(), c.combined) << c.parameters;
    }
}

TEST_F(VarianImport, CombinesRowsOfOtherPairs) {
    const std::string parameters = procpar("seqfil='x';ni=1;phase=1 2;ni=2;f1coef='1 2 0 0 0 0 0 -1'");
    ASSERT_EQ(import({.blocks = 4, .values = 2}, parameters), 1) << platform_.said();
    // A = (1 - 2i) S1, B = i S2 with rows 257 - 514i, 771 - 1028i and so on.
    const std::vector<float> want = {257 - 1028, -514 - 514, 1028, 771, 1285 - 3084, -1542 - 2570, 2056, 1799};
    EXPECT_EQ(stored(), want);
}

TEST(VarianProcpar, TakesValuesOnlyFromTheirPlace) {
    TemporaryFolder folder;
    Procpar p;
    ASSERT_TRUE(read_procpar(folder.write("procpar",
                                          "array 2 2 1\n1 \"sw 1 1\nsw 1 1\"\n2 \"sw\" \"b\"\n"
                                          "two 2 2 1\n3 \"a\\\"b\"\n\"c, d\"\n\"\"\n0\n"
                                          "short 1 1 1\n5 1.5 2,2.5\n0\n"
                                          "long 1 1 1\n1 7 8 9\n1 4\n"
                                          "novalue 1 1 1\n"
                                          "after 1 1 1\n1 1e3\n0\n"
                                          "open 2 2 1\n1 \"never closed"),
                             p));
    EXPECT_EQ(p.entries.size(), 7U);
    EXPECT_EQ(p.entries["two"].texts, (std::vector<std::string>{"a\"b", "c, d", ""}));
    EXPECT_EQ(p.numbers("short"), (Values{1.5, 2, 2.5}));
    EXPECT_EQ(p.numbers("long"), (Values{7}));
    EXPECT_TRUE(p.numbers("novalue").empty() && p.number("after") == 1000 && p.numbers("sw").empty());
    EXPECT_EQ(p.text("open"), "never closed");
    EXPECT_EQ(array_loops("a,(b, c),d").size(), 3U);
    EXPECT_EQ(array_loops("(b,c"), (std::vector<std::vector<std::string>>{{"b", "c"}}));
}

TEST(Nuclei, HaveOneSpelling) {
    EXPECT_EQ(nucleus_name("H1") + nucleus_name("Rb87") + nucleus_name("13C") + nucleus_name(" C13 "), "1H87Rb13C13C");
    EXPECT_EQ(nucleus_name("Proton") + nucleus_name("Carbon13") + nucleus_name("Fluorine 19"), "1H13C19F");
    EXPECT_EQ(nucleus_name("lock") + nucleus_name("") + nucleus_name("Unobtainium7"), "lockUnobtainium7");
}

}  // namespace
}  // namespace zolt
