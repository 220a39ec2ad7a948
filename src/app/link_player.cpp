// Plays a text into the queue, one character for each idle step.
#include "app/link_player.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>

#include "app/main_loop.h"
#include "common/numbers.h"
#include "common/text.h"
#include "config/settings.h"
#include "datafile/slice.h"
#include "macro/stepper.h"
#include "platform/platform.h"
#include "state/dataset.h"
#include "state/session.h"

namespace zolt {

namespace {

using Clock = std::chrono::steady_clock;

struct Playback {
    std::string text;
    size_t next = 0;
    LineSource source = LineSource::link;
    int64_t rounds_left = 0;  // of a link that is played on every slice, the present one included
    int32_t slice = 0;        // the one that the present round began with
} playback;

struct Hold {
    bool on = false, for_ever = false;
    Clock::time_point end;
    bool (*until)() = nullptr;
} hold;

constexpr double longest_sleep = 86400e3;  // milliseconds: a day

bool start(std::string_view text, LineSource source) {
    // A macro line that has been typed to its end may start a link itself; the macro waits for that.
    const bool typed = playback.source == LineSource::macro && playback.next >= playback.text.size();
    if (session.link_running && !typed) return false;
    playback = {.text = std::string(text), .source = source};
    session.link_running = true;
    return true;
}

// Goes on to the next slice for the next round, unless the link itself has done so; false behind the last one.
bool next_round() {
    if (--playback.rounds_left <= 0 || show.slice < playback.slice) return false;
    if (show.slice == playback.slice && (int64_t{show.slice} + 1 >= show.dims[1].points || !set_sliceA(int64_t{show.slice} + 1)))
        return false;
    playback.slice = show.slice;
    playback.next = 0;
    return true;
}

}  // namespace

bool start_link(std::string_view text) { return start(text, LineSource::link); }

bool start_macro_line(std::string_view line) {
    // `;` is Enter: a line that ends with one has its own.
    const bool entered = trimmed(line).ends_with(';');
    return start(std::string(line) + (entered ? "" : "\r"), LineSource::macro);
}

void stop_link() {
    session.link_running = false;
    if (playback.source == LineSource::link) platform().status(0, "Link Finished");
}

void link_step() {
    if (playback.next < playback.text.size()) {
        const char character = playback.text[playback.next++];
        post_character(character == ';' ? 13 : static_cast<unsigned char>(character), playback.source);
    } else if (!next_round()) {
        stop_link();
    }
}

void link_line_failed(std::string_view line) {
    const bool stop = stops_on_error();
    if (session.link_running && (stop || playback.rounds_left > 0)) {
        if (playback.source == LineSource::link) platform().status(0, std::string(line) + " - Not a Valid Command");
        stop_link();
    }
    if (stop && session.macro_running) MacroError();
}

void hold_playback(double milliseconds, bool (*until)()) {
    const auto time = std::chrono::duration<double, std::milli>(std::max(milliseconds, 0.0));
    hold = {true, milliseconds < 0, Clock::now() + std::chrono::duration_cast<Clock::duration>(time), until};
}

void release_playback() { hold = {}; }

bool playback_held() {
    if (!hold.on) return false;
    const auto left = hold.end - Clock::now();
    if ((!hold.for_ever && left <= Clock::duration::zero()) || (hold.until != nullptr && hold.until())) {
        hold = {};
        return false;
    }
    constexpr Clock::duration moment = std::chrono::milliseconds(10);
    std::this_thread::sleep_for(hold.for_ever ? moment : std::min(left, moment));
    return true;
}

void reset_playback() {
    playback = {};
    hold = {};
}

int play_link(int number) {
    const std::string& text = settings.links[static_cast<size_t>(number)];
    if (text.empty()) return refuse(format_text("The key LINK%d of ZOLT.INI holds no commands for A%d to play.", number, number));
    return start_link(text) ? 1 : 0;
}

int repeat_link(int number) {
    if (play_link(number) == 0) return 0;
    const auto limit = session.macro_values.find("LINKLIMIT");
    const int64_t most = limit != session.macro_values.end() ? integer_or_zero(limit->second) : 0;
    playback.slice = show.slice;
    playback.rounds_left = std::max<int64_t>(1, int64_t{show.dims[1].points} - show.slice);
    if (most > 0) playback.rounds_left = std::min(playback.rounds_left, most);
    return 1;
}

int cmd_sleep(Arguments& args) {
    const std::string time = args.next();
    const bool seconds = time.ends_with('s') && !time.ends_with("ms");
    const double milliseconds = leading_number(time).value_or(-1) * (seconds ? 1000 : 1);
    if (!(milliseconds >= 0 && milliseconds <= longest_sleep))
        return show_reply("Sleep <milliseconds>, or seconds with an s: Sleep 2s");
    hold_playback(milliseconds, nullptr);
    return 1;
}

}  // namespace zolt
