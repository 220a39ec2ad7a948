// Undo: steps back and forth bring back data and state exactly; what a killed run left can be recovered.
#include <filesystem>

#include "app/main_loop.h"
#include "app/recovery.h"
#include "app/undo.h"
#include "config/paths.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

using test::CommandTest;
using test::sample_points;

class UndoTest : public CommandTest {
protected:
    UndoTest() {
        session.undo_enabled = true;
        platform_.default_answer = Answer::yes;
    }
    void key(int character) {
        post_character(character, LineSource::user);
        run_main_loop();
    }
    void undo() { key(26); }
    void redo() { key(25); }
    /// Everything about the data set: its record and its points.
    struct State {
        DataRecord record;
        std::vector<Complex> points;
        bool operator==(const State&) const = default;
    };
    State now() const { return {show, {show.store.all().begin(), show.store.all().end()}}; }
};

TEST_F(UndoTest, StepsBackAndForthAreExact) {
    load(sample_points(100));
    // What no file of the configured type carries comes back all the same.
    show.solvent = "CDCl3";
    show.title = "a title";
    show.integrals = {{3, 9, 1.5F, 1}};
    show.group_delay = 12.375;
    show.dims[0].sense = -1;
    session.header_type = 1;
    std::vector<State> states = {now()};
    for (const char* line : {"EM 3", "FT", "PC 10 20 30", "BC", "SF1 123.456"}) {
        ASSERT_EQ(run(line), 1) << line;
        states.push_back(now());
    }
    for (size_t k = states.size() - 1; k-- > 0;) {
        undo();
        EXPECT_EQ(now(), states[k]) << k;
        EXPECT_EQ(platform_.statuses.back(), "0 Undo");
    }
    const int beeps = platform_.beeps;
    undo();
    EXPECT_EQ(platform_.beeps, beeps + 1) << "nothing further back";
    EXPECT_EQ(now(), states[0]);
    for (size_t k = 1; k < states.size(); ++k) {
        redo();
        EXPECT_EQ(now(), states[k]) << k;
    }
    EXPECT_EQ(platform_.statuses.back(), "0 Redo");
    redo();
    EXPECT_EQ(platform_.beeps, beeps + 2);
    run("^z");
    EXPECT_EQ(now(), states[states.size() - 2]) << "and back again, the key typed as a line";
    run("^y");
    EXPECT_EQ(now(), states.back());
}

TEST_F(UndoTest, EqualStatesAreSteppedOverAndANewCommandDropsTheRest) {
    load(sample_points(64));
    const State start = now();
    run("ZR");
    for (const char* line : {"NOSUCH", "FT ?", "1D"}) run(line);
    undo();
    EXPECT_EQ(now(), start) << "commands that changed nothing are no step";
    run("ZI");
    const State other = now();
    redo();
    EXPECT_EQ(now(), other) << "the dropped state does not come back";
    undo();
    EXPECT_EQ(now(), start);
    redo();
    EXPECT_EQ(now(), other);
}

TEST_F(UndoTest, TheRingHoldsTenAndItsFilesGoAtTheEnd) {
    load(sample_points(16));
    for (int k = 1; k <= 13; ++k) {
        run("SF1 " + std::to_string(100 + k));
        EXPECT_EQ(session.undo_slot, (k - 1) % 10);
    }
    for (int k = 12; k >= 3; --k) {
        undo();
        EXPECT_EQ(show.dims[0].sf, static_cast<float>(100 + k));
    }
    undo();
    EXPECT_EQ(show.dims[0].sf, 103) << "ten steps, no more";
    const std::filesystem::path scratch = scratch_folder();
    EXPECT_TRUE(exists(scratch / "Undo0.tmp") && exists(scratch / "Undo9.tmp"));
    DeleteUndoFiles();
    EXPECT_TRUE(std::filesystem::is_empty(scratch));
    undo();
    EXPECT_EQ(show.dims[0].sf, 103);
}

TEST_F(UndoTest, NoSnapshotWithoutDataOrDuringPlayback) {
    EXPECT_EQ(run("SF1 300"), 1);
    EXPECT_EQ(session.undo_slot, -1);
    load(sample_points(16));
    settings.links[1] = "SF1 1;SF1 2;";
    const State start = now();
    run("A1");
    EXPECT_EQ(session.undo_slot, 0) << "one for the link as a whole";
    EXPECT_EQ(show.dims[0].sf, 2);
    undo();
    EXPECT_EQ(now(), start);
    run("UF");
    EXPECT_EQ(run("SF1 5"), 1);
    EXPECT_EQ(session.undo_slot, 1) << "the one before UF is the last";
}

TEST_F(UndoTest, WhatAKilledRunLeftIsOffered) {
    load(sample_points(24));
    const auto points = data();
    run("ZR");
    // A process that was killed leaves its scratch folder, unlocked.
    const auto left = root_.path("zolt-scratch-999999-killed");
    std::filesystem::create_directory(left);
    std::filesystem::copy(scratch_folder() + "/Undo0.tmp", left + "/Undo0.tmp");
    show = DataSet();
    platform_.default_answer = Answer::no;
    offer_recovery();
    EXPECT_FALSE(show.loaded);
    EXPECT_EQ(platform_.questions.back(), "Recover the data set of an interrupted run?");
    EXPECT_FALSE(std::filesystem::exists(left)) << "refused, it goes";
    const size_t asked = platform_.questions.size();
    offer_recovery();
    EXPECT_EQ(platform_.questions.size(), asked);

    std::filesystem::create_directory(left);
    std::filesystem::copy(scratch_folder() + "/Undo0.tmp", left + "/Undo0.tmp");
    platform_.default_answer = Answer::yes;
    offer_recovery();
    EXPECT_EQ(data(), points);
    EXPECT_TRUE(show.changed);
    EXPECT_EQ(show.file_a, "");
}

}  // namespace
}  // namespace zolt
