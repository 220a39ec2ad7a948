// Parameter commands through the dispatcher: usage, limits, echo, and nothing else touched.
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;

class ParameterTest : public CommandTest {};

TEST_F(ParameterTest, FrequenciesAndWidths) {
    struct Row {
        const char* line;
        int result;
        const char* reply;
    };
    const Row rows[] = {
        {"SF", 2, "SF1 or SF or F1 <value>"},
        {"sf2 ?", 2, "SF2 or F2 <value>"},
        {"SF1 400.125", 1, "SF1 set to 400.125000 MHz"},
        {"SF1 2000", 1, "SF1 set to 2000.000000 MHz"},
        {"SF1 2000.1", 2, "F1 = 2000.100000 MHz is not a legal value for Spectrometer Frequency."},
        {"SF3=-1", 2, "F3 = -1.000000 MHz is not a legal value for Spectrometer Frequency 3."},
        {"SF 0", 2, "F1 = 0.000000 MHz is not a legal value for Spectrometer Frequency."},
        {"SF nan", 2, "F1 = nan MHz is not a legal value for Spectrometer Frequency."},
        {"F4 25.5", 1, "SF4 set to 25.500000 MHz"},
        {"SW inf", 2, "W1 = inf Hz is not a legal value for 1st Dimension Sweep Width."},
        {"W2 0", 2, "W2 = 0.000000 Hz is not a legal value for 2nd Dimension Sweep Width."},
        {"SW 1e300", 2, nullptr},
        {"SW4 100", 1, "SWF4 set to 100.000000 Hz"},
        {"W1 5000.5", 1, "SW1 set to 5000.500000 Hz"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(run(row.line), row.result) << row.line;
        if (row.reply != nullptr) {
            EXPECT_EQ(platform_.replies.back(), row.reply) << row.line;
        }
    }
    EXPECT_EQ(show.dims[0].sf, 2000);
    EXPECT_EQ(show.dims[3].sf, 25.5F);
    EXPECT_EQ(show.dims[2].sf, 0) << "a refused value was stored";
    EXPECT_EQ(show.dims[0].sw, 5000.5F);
    EXPECT_EQ(show.dims[3].sw, 100);
    EXPECT_FALSE(show.changed);
}

TEST_F(ParameterTest, NucleusSolventProcessType) {
    EXPECT_EQ(run("nucleus=2=13C"), 1);
    EXPECT_EQ(platform_.replies.back(), "- Nucleus[2] set to: 13C");
    EXPECT_EQ(show.dims[1].nucleus, "13C");
    EXPECT_EQ(run("NU 5 2H"), 2);
    EXPECT_EQ(platform_.replies.back(), "Illegal Nucleus Index Number, use index between 1 and 4 inclusive.");
    EXPECT_EQ(run("NU"), 2);
    EXPECT_NE(platform_.replies.back().find("- Current Nucleus[2] is: 13C\n"), std::string::npos);
    run("SV CDCl3");
    run("sv");
    EXPECT_EQ(platform_.replies.back(), "- Current solvent is: CDCl3");

    // This command spells the States-TPPI key with a double T, files do not.
    EXPECT_EQ(run("pt 2d_statesttpi"), 1);
    EXPECT_EQ(show.process_type, "2D_STATESTPPI");
    EXPECT_EQ(run("PT 3D_GENERIC"), 1);
    EXPECT_EQ(run("PT 2D_STATESTPPI"), 2);
    EXPECT_EQ(run("PT 3D"), 2);
    EXPECT_EQ(show.process_type, "3D_GENERIC");
}

}  // namespace
}  // namespace zolt
