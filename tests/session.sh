#!/usr/bin/env bash
# Whole sessions through the real program, as users run it: session.sh PATH/zolt-cli
set -euo pipefail

program=$(realpath "$1")
example=$(cd "$(dirname "${BASH_SOURCE[0]}")/../examples/strychnine_1h" && pwd)
work=$(mktemp -d)
trap 'jobs -p | xargs -r kill 2> /dev/null; rm -rf "$work"' EXIT
root=$work/root
mkdir "$root"
printf 'UNDO=TRUE\nLINK0=EM;FT;\n' > "$root/ZOLT.INI"
cd "$work"
cp -r "$example" . # typed paths stay short and without blanks, wherever the tree is
sample=$(basename "$example")/10
failures=0

fail() {
    printf 'FAILED: %s\n' "$*"
    failures=$((failures + 1))
}

# run STATUS ARGUMENT...: a run with that exit status; what it printed is in ./out and ./err.
run() {
    local expected=$1 status=0
    shift
    timeout 120 "$program" --root "$root" "$@" > out 2> err < /dev/null || status=$?
    [[ $status -eq $expected ]] && return
    fail "exit status $status instead of $expected: $*"
    cat out err
}

has() { grep -qE -- "$1" "${2:-out}" || { fail "no $1 in ${2:-out}:"; cat "${2:-out}"; }; }
has_not() { ! grep -qE -- "$1" "${2:-out}" || { fail "$1 in ${2:-out}:"; cat "${2:-out}"; }; }
same() { cmp -s "$1" "$2" || fail "$1 differs from $2"; }
no_scratch() { [[ -z $(find "$root" -name 'zolt-*' -print -quit) ]] || fail "$1: a scratch folder is left"; }

example_gives_its_files() {
    local once
    for once in first second; do
        timeout 120 "$example/process.sh" "$program" demo > out 2> err || { fail "the example's $once run"; cat out err; }
        [[ -s err ]] && fail "the example's $once run has something on standard error"
    done
    has '<svg' demo/strychnine.svg
    has '</svg>' demo/strychnine.svg
    local file
    for file in demo/strychnine.zolt demo/DATA/strychnine_1h_10.zolt; do
        [[ $(head -c 8 "$file") == "##TITLE=" ]] || fail "$file is no native file"
    done
    [[ $(find demo -type f | wc -l) -eq 3 ]] || fail "the example leaves other files than its three: $(find demo)"
}

exit_status_tells_what_happened() {
    run 0 -c "LB 1.5"
    run 0 -c "LB ?"
    run 1 -c "nonsense"
    run 1 -c "FT" # no data
    local arguments
    for arguments in "--wrong" "-c" "-x"; do
        run 2 -c "LB 1" "$arguments"
        [[ $(wc -l < err) -eq 1 ]] || fail "not one line on standard error for $arguments"
        has "$arguments( |$)" err
        [[ -s out ]] && fail "something was done in spite of $arguments"
    done
    run 0 --version
    has '^zolt-cli [0-9]+\.[0-9]+'
}

first_failure_ends_the_run() {
    run 1 --json -c "LB 2" -c "nonsense" -c "LB 3" --state
    has '"text":"nonsense","result":0'
    has_not 'LB 3|"state"'
    run 1 --json -c "nonsense" -c "LB 3" --state --keep-going
    has '"lb":3\.0[,}]'
}

events_are_one_object_a_line() {
    run 1 --json --keep-going -c "IM $sample" -c "A0" -c "GA missing.zolt" --state
    has_not '^$'
    if grep -vqE '^\{"event":"[a-z]+"(,"[a-z_]+":.*)?\}$' out; then fail "lines that are no event"; cat out; fi
    has '"event":"message".*missing\.zolt.*not found\.\\n' # a text of several lines stays on one
    has '"event":"line","text":"EM","result":1,"source":"link"'
    has '"event":"line","text":"GA missing.zolt","result":0,"source":"user"'
    has "\"event\":\"state\",\"loaded\":true.*\"file_a\":\"$root/DATA/strychnine_1h_10.zolt\""
    [[ $(grep -c '"event":"state"' out) -eq 1 ]] || fail "not one state"
}

formats_are_told() {
    printf '##TITLE=x\n##JCAMP-DX= 5\n##DATA TYPE= LINK\n' > $'a\tb.dx'
    run 0 --detect "$sample" "$sample/fid" $'a\tb.dx' # an experiment is its raw data
    printf '%s\t71\tTOPSPIN\tBruker XWinNMR\t1 Bruker directory\n' "$sample" "$sample/fid" > wanted
    printf 'a b.dx\t69\tJCAMP\tJCAMP\t10 content\n' >> wanted
    same out wanted
    run 1 --json --detect none -c "$sample/fid"
    has '^\{"event":"detection","file":"none","number":0,"key":"","name":"Could not find file - /.*/none","step":""\}$'
    has '"file":"-c"'
    [[ $(wc -l < out) -eq 3 ]] || fail "not one line a file"
    run 2 --detect
}

missing_files_are_refused() {
    run 1 -c "IM $work/nowhere/fid"
    has 'nowhere/fid'
    run 1 -c "GA $work/nowhere.zolt"
    has 'nowhere\.zolt'
    mkdir -p empty/10
    : > empty/10/fid
    run 1 -c "IM empty/10"
    has 'empty/10/fid'
    printf 'four' > empty/10/fid # less than one complex point
    cp "$sample/acqus" empty/10
    run 0 -c "IM $sample SPECIAL_NAME ./kept.zolt"
    cp kept.zolt before.zolt
    run 1 --yes -c "IM empty/10 SPECIAL_NAME ./kept.zolt"
    same kept.zolt before.zolt
}

questions_are_answered() {
    run 0 --yes -c "IM $sample" -c "SA saved.zolt"
    cp saved.zolt before.zolt
    run 1 -c "GA saved.zolt" -c "FT" -c "SA saved.zolt"
    same saved.zolt before.zolt
    run 0 -c "GA saved.zolt" -c "FT" --answer yes -c "SA saved.zolt"
    cmp -s saved.zolt before.zolt && fail "the answer yes did not save"
    cp saved.zolt before.zolt
    printf 'NO_FILE_OVERWRITE=TRUE\n' > strict.ini
    run 1 --ini strict.ini --yes -c "GA saved.zolt" -c "FT" -c "SA saved.zolt"
    has 'System configured to prevent Overwriting of existing files\.'
    same saved.zolt before.zolt
}

keys_and_standard_input_type_lines() {
    run 0 --json -k 'LB 27\b\r' --state
    has '"lb":2\.0[,}]'
    run 0 --json -k 'nonsense\eLB 4\r' --state
    has '"lb":4\.0[,}]'
    printf 'LB 5\r\nLB 6' | "$program" --root "$root" --json --stdin --state > out || fail "lines of standard input"
    has '"text":"LB 5","result":1'
    has '"lb":6\.0[,}]' # the last line needs no line end
}

twenty_copies_share_one_root() {
    local i copies=()
    for i in {1..20}; do
        "$program" --root "$root" --yes -c "IM $sample" -c EM -c FT -c PC -c BC -c "SA copy$i.zolt" -c "metafile copy$i.svg" \
            --data "copy$i.raw" > "copy$i.out" 2>&1 &
        copies+=($!)
    done
    for i in {1..20}; do
        wait "${copies[i - 1]}" || { fail "copy $i"; cat "copy$i.out"; }
        same "copy$i.raw" copy1.raw
        [[ -s copy$i.zolt && -s copy$i.svg ]] || fail "copy $i has not written its files"
    done
    [[ $(stat -c %s copy1.raw) -gt 320000 ]] || fail "the copies have not written their points"
    no_scratch "twenty copies"
}

# A copy with these options is killed in the middle of its work; its folder is then in $scratch.
kill_a_copy() {
    local victim
    rm -f lines
    mkfifo lines
    "$program" --root "$root" "$@" --yes --json --stdin < lines > killed.out 2>&1 &
    victim=$!
    exec 3> lines
    printf 'IM %s\nEM\n' "$sample" >&3
    SECONDS=0
    until grep -q '"text":"EM","result":1' killed.out; do
        if [[ $SECONDS -ge 60 ]] || ! kill -0 "$victim" 2> /dev/null; then
            fail "the copy to be killed does not get to its work"
            cat killed.out
            break
        fi
        sleep 0.02
    done
    run 0 -c "LB 1"
    scratch=$(find "$root" -maxdepth 1 -name 'zolt-*')
    [[ -n $scratch ]] || fail "a running copy has no scratch folder, or another one took it away"
    kill -KILL "$victim"
    wait "$victim" 2> /dev/null || true
    exec 3>&-
    [[ -d $scratch ]] || fail "the killed copy's scratch folder went with it"
}

killed_copies_are_cleared_away() {
    local scratch
    printf 'UNDO=FALSE\n' > plain.ini
    kill_a_copy --ini plain.ini
    run 0 -c "LB 1"
    no_scratch "after a kill"

    # What undo had stored is kept for a user who may want it back, for a week.
    kill_a_copy
    run 0 -c "LB 1"
    [[ -d $scratch ]] || fail "the states of a killed copy are gone at once"
    find "$scratch" -name 'Undo*' -exec touch -d '8 days ago' {} +
    run 0 -c "LB 1"
    no_scratch "a week after a kill"
}

example_gives_its_files
exit_status_tells_what_happened
first_failure_ends_the_run
events_are_one_object_a_line
formats_are_told
missing_files_are_refused
questions_are_answered
keys_and_standard_input_type_lines
twenty_copies_share_one_root
killed_copies_are_cleared_away

[[ $failures -eq 0 ]] && echo "sessions: all as they should be"
exit $((failures > 0))
