#!/usr/bin/env bash
# Kills the program at many moments of everything that writes a file: kill.sh PATH/zolt-cli [KILLS]
# Whatever the moment, a file is the old one or the whole new one; File C holds the slices written so far.
set -euo pipefail

program=$(realpath "$1")
kills=${2:-60}
example=$(cd "$(dirname "${BASH_SOURCE[0]}")/../examples/strychnine_1h/10" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/root"
cd "$work"
cp -r "$example" example # typed paths stay short and without blanks, wherever the tree is
failures=0
slices=64

fail() {
    printf 'FAILED: %s\n' "$*"
    failures=$((failures + 1))
}

zolt() { "$program" --root "$work/root" --yes "$@" > out 2> err < /dev/null; }
typed() { for line in "$@"; do printf '%s\0%s\0' -c "$line"; done; }
# Where the points of a file of header type 3 begin: behind its control-Z.
points_at() { LC_ALL=C grep -obUaFm1 $'\x1a' "$1" | head -1 | cut -d: -f1; }
points_of() { tail -c +$(($(points_at "$1") + 2)) "$1"; }

# A full header (type 2) in front of slices of 4096 points whose bytes are the letters of a text.
word() { printf "\\x$(printf %02x $(($1 % 256)))\\x$(printf %02x $(($1 / 256 % 256)))\\x00\\x00"; }
make_sample() {
    {
        printf '\x01\x02\x03\x04'; word 1024; word 2; word 0; word 2
        head -c 12 /dev/zero; word 1; head -c $((384 - 36)) /dev/zero
        word 4096; word 1; head -c 152 /dev/zero
        word $slices; word 1; head -c 152 /dev/zero
        word 1; head -c 156 /dev/zero; word 1; head -c $((4104 - 868)) /dev/zero
        yes 'the bytes of the points' | head -c $((8 * 4096 * slices)) || true
    } > sample.nat
}

# kill_case NAME TARGET CHECK LINE...: the lines replace TARGET, whose old content is ./old; CHECK judges what kills leave.
check_whole() { cmp -s "$1" old || cmp -s "$1" new; }
check_file_c() {
    check_whole "$1" && return
    zolt -c "GA $1" || return 1
    points_of "$1" > so_far
    local length
    length=$(stat -c %s so_far)
    [[ $length -ge $((8 * 4096)) ]] && cmp -s -n "$length" so_far all_points
}

check_readable() { zolt -c "GA $1" -c 'AR on'; }

kill_case() {
    local name=$1 target=$2 check=$3 began took
    shift 3
    local arguments=()
    mapfile -d '' -t arguments < <(typed "$@")
    cp old "$target"
    began=$(date +%s%N)
    zolt "${arguments[@]}" || { fail "$name does not work"; cat out err; return; }
    took=$(($(date +%s%N) - began))
    cp "$target" new
    cmp -s new old && fail "$name changed nothing"
    local i pid left
    for ((i = 0; i < kills / 6; ++i)); do
        cp old "$target"
        "$program" --root "$work/root" --yes "${arguments[@]}" > out 2> err < /dev/null &
        pid=$!
        sleep "$(printf '0.%09d' $((took * (RANDOM % 1000) / 900 % 1000000000)))"
        kill -KILL $pid 2> /dev/null || true
        wait $pid 2> /dev/null || true
        "$check" "$target" || fail "$name: kill $i left $target as neither the old nor the new file"
    done
    zolt "${arguments[@]}" || true # the next to write clears away what killed ones left
    left=$(find . -maxdepth 1 -name '.zolt-*' | wc -l)
    [[ $left -eq 0 ]] || fail "$name: $left unfinished files are left"
}

full_disk_keeps_the_old_file() {
    cp old t.nat
    (ulimit -f 512; zolt -c 'GA big.nat' -c 'AR on' -c 'SA t.nat') && fail 'saving on a full disk claims to work'
    grep -q 'Disk Full ???' out || { fail 'no message says that the disk is full'; cat out err; }
    cmp -s t.nat old || fail 'a full disk cost the old file'
    [[ -z $(find . -maxdepth 1 -name '.zolt-*') ]] || fail 'a full disk leaves an unfinished file'
}

make_sample
zolt -c 'GA sample.nat' -c 'AR on' -c 'SA big.nat' || { cat out err; exit 1; }
points_of big.nat > all_points
zolt -c 'GA big.nat' -c 'SA old' || { cat out err; exit 1; }
full_disk_keeps_the_old_file
to_file_c=('GA big.nat' 'S2 c.nat' 'SL 2')
for ((k = 2; k <= slices; ++k)); do to_file_c+=(SC); done
kill_case 'SA' t.nat check_whole 'GA big.nat' 'AR on' 21 'SA t.nat'
kill_case 'S2 to CC' c.nat check_file_c "${to_file_c[@]}" CC
kill_case 'TD' td.nat check_whole 'GA big.nat' 'TD td.nat'
kill_case 'IM' im.zolt check_whole 'IM example/fid SPECIAL_NAME ./im.zolt'
cp big.nat old
kill_case 'UH' u.nat check_whole 'GA u.nat' 'SF1 123' UH
kill_case 'OC to CC' c.nat check_readable 'GA big.nat' 'SL 8' 'OC c.nat 3' SC CC
if [[ $failures -gt 0 ]]; then
    echo "$failures failures"
    exit 1
fi
echo "no file lost in $((kills / 6 * 6)) kills"
