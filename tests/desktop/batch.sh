#!/usr/bin/env bash
# zolt --batch and zolt-cli do the same lines to the same end; pictures are written in their turn; a decimal comma of the
# locale changes nothing.   batch.sh ZOLT ZOLT-CLI TREE
set -euo pipefail
zolt=$1 cli=$2 tree=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
export QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=$folder
fail() { printf 'batch.sh: %s\n' "$1" >&2; exit 1; }

# A locale with a decimal comma, where the system can make one.
if localedef -i de_DE -f UTF-8 "$folder/de_DE.UTF-8" > /dev/null 2>&1; then export LOCPATH=$folder LC_ALL=de_DE.UTF-8; fi

mkdir window shell
lines=(-c "IM \"$tree/examples/strychnine_1h/10\"" -c "EM 0.3" -c FT -c PC -c BC -c "SETX 8.5 7.5" -c "metafile a.svg")
(cd window && "$zolt" --root . --ini "$tree/ZOLT.INI" --batch --json "${lines[@]}" --screenshot a.png -k "^A" --screenshot b.png \
    --state --data points > events 2> errors) || fail "zolt: $(cat window/errors)"
(cd shell && "$cli" --root . --ini "$tree/ZOLT.INI" --json "${lines[@]}" -k "^A" --state --data points > events) || fail "zolt-cli"
cmp window/points shell/points || fail "other points"
cmp window/a.svg shell/a.svg || fail "other pictures"
cmp <(sed 's/window/shell/g' window/events) shell/events || fail "other events"
for picture in window/a.png window/b.png; do
    [[ $(head -c 4 "$picture" | tail -c 3) == PNG && $(stat -c %s "$picture") -gt 10000 ]] || fail "$picture is no picture"
done
cmp -s window/a.png window/b.png && fail "Ctrl+A has changed nothing"

code=0; "$zolt" --root window --batch -c nosuch -c "SF1 300" > window/out 2> /dev/null || code=$?
[[ $code -eq 1 && $(grep -c "SF1" window/out) -eq 0 ]] || fail "a failed line ends the run with 1, not $code"
code=0; "$zolt" --nosuch > /dev/null 2>&1 || code=$?
[[ $code -eq 2 ]] || fail "a wrong option gives 2, not $code"
[[ $("$zolt" --detect "$tree/examples/strychnine_1h/10/fid" 2> /dev/null) == $("$cli" --detect "$tree/examples/strychnine_1h/10/fid") ]] ||
    fail "--detect differs"

# A macro of the configuration runs at the start, and its end is waited for.
mkdir -p auto/MAC
printf 'AutoExecMacro=begin\n' > auto/ZOLT.INI
printf 'ZOLTMACRO\nIM "%s"\nFT\nSA %s\n' "$tree/examples/strychnine_1h/10" "$folder/auto.zolt" > auto/MAC/begin.mac
"$zolt" --root auto --batch > auto/out 2>&1 || fail "AutoExecMacro: $(cat auto/out)"
[[ -s auto.zolt ]] || fail "AutoExecMacro has not run to its end"
