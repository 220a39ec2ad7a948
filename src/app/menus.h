// The menus as one table: every item is a command line, or opens a panel of the window.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace zolt {

enum class Item {
    line,    ///< carries out `line`
    ask,     ///< asks for a value first, and carries out `line` with it
    toggle,  ///< `line` is a switch of the configuration, which it turns over
    panel,   ///< `line` names a panel of the window: preferences, commands, output, about
    recent,  ///< the files opened last
    separator
};

struct MenuItem {
    const char* menu;  ///< path: "View/Axis"; & marks the letter of the keyboard
    const char* text;
    Item kind = Item::line;
    const char* line = "";
    const char* shortcut = "";  ///< in the notation "Ctrl+Shift+O"
    const char* icon = "";      ///< of the toolbar; items with one stand there
    const char* prompt = "";    ///< of Item::ask
    std::string (*initial)() = nullptr;
};

/// All items, menu by menu, in their order.
std::span<const MenuItem> menu_items();

/// The command line that the item carries out now; "" for panels and separators.
std::string line_of(const MenuItem& item);
/// Whether it can be chosen now: planned commands cannot, nor those that need data without any.
bool is_available(const MenuItem& item);
/// Carries out a line of a menu; refused while a sub-routine is active.
int run_menu_line(std::string_view line);

}  // namespace zolt
