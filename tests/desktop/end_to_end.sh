#!/usr/bin/env bash
# Real keys and a real mouse on a virtual screen: imports the example, transforms, phases, integrates, picks peaks, prints,
# zooms, saves, quits; then looks at what was saved, and lets zolt-cli repeat the log.
#   end_to_end.sh ZOLT ZOLT-CLI TREE      77: no virtual screen here
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
mkdir home again
(cd home && "$zolt" --root "$folder/home" --ini "$tree/ZOLT.INI" > ../log 2>&1) &
program=$!
until_true xdotool search --onlyvisible --name ZOLT
window=$(xdotool search --onlyvisible --name ZOLT | head -n 1)
xdotool windowmove --sync "$window" 0 0 || true
xdotool windowfocus --sync "$window"
eval "$(xdotool getwindowgeometry --shell "$window")"

example=$tree/examples/caryophyllene_oxide/10
line() { xdotool type --delay 4 "$1"; xdotool key Return; }
# drag X Y RIGHT DOWN: from a place on the plot, by so many pixels.
drag() {
    xdotool mousemove --window "$window" "$1" "$2" mousedown 1
    xdotool mousemove --window "$window" $(($1 + $3 / 2)) $(($2 + $4 / 2))
    xdotool mousemove --window "$window" $(($1 + $3)) $(($2 + $4)) mouseup 1
}
line "cmdlog on"
line "IM \"$example\""
line EM
line FT
line PC
line "PC 40 60"
line "metafile whole.svg"
until_true test -s home/whole.svg
# The wrong phases by hand, about the left end; four pixels of a drag only tell that it is one.
middle=$((WIDTH / 2)) height=$((HEIGHT / 2))
line PH
xdotool mousemove --window "$window" 26 $height click 1
drag $middle $height -64 0
drag $middle $height 0 44
xdotool key Return
# Nine groups of lines by hand, the first of them one proton.
line "SETX 5.2 0.6"
place() { awk -v ppm="$1" -v width="$WIDTH" 'BEGIN { printf "%.0f", 24 + (5.2 - ppm) / 4.6 * (width - 83.2) }'; }
line ID
for region in 5.03,4.94 4.91,4.83 2.94,2.85 2.68,2.57 2.42,2.215 2.175,2.05 1.83,1.74 1.51,1.28 1.245,1.185; do
    from=$(place "${region%,*}") to=$(place "${region#*,}")
    drag "$from" $height $((to - from)) 0
done
xdotool mousemove --window "$window" "$(place 4.985)" $height click 1
xdotool key c
until_true xdotool search --onlyvisible --name Calibrate
xdotool type 1
xdotool key Return
until_true eval '! xdotool search --onlyvisible --name Calibrate'
xdotool windowfocus --sync "$window"
xdotool key Return
line DP
# A region from a quarter to three quarters of the plot; 5 ppm are not in it.
drag $((WIDTH / 4)) $height $((WIDTH / 2)) 0
line "metafile zoomed.svg"
line "SA saved.zolt"
until_true eval "test -s home/saved.zolt || test -s home/DATA/saved.zolt"
line "metafile page.pdf page"
until_true test -s home/page.pdf
xdotool key ctrl+q
until_true eval "! kill -0 $program"
wait "$program" || fail "exit status $?"
program=''

grep -q '>14<' home/whole.svg || fail "the whole spectrum reaches 14 ppm"
grep -q '>5.0<' home/zoomed.svg && fail "the mouse has not zoomed"
grep -aq '^%PDF' home/page.pdf || fail "the page is no PDF"
[[ -s home/WINDOW.INI ]] || fail "the window is not remembered"
saved=$(find home -name saved.zolt)
state=$("$cli" --root "$folder/home" -c "GA $folder/$saved" --json --state | tail -n 1)
for part in '"frequency":1' '"nucleus":"1H"' '"changed":false' '"loaded":true'; do
    [[ $state == *"$part"* ]] || fail "no $part in $state"
done
# By hand within two degrees of the stored phases, at both ends.
totals() { grep -o '"phase_totals":\[[^]]*' | head -n 1 | sed 's/.*\[//'; }
stored=$("$cli" --root "$folder/home" --yes -c "IM \"$example\"" -c FT -c PC --json --state | totals)
awk -F, -v by_hand="$(totals <<< "$state")" '
    function off(degrees) { degrees = degrees % 360; return degrees > 180 ? 360 - degrees : degrees < -180 ? -360 - degrees : degrees }
    { split(by_hand, got); a = off(got[1] - $1); b = off(got[1] - $1 + got[2] - $2); exit a * a > 4 || b * b > 4 }
' <<< "$stored" || fail "phased to $(totals <<< "$state"), stored are $stored"
# By hand within 5 % of the numbers of protons.
integrals=$("$cli" --root "$folder/home" -c "GA $folder/$saved" -c "ID list")
awk '/PPM/ && $1 ~ /^[0-9]+$/ { ++n; off = $NF / int($NF + 0.5) - 1; if (off * off > 0.0025) exit 1 } END { exit n != 9 }' \
    <<< "$integrals" || fail "$integrals"
# The log, repeated without a window (which writes no PDF), makes the same file.
log=$(find home -name ZOLT.LOG)
(cd again && "$cli" --root "$folder/again" --ini "$tree/ZOLT.INI" --yes --keep-going -c "cmdlog on" --stdin < "../$log" > ../log 2>&1) || true
cmp "$saved" "$(find again -name saved.zolt)" > /dev/null || fail "the repeated log makes another file: $(cat "$log")"
