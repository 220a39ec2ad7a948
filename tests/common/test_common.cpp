// Text, numbers, arguments, axis and the replaced file.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>

#include <sys/stat.h>
#include <unistd.h>

#include "common/arguments.h"
#include "common/axis.h"
#include "common/bytes.h"
#include "common/file.h"
#include "common/numbers.h"
#include "common/text.h"
#include "support.h"

namespace zolt {
namespace {

TEST(Text, FieldsAndLines) {
    const auto fields = split_fields(",a,,b = c", ", =");
    ASSERT_EQ(fields.size(), 3u);
    EXPECT_EQ(fields[0], "a");
    EXPECT_EQ(fields[2], "c");
    EXPECT_TRUE(split_fields(" ,= ", ", =").empty());

    std::string_view text = "one\r\ntwo\n\nlast", line;
    std::vector<std::string> lines;
    while (take_line(text, line)) lines.emplace_back(line);
    EXPECT_EQ(lines, (std::vector<std::string>{"one", "two", "", "last"}));

    EXPECT_EQ(cut("Zürich", 2), "Z") << "a character is never cut in two";
    EXPECT_EQ(cut("Zürich", 3), "Zü");
    EXPECT_TRUE(same_word("aBc", "AbC"));
    EXPECT_FALSE(same_word("FT", "FTX"));
}

TEST(Numbers, LeadingNumberOfAWord) {
    EXPECT_EQ(leading_number("2.5Hz"), 2.5);
    EXPECT_EQ(leading_number("3D"), 3.0);
    EXPECT_EQ(leading_number(" +7"), 7.0);
    EXPECT_EQ(leading_number("-.5e1"), -5.0);
    EXPECT_FALSE(leading_number("abc"));
    EXPECT_FALSE(leading_number(""));
    EXPECT_FALSE(leading_number("+-3"));
    EXPECT_EQ(leading_number("1e999"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(leading_number("-1e999"), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(leading_number("1e-999"), 0.0);
    EXPECT_EQ(integer_or_zero("99999999999999999999"), std::numeric_limits<int64_t>::max());
    EXPECT_EQ(integer_or_zero("-12x"), -12);
}

TEST(Numbers, PowersOfTwo) {
    EXPECT_FALSE(is_power_of_two(0));
    EXPECT_FALSE(is_power_of_two(1));
    EXPECT_TRUE(is_power_of_two(2));
    EXPECT_TRUE(is_power_of_two(uint64_t{1} << 31));
    EXPECT_FALSE(is_power_of_two(uint64_t{1} << 32));
    EXPECT_EQ(next_power_of_two(0), 1u);
    EXPECT_EQ(next_power_of_two(1), 1u);
    EXPECT_EQ(next_power_of_two(1000), 1024u);
    EXPECT_EQ(next_power_of_two(1024), 1024u);
}

TEST(Arguments, TokensQuotesAndDelimitersOfACommand) {
    Arguments args("sf1==300.5 rest");
    EXPECT_EQ(args.next(), "sf1");
    EXPECT_EQ(args.next(), "300.5");
    EXPECT_EQ(args.rest(), "rest");
    EXPECT_EQ(args.next(), "rest");
    EXPECT_EQ(args.next(), "");

    Arguments quoted("GA \"my data=1.nmr\" x");
    quoted.next();
    EXPECT_EQ(quoted.peek(), "my data=1.nmr");
    EXPECT_EQ(quoted.next(), "my data=1.nmr");
    EXPECT_EQ(quoted.next(), "x");
    EXPECT_EQ(Arguments("\"open end").next(), "open end");
    EXPECT_EQ(Arguments("a=b,c").next(" ,\t\r\n"), "a=b");
    EXPECT_TRUE(Arguments(" /? ").ask_usage());
    EXPECT_FALSE(Arguments("??").ask_usage());
    EXPECT_EQ(typed_path("a\\b/c"), "a/b/c");
}

TEST(Axis, PointHzPpm) {
    const Axis axis{1024, 5000, 400.13, 1200};
    EXPECT_DOUBLE_EQ(axis.hz(0), 3700);
    EXPECT_NEAR(axis.hz(1023), -1300, 1e-9);
    EXPECT_NEAR(axis.ppm(0), 3700 / (400.13 - 0.0012), 1e-12);
    EXPECT_NEAR(axis.point_of_ppm(axis.ppm(321.25)), 321.25, 1e-9);
    EXPECT_EQ((Axis{1, 5000, 400, 0}.hz(0)), 0.0) << "a data set of one point stands at 0 Hz";
    EXPECT_EQ((Axis{5, 100, 0, 0}.ppm(0)), 50.0) << "without SF the shift is the frequency, unconverted";
}

TEST(Bytes, WordsInBothOrders) {
    const unsigned char bytes[] = {1, 2, 3, 4};
    EXPECT_EQ(load_word<uint32_t>(bytes, ByteOrder::little), 0x04030201u);
    EXPECT_EQ(load_word<uint32_t>(bytes, ByteOrder::big), 0x01020304u);
    float values[2] = {1.5F, -2.25F};
    to_machine_order(values, 2, machine_order == ByteOrder::little ? ByteOrder::big : ByteOrder::little);
    EXPECT_NE(values[0], 1.5F);
    to_machine_order(values, 2, machine_order == ByteOrder::little ? ByteOrder::big : ByteOrder::little);
    EXPECT_EQ(values[1], -2.25F);
}

TEST(ReplacedFile, TargetIsOldOrNewAndNothingIsLeftBeside) {
    const test::TemporaryFolder folder;
    const std::string target = folder.write("data", "old");
    {
        ReplacedFile abandoned;
        ASSERT_TRUE(abandoned.open(target));
        ASSERT_TRUE(abandoned.write("half of the new"));
    }
    EXPECT_EQ(test::read_file(target), "old");
    {
        ReplacedFile file;
        ASSERT_TRUE(file.open(target));
        ASSERT_TRUE(file.write("new") && file.commit());
    }
    EXPECT_EQ(test::read_file(target), "new");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1) << "no private file may stay";

    // A link is followed: the file it leads to is replaced, the link stays.
    const std::string link = folder.path("link");
    ASSERT_EQ(symlink(target.c_str(), link.c_str()), 0);
    ReplacedFile linked;
    ASSERT_TRUE(linked.open(link) && linked.write("through the link") && linked.commit());
    EXPECT_EQ(test::read_file(target), "through the link");
    EXPECT_TRUE(std::filesystem::is_symlink(link));

    ReplacedFile refused;
    EXPECT_FALSE(refused.open(folder.path()));
    EXPECT_EQ(refused.error(), EISDIR);
    ReplacedFile nowhere;
    EXPECT_FALSE(nowhere.open(folder.path("no/such/folder/x")));
    EXPECT_EQ(nowhere.error(), ENOENT);
}

TEST(Files, CompanionsAndOrdinaryFilesOnly) {
    const test::TemporaryFolder folder;
    folder.write("ACQUS", "x");
    EXPECT_EQ(name_of(find_companion(folder.path(), "acqus")), "ACQUS");
    EXPECT_EQ(find_companion(folder.path(), "procs"), "");
    EXPECT_FALSE(open_for_reading(folder.path())) << "a folder is no file";
    EXPECT_FALSE(open_for_reading("/dev/zero")) << "nor is a device";
    std::string content;
    EXPECT_FALSE(read_whole_file(folder.write("big", std::string(100, 'x')), content, 99));
}

}  // namespace
}  // namespace zolt
