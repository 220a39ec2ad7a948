// Import of JEOL Delta files: both byte orders, tiles, the valid range, axes, the delay of the digital filter.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>

#include "common/text.h"
#include "import/jeol.h"
#include "import/jeol_file.h"
#include "import/tranauto.h"
#include "support.h"

namespace zolt {
namespace {

using test::TemporaryFolder;
using Values = std::vector<double>;

constexpr size_t data_start = 4096;

// A Delta file put together word by word, with the parameters behind the header.
struct Delta {
    ByteOrder header = ByteOrder::big, body = ByteOrder::little;
    bool doubles = true;
    int dimensions = 1, format = 1;
    std::vector<int> kinds{3}, units{28};
    std::vector<uint32_t> points{8}, first{0}, last{7};
    Values start{0}, stop{1}, frequency{400}, zero{0};
    int ranged = 0;
    Values list = {};
    std::vector<std::pair<std::string, std::string>> texts = {
        {"EXPERIMENT", "hsqc.jxp"}, {"orders", "2 54 73"}, {"factors", "8  2"}};
    std::vector<std::tuple<std::string, double, int>> numbers = {  // name, value, unit bytes
        {"X_SWEEP", 10, 0xF10D},
        {"X_OFFSET", 5, 0x011A},
        {"x_pulse", 6.5, 0x211C},
        {"SCANS", 16, -1}};

    template <class T>
    static void put(std::string& bytes, size_t at, T value, ByteOrder order) {
        std::string raw(reinterpret_cast<const char*>(&value), sizeof value);
        if (order != machine_order) std::reverse(raw.begin(), raw.end());
        bytes.replace(at, raw.size(), raw);
    }

    std::string parameters() const {
        std::string out(16, '\0');
        const auto record = [&](const std::string& name, int type, int unit) {
            const size_t at = out.size();
            out.append(64, '\0');
            out[at + 6] = static_cast<char>(unit >> 8);
            out[at + 7] = static_cast<char>(unit);
            put(out, at + 32, type, body);
            out.replace(at + 36, name.size(), name);
            return at + 16;
        };
        for (const auto& [name, text] : texts) out.replace(record(name, 0, 0), text.size(), text);
        for (const auto& [name, value, unit] : numbers) {
            const size_t at = record(name, unit < 0 ? 1 : 2, std::max(unit, 0));
            unit < 0 ? put(out, at, static_cast<int32_t>(value), body) : put(out, at, value, body);
        }
        put(out, 0, 64, body);
        put(out, 8, static_cast<int32_t>(texts.size() + numbers.size()) - 1, body);
        return out;
    }

    std::string bytes(const Values& data) const {
        std::string out(data_start, '\0');
        out.replace(0, 8, header == ByteOrder::big ? "JEOL.NMR" : "RMN.LOEJ");
        out[8] = body == ByteOrder::little ? 1 : 0;
        out[12] = static_cast<char>(dimensions);
        out[14] = static_cast<char>((doubles ? 0 : 0x40) | format);
        out.replace(48, 6, "sample");
        out[172] = static_cast<char>(ranged);
        for (size_t d = 0; d < points.size(); ++d) {
            out[24 + d] = static_cast<char>(kinds[d]);
            out[32 + 2 * d] = 1;
            out[33 + 2 * d] = static_cast<char>(units[d]);
            put(out, 176 + 4 * d, points[d], header);
            put(out, 208 + 4 * d, first[d], header);
            put(out, 240 + 4 * d, last[d], header);
            put(out, 272 + 8 * d, start[d], header);
            put(out, 336 + 8 * d, stop[d], header);
            put(out, 1064 + 8 * d, frequency[d], header);
            put(out, 1128 + 8 * d, zero[d], header);
        }
        put(out, 400, 0x359B754EU, header);
        out.replace(808, 6, "Proton");
        put(out, 1212, 1360, header);
        out.replace(1360, parameters().size(), parameters());
        put(out, 1224, 3000, header);  // the list of dimension 2
        put(out, 1256, static_cast<uint32_t>(8 * list.size()), header);
        for (size_t i = 0; i < list.size(); ++i) put(out, 3000 + 8 * i, list[i], body);
        put(out, 1284, static_cast<uint32_t>(data_start), header);
        const size_t width = doubles ? 8 : 4;
        out.append(data.size() * width, '\0');
        for (size_t i = 0, at = data_start; i < data.size(); ++i, at += width)
            doubles ? put(out, at, data[i], body) : put(out, at, static_cast<float>(data[i]), body);
        return out;
    }
};

Values counted(size_t n) {
    Values values(n);
    for (size_t i = 0; i < n; ++i) values[i] = static_cast<double>(i) - 3.25;
    return values;
}

// The 2D file of the tests: 64 x 64 points in tiles of 32, rows 1 to 40 and points 3 to 40 valid.
Delta plane(int kind_x, int kind_y) {
    Delta d{.dimensions = 2, .format = 2, .kinds = {kind_x, kind_y}, .units = {28, 28}, .points = {64, 64}, .first = {3, 1}};
    d.last = {40, 40};
    d.start = {0, 0};
    d.stop = {1, 39};
    d.frequency = {400, 100};
    d.zero = {0, 0.25};
    d.numbers.emplace_back("y_sweep", 4, 0xF10D);
    return d;
}
constexpr size_t section = 64 * 64;

class JeolImport : public test::CommandTest {
protected:
    int import(const std::string& bytes) {
        return run(format_text("IM %s -JEOL_DELTA", data_.write(format_text("%d.jdf", ++files_), bytes).c_str()));
    }

    TemporaryFolder data_;
    int files_ = 0;
};

TEST_F(JeolImport, ReadsWordsOfEveryKind) {
    const Values data = counted(16);
    for (const ByteOrder header : {ByteOrder::big, ByteOrder::little})
        for (const ByteOrder body : {ByteOrder::big, ByteOrder::little})
            for (const bool doubles : {true, false}) {
                const Delta file{.header = header, .body = body, .doubles = doubles, .first = {2}, .last = {6}};
                ASSERT_EQ(import(file.bytes(data)), 1) << platform_.said();
                std::vector<Complex> want;
                for (size_t i = 2; i <= 6; ++i) want.emplace_back(static_cast<float>(data[i]), static_cast<float>(data[8 + i]));
                EXPECT_EQ(this->data(), want);
            }
    ASSERT_EQ(import(Delta{.kinds = {1}}.bytes(data)), 1);
    EXPECT_EQ(this->data()[7], Complex(3.75F, 0));
    EXPECT_EQ(show.dims[0].domain_code, domain_real);
}

TEST_F(JeolImport, FillsTheRecord) {
    ASSERT_EQ(import(Delta().bytes(counted(16))), 1) << platform_.said();
    const Dimension& d = show.dims[0];
    EXPECT_EQ((Values{d.sf, d.sw, show.p1, show.group_delay}), (Values{400, 10000, 6.5, 0}))
        << "a delay longer than the data is none";
    EXPECT_NEAR(d.axis().ppm(3.5), 5, 1e-5);
    EXPECT_EQ((std::vector<std::string>{d.nucleus, show.experiment, show.title, show.date, show.source}),
              (std::vector<std::string>{"1H", "hsqc.jxp", "sample", "Dec 27 2016", "JEOL Delta"}));
    EXPECT_EQ((std::vector{d.sense, d.domain_code, show.scans, d.frequency ? 1 : 0}), (std::vector{1, 1, 16, 0}));

    // Without the carrier's shift, what stands for 0 ppm; and the axis of a spectrum, from its first to its last valid point.
    Delta other{.points = {64}, .last = {63}, .zero = {0.2}};
    other.numbers = {{"x_sweep", 10000, 0x010D}};
    ASSERT_EQ(import(other.bytes(counted(128))), 1);
    EXPECT_NEAR(d.axis().ppm(31.5), 5, 1e-5);
    EXPECT_EQ(show.group_delay, 19.65625);
    for (const int unit : {26, 13}) {
        const Delta spectrum{.units = {unit}, .first = {2}, .last = {6}, .start = {12.5}, .stop = {-2.5}};
        ASSERT_EQ(import(spectrum.bytes(counted(16))), 1);
        const Axis axis = d.axis();
        EXPECT_TRUE(d.frequency && show.group_delay == 0);
        EXPECT_NEAR(unit == 26 ? axis.ppm(0) : axis.hz(0), 12.5, 1e-5);
        EXPECT_NEAR(unit == 26 ? axis.ppm(4) : axis.hz(4), -2.5, 1e-5);
    }
}

TEST_F(JeolImport, PutsTilesAndPartsInOrder) {
    const Values data = counted(4 * section);
    const auto value = [&](size_t part, size_t x, size_t y) {
        return static_cast<float>(data[part * section + (y / 32 * 2 + x / 32) * 1024 + y % 32 * 32 + x % 32]);
    };
    const struct {
        int kind_x, kind_y;
        std::string type;
        size_t rows;
        bool complex_rows;
    } cases[] = {{3, 3, "2D_HYPERCOMPLEX", 2, true}, {3, 1, "2D_MAGNITUDE", 1, true},     {4, 4, "2D_MAGNITUDE", 1, true},
                 {3, 2, "2D_TPPI", 1, true},         {1, 3, "2D_HYPERCOMPLEX", 2, false}, {1, 1, "2D_MAGNITUDE", 1, false}};
    for (const auto& c : cases) {
        ASSERT_EQ(import(plane(c.kind_x, c.kind_y).bytes(data)), 1) << platform_.said();
        EXPECT_EQ(show.process_type, c.type);
        ASSERT_EQ(show.dims[1].points, static_cast<int>(40 * c.rows));
        EXPECT_TRUE(show.dims[1].sw == 4000 && show.dims[1].sense == 1 && show.dims[1].sf == 100);
        EXPECT_NEAR(show.dims[1].axis().ppm((show.dims[1].points - 1) / 2.0), 10, 1e-5);
        for (const size_t slice : {size_t{0}, size_t{1}, 40 * c.rows - 1}) {
            const size_t part = slice % c.rows * (c.complex_rows ? 2 : 1), y = 1 + slice / c.rows;
            ASSERT_EQ(run(format_text("SL %zu", slice + 1)), 1);
            for (const size_t x : {3, 31, 32, 40})
                ASSERT_EQ(this->data()[x - 3], Complex(value(part, x, y), c.complex_rows ? value(part + 1, x, y) : 0)) << x;
        }
    }
}

TEST_F(JeolImport, KeepsTheValuesOfASeries) {
    Delta listed = plane(3, 1);
    listed.ranged = 0x01;
    listed.list = counted(64);
    Delta even = plane(3, 1);
    even.units = {28, 31};
    for (const Delta& file : {listed, even}) {
        DataSet parameters;
        std::string message, path = data_.write("s.jdf", file.bytes(counted(2 * section)));
        ASSERT_TRUE(TRANAUTO(path, data_.path(format_text("out%d", ++files_)), "JEOL_DELTA", {}, parameters, message)) << message;
        EXPECT_EQ(parameters.process_type, "1D");
        ASSERT_EQ(parameters.array_values.size(), 40U);
        EXPECT_EQ((Values{parameters.array_values[0], parameters.array_values[39]}),
                  file.ranged != 0 ? (Values{-2.25, 36.75}) : (Values{0, 39}));
    }
}

TEST_F(JeolImport, RefusesWhatCannotBe) {
    load(test::sample_points(4));
    const std::string good = plane(3, 3).bytes(counted(4 * section));
    for (size_t i = 1; i < 40; ++i) {
        const std::string path = data_.write("cut.jdf", good.substr(0, good.size() * i / 40));
        refused("IM " + path + " JEOL_DELTA", "cannot be imported");
    }
    // A word of the header that makes no sense, and what is said of it.
    const std::tuple<size_t, uint32_t, const char*> words[] = {{176, 0, "contradict"},
                                                               {176, ~0U, "too few"},
                                                               {180, ~0U, "too few"},
                                                               {208, 41, "contradict"},
                                                               {240, 64, "contradict"},
                                                               {1284, ~0U, "too few"},
                                                               {12, 3 << 24, "1D and 2D"},
                                                               {12, 0x02C0C200, "layout 0"},
                                                               {1212, ~0U, "move file pointer to Param_Start location\n"},
                                                               {1212, 0, "Can't read Param_Start\n"}};
    for (const auto& [place, value, text] : words) {
        std::string bytes = good;
        Delta::put(bytes, place, value, ByteOrder::big);
        refused("IM " + data_.write("bad.jdf", bytes) + " JEOL_DELTA", text);
        EXPECT_TRUE(said("\nError in JEOL_DELTA_Parm Module"));
    }
    refused("IM " + data_.write("zero.jdf", "JEOL.NMR" + std::string(2000, '\0')) + " JEOL_DELTA", "cannot be imported");
}

TEST_F(JeolImport, KnowsItsMarkAndItsDelay) {
    for (const std::string start : {"JEOL.NMR", "RMN.LOEJ", "JEOL_NMR", "JEOL"}) {
        Candidate file(data_.write("x", start));
        ASSERT_TRUE(file.open());
        EXPECT_EQ(format_of_number(68)->test(file), start[4] == '.' || start[3] == '.') << start;
    }
    EXPECT_EQ(jeol_filter_delay("2 54 73", "8  2"), 19.65625);
    EXPECT_NEAR(jeol_filter_delay("2 41 73", "6 2"), 19.6666666667, 1e-9);
    for (const auto& [orders, factors] :
         {std::pair("3 9 9", "4 4 4"), std::pair("2 54 73", "8"), std::pair("", ""), std::pair("1 9", "0"), std::pair("-1 9", "4")})
        EXPECT_EQ(jeol_filter_delay(orders, factors), 0) << orders;
}

}  // namespace
}  // namespace zolt
