#!/usr/bin/env bash
# Real keys and a real mouse on a virtual screen: imports the example, transforms, phases, zooms, saves, quits; then looks
# at what was saved.   end_to_end.sh ZOLT ZOLT-CLI TREE      77: no virtual screen here
set -euo pipefail
zolt=$1 cli=$2 tree=$3
command -v Xvfb > /dev/null && command -v xdotool > /dev/null || exit 77
folder=$(mktemp -d)
screen='' program=''
clean_up() {
    [[ -z $program ]] || kill "$program" 2> /dev/null || true
    [[ -z $screen ]] || kill "$screen" 2> /dev/null || true
    rm -rf "$folder"
}
trap clean_up EXIT
fail() { printf 'end_to_end.sh: %s\n' "$1" >&2; cat "$folder/log" >&2; exit 1; }
# until_true COMMAND...: waits for a state of the program, not for a time.
until_true() { for ((i = 0; i < 600; ++i)); do "$@" > /dev/null 2>&1 && return; sleep 0.1; done; fail "never: $*"; }

cd "$folder"
touch log
exec 3> display_number
Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp > /dev/null 2>&1 &
screen=$!
until_true test -s display_number
DISPLAY=:$(cat display_number)
export DISPLAY QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR=$folder
mkdir home
"$zolt" --root "$folder/home" --ini "$tree/ZOLT.INI" > log 2>&1 &
program=$!
until_true xdotool search --onlyvisible --name ZOLT
window=$(xdotool search --onlyvisible --name ZOLT | head -n 1)
xdotool windowmove --sync "$window" 0 0 || true
xdotool windowfocus --sync "$window"

line() { xdotool type --delay 4 "$1"; xdotool key Return; }
line "IM \"$tree/examples/strychnine_1h/10\""
line EM
line FT
line PC
line "PC 40 60"
line "metafile $folder/whole.svg"
until_true test -s whole.svg
eval "$(xdotool getwindowgeometry --shell "$window")"
# drag RIGHT DOWN: from the middle of the plot, by so many pixels.
drag() {
    xdotool mousemove --window "$window" $((WIDTH / 2)) $((HEIGHT / 2)) mousedown 1
    xdotool mousemove --window "$window" $((WIDTH / 2 + $1 / 2)) $((HEIGHT / 2 + $2 / 2))
    xdotool mousemove --window "$window" $((WIDTH / 2 + $1)) $((HEIGHT / 2 + $2)) mouseup 1
}
# The wrong phases by hand, about the left end; four pixels of a drag only tell that it is one.
line PH
xdotool mousemove --window "$window" 26 $((HEIGHT / 2)) click 1
drag -64 0
drag 0 44
xdotool key Return
# A region from a quarter to three quarters of the plot; nothing in it is 14 ppm.
xdotool mousemove --window "$window" $((WIDTH / 4)) $((HEIGHT / 2)) mousedown 1
xdotool mousemove --window "$window" $((WIDTH / 2)) $((HEIGHT / 2)) mousemove --window "$window" $((WIDTH * 3 / 4)) $((HEIGHT / 2)) mouseup 1
line "metafile $folder/zoomed.svg"
line "SA $folder/saved.zolt"
until_true test -s saved.zolt
xdotool key ctrl+q
until_true eval "! kill -0 $program"
wait "$program" || fail "exit status $?"
program=''

grep -q '>14<' whole.svg || fail "the whole spectrum reaches 14 ppm"
grep -q '>14<' zoomed.svg && fail "the mouse has not zoomed"
[[ -s home/WINDOW.INI ]] || fail "the window is not remembered"
state=$("$cli" --root "$folder/home" -c "GA $folder/saved.zolt" --json --state | tail -n 1)
for part in '"frequency":1' '"nucleus":"1H"' '"changed":false' '"loaded":true'; do
    [[ $state == *"$part"* ]] || fail "no $part in $state"
done
# By hand within two degrees of the stored phases, at both ends.
totals() { grep -o '"phase_totals":\[[^]]*' | head -n 1 | sed 's/.*\[//'; }
stored=$("$cli" --root "$folder/home" --yes -c "IM \"$tree/examples/strychnine_1h/10\"" -c FT -c PC --json --state | totals)
awk -F, -v by_hand="$(totals <<< "$state")" '
    function off(degrees) { degrees = degrees % 360; return degrees > 180 ? 360 - degrees : degrees < -180 ? -360 - degrees : degrees }
    { split(by_hand, got); a = off(got[1] - $1); b = off(got[1] - $1 + got[2] - $2); exit a * a > 4 || b * b > 4 }
' <<< "$stored" || fail "phased to $(totals <<< "$state"), stored are $stored"
