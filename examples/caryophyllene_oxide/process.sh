#!/usr/bin/env bash
# The four experiments of one sample, each to its spectrum by one command:
#   process.sh [PROGRAM [FOLDER]]    zolt-cli of this tree and build/demo of this tree when not given
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tree=$(cd "$here/../.." && pwd)
program=$(realpath "${1:-$tree/build/release/zolt-cli}")
folder=${2:-$tree/build/demo}
mkdir -p "$folder"
cd "$folder"
data=$(realpath --relative-to=. "$here")

process() {
    # Process does what the data set calls for; "Process ?" lists the commands. --yes: files of an earlier run are replaced.
    "$program" --root . --ini "$tree/ZOLT.INI" --yes -c "IM \"$data/$1\"" -c Process -c "SA $2.zolt" "${@:3}"
}

process 10 caryophyllene_1h -c "metafile caryophyllene_1h.svg"
process 11 caryophyllene_13c -c "metafile caryophyllene_13c.svg"
process 13 caryophyllene_cosy
process 14 caryophyllene_hsqc
