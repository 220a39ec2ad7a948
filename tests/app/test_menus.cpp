// The menus against the command table; the command line's caret, history, completion and hints.
#include <set>

#include "app/command_line.h"
#include "app/commands.h"
#include "app/completion.h"
#include "app/line_history.h"
#include "app/main_loop.h"
#include "app/menus.h"
#include "common/keys.h"
#include "config/settings.h"
#include "display/view.h"
#include "state/session.h"
#include "support.h"

namespace zolt {
namespace {

class MenuTest : public test::CommandTest {
protected:
    void press(std::initializer_list<int> keys) {
        for (const int key : keys) post_character(key, LineSource::user);
        run_main_loop();
    }
    void type(const std::string& text) {
        for (const char c : text) post_character(static_cast<unsigned char>(c), LineSource::user);
        run_main_loop();
    }
};

TEST_F(MenuTest, EveryItemReachesACommand) {
    std::set<std::string> shortcuts, texts;
    for (const MenuItem& item : menu_items()) {
        const std::string where = std::string(item.menu) + "/" + item.text;
        if (item.kind != Item::separator) {
            EXPECT_TRUE(texts.insert(where).second) << where;
        }
        if (*item.shortcut != '\0') {
            EXPECT_TRUE(shortcuts.insert(item.shortcut).second) << where;
        }
        if (item.kind == Item::toggle) {
            EXPECT_NE(find_setting(item.line), nullptr) << where;
        }
        const std::string line = line_of(item);
        if (line.empty() || line[0] == '^') continue;
        Arguments args(line);
        EXPECT_TRUE(find_command(args.next()) != nullptr || find_fallback(line) != nullptr) << where;
        if (item.kind == Item::ask) {
            EXPECT_TRUE(item.initial != nullptr && *item.prompt != '\0') << where;
        }
    }
}

TEST_F(MenuTest, LinesOfMenusLeaveWhatIsTyped) {
    load(test::sample_points(64), domain_complex, true);
    type("SF1 3");
    EXPECT_EQ(run_menu_line("SETX FULL"), 1);
    type("12");
    EXPECT_EQ(typed_text(), "SF1 312");
    EXPECT_EQ(run_menu_line("ini set GRIDLINES TRUE"), 1);
    EXPECT_TRUE(setting_switch("GRIDLINES"));
    press({key_enter});
    EXPECT_EQ(show.dims[0].sf, 312);
    // Zooming with the mouse does not use up the steps of undo.
    session.undo_enabled = true;
    const int slot = session.undo_slot;
    for (int i = 0; i < 12; ++i) run_menu_line("SETZ 2");
    EXPECT_TRUE(session.undo_slot == slot && session.undo_enabled);
    run("ZO");
    EXPECT_EQ(run_menu_line("FT"), 0);
    EXPECT_TRUE(said("A Sub-Routine is active.\nExit first."));
}

TEST_F(MenuTest, GreyWithoutDataOrHandler) {
    for (const bool loaded : {false, true}) {
        if (loaded) load(test::sample_points(8));
        for (const MenuItem& item : menu_items()) {
            const std::string line = line_of(item);
            const int want = line == "FT" || line == "^Z" ? loaded : line == "LP" ? 0 : line == "GA" ? 1 : -1;
            if (want >= 0) {
                EXPECT_EQ(is_available(item), want != 0) << line;
            }
        }
    }
}

TEST_F(MenuTest, CaretWithinTheLine) {
    type(
        "SF1 \xc3\xbc"
        "9");
    press({key_left, key_left, key_backspace});
    EXPECT_EQ(typed_text(),
              "SF1\xc3\xbc"
              "9");
    type(" 4");
    press({key_forward_delete});
    EXPECT_EQ(typed_text(), "SF1 49");
    press({key_home, key_forward_delete, key_end, '1'});
    EXPECT_EQ(typed_text(), "F1 491");
    const int beeps = platform_.beeps;
    press({key_right, key_forward_delete});
    EXPECT_EQ(platform_.beeps, beeps + 2);
    // A full line takes nothing more, wherever the caret is.
    press({key_escape});
    type(std::string(254, 'x'));
    press({key_home});
    type("y");
    EXPECT_EQ(typed_text(), std::string(254, 'x'));
}

TEST_F(MenuTest, HistoryAndCompletion) {
    set_entered_lines({});
    for (const char* line : {"SF1 300", "SF1 400", "SF1 400", "LB 2"}) run(line);
    const std::tuple<int, const char*> walk[] = {{key_up, "LB 2"},    {key_up, "SF1 400"},   {key_up, "SF1 300"},
                                                 {key_up, "SF1 300"}, {key_down, "SF1 400"}, {key_down, "LB 2"},
                                                 {key_down, ""}};
    for (const auto& [key, text] : walk) {
        press({key});
        EXPECT_EQ(typed_text(), text);
    }
    type("SF");
    press({key_up});
    EXPECT_EQ(typed_text(), "SF1 400") << "only lines that begin as typed";
    press({key_down});
    EXPECT_EQ(typed_text(), "SF");
    const std::pair<const char*, const char*> rows[] = {{"fourier", "FourierTransform "},
                                                        {"Linebr", "LineBroadening "},
                                                        {"line", "LineBroadening "},
                                                        {"FT 2", "FT 2"},
                                                        {"qqq", "qqq"},
                                                        {"Phase", "Phase"},
                                                        {"expm", "ExpMult "}};
    for (const auto& [typed, want] : rows) EXPECT_EQ(completed(typed), want);
    EXPECT_TRUE(hint_for("ft").starts_with("FT [Complex"));
    EXPECT_TRUE(hint_for("EM 2").starts_with("EM [2D"));
    EXPECT_TRUE(hint_for("zf").starts_with("ZF"));
    EXPECT_TRUE(hint_for("LP").find("planned") != std::string::npos);
    EXPECT_TRUE(hint_for("sf").find("SF1") != std::string::npos);
    EXPECT_TRUE(hint_for("").empty() && hint_for("qqq 1").empty());
}

TEST_F(MenuTest, InformationTellsLevelsAndDomains) {
    EXPECT_EQ(run("info"), 2);
    EXPECT_TRUE(said("Base Level"));
    load(test::sample_points(8));
    EXPECT_EQ(run("IF"), 2);
    for (const char* part : {"Level\tNon-Arrayed", "Domain = Time", "Points\t8", "Dimension 1"}) EXPECT_TRUE(said(part)) << part;
    show.level = 2;
    run("info");
    EXPECT_TRUE(said("Level\tIndirect Dimension 1"));
}

}  // namespace
}  // namespace zolt
