// One function an event, in plain text or as a JSON line.
#include "front/events.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>

#include "common/text.h"
#include "front/state_record.h"

namespace zolt {

namespace {

using Json = nlohmann::ordered_json;

bool json = false;

void put(std::string_view line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

// Bytes that are no UTF-8 (a file's own texts) are replaced, never an error.
void put_event(const Json& event) { put(event.dump(-1, ' ', false, Json::error_handler_t::replace)); }

Json text_field(std::string_view text) { return std::string(text); }

constexpr const char* icon_names[] = {"none", "information", "exclamation", "stop"};
constexpr const char* answer_names[] = {"yes", "no", "cancel"};
constexpr const char* source_names[] = {"user", "link", "macro", "menu"};

}  // namespace

void set_json_output(bool on) { json = on; }
bool json_output() { return json; }

void print_message(std::string_view caption, Icon icon, std::string_view text) {
    if (json)
        put_event({{"event", "message"},
                   {"caption", text_field(caption)},
                   {"icon", icon_names[static_cast<int>(icon)]},
                   {"text", text_field(text)}});
    else
        put(trimmed(text));
}

void print_question(std::string_view caption, std::string_view text, Buttons buttons, Answer answer) {
    const char* given = answer_names[static_cast<int>(answer)];
    if (json)
        put_event({{"event", "question"},
                   {"caption", text_field(caption)},
                   {"text", text_field(text)},
                   {"buttons", buttons == Buttons::yes_no ? "yesno" : "yesnocancel"},
                   {"answer", given}});
    else
        put(std::string(trimmed(text)) + " [" + given + "]");
}

void print_dialog(std::string_view kind, std::string_view title, const std::optional<std::string>& answer) {
    if (json)
        put_event({{"event", "dialog"},
                   {"kind", text_field(kind)},
                   {"title", text_field(title)},
                   {"answer", answer ? Json(*answer) : Json(nullptr)}});
    else
        put(std::string(title) + (answer ? " [" + *answer + "]" : " [cancelled]"));
}

void print_reply(std::string_view text) {
    if (json)
        put_event({{"event", "reply"}, {"text", text_field(text)}});
    else
        put(text);
}

void print_status(int pane, std::string_view text) {
    if (json) return put_event({{"event", "status"}, {"pane", pane}, {"text", text_field(text)}});
    // People read the reports of what happens, not a "Ready" behind each line.
    static std::string previous = "Ready";
    if (text != previous && text != "Ready" && text != "Not a Valid Command") put(text);
    previous = text;
}

void print_beep() {
    if (json) put_event({{"event", "beep"}});
}

void print_post(int character) {
    if (json) put_event({{"event", "post"}, {"char", character}});
}

void print_clipboard(std::string_view text) {
    if (json)
        put_event({{"event", "clipboard"}, {"text", text_field(text)}});
    else
        put(text);
}

void print_close() {
    if (json) put_event({{"event", "close"}});
}

void print_line(std::string_view text, int result, LineSource source) {
    if (json)
        put_event({{"event", "line"},
                   {"text", text_field(text)},
                   {"result", result},
                   {"source", source_names[static_cast<int>(source)]}});
    else if (result == 0)
        put("Not a Valid Command: " + std::string(text));
}

void print_detection(const std::string& file, int number, std::string_view key, std::string_view name, std::string_view step) {
    if (json)
        return put_event({{"event", "detection"},
                          {"file", file},
                          {"number", number},
                          {"key", text_field(key)},
                          {"name", text_field(name)},
                          {"step", text_field(step)}});
    std::string line = file;
    const std::string number_text = format_text("%d", number);
    for (const std::string_view field : {std::string_view(number_text), key, name, step})
        line += "\t" + std::string(field.empty() ? "-" : field);
    put(line);
}

void print_state() {
    const Json state = state_record();
    put(json ? state.dump(-1, ' ', false, Json::error_handler_t::replace)
             : state.dump(1, ' ', false, Json::error_handler_t::replace));
}

}  // namespace zolt
