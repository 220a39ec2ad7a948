#!/usr/bin/env bash
# A 2 GiB data set opened, stepped through and transposed, with the memory that it took: large.sh PATH/zolt-cli [FOLDER]
set -euo pipefail
program=$(realpath "$1")
folder=$(mktemp -d -p "${2:-${TMPDIR:-/tmp}}")
trap 'rm -rf "$folder"' EXIT
cd "$folder"
mkdir root

# A full header (type 2) in front of 16384 slices of 16384 points, all zero: a sparse file.
word() { printf "\\x$(printf %02x $(($1 % 256)))\\x$(printf %02x $(($1 / 256)))\\x00\\x00"; }
{
    printf '\x01\x02\x03\x04'; word 1024; word 2; word 0; word 2
    head -c 12 /dev/zero; word 1; head -c $((384 - 36)) /dev/zero
    word 16384; word 1; head -c 152 /dev/zero
    word 16384; word 1; head -c 152 /dev/zero
    word 1; head -c 156 /dev/zero; word 1
} > large.nat
truncate -s $((4104 + 8 * 16384 * 16384)) large.nat

measure() {
    local name=$1
    shift
    /usr/bin/time -f "$name: %e s, %M KiB" "$program" --root root --yes -c 'header 2' -c 'GA large.nat' "$@" > out || { cat out; exit 1; }
}
steps=()
for ((k = 1; k < 2000; ++k)); do steps+=(-c 'SL +'); done
measure 'open' -c 'SL 16384'
measure 'step through 2000 slices' "${steps[@]}"
measure 'transpose' -c 'TD large.td'
