#!/usr/bin/env bash
# From the spectrometer's files to a spectrum and its picture:
#   process.sh [PROGRAM [FOLDER]]    zolt-cli of this tree and build/demo of this tree when not given
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tree=$(cd "$here/../.." && pwd)
program=$(realpath "${1:-$tree/build/release/zolt-cli}")
folder=${2:-$tree/build/demo}
mkdir -p "$folder"
cd "$folder"
data=$(realpath --relative-to=. "$here")

lines=(
    -c "IM \"$data/10\""          # the FID, with the line broadening and the phases its operator used
    -c "EM"                       # exponential weighting with that line broadening
    -c "FT"                       # to the spectrum; the digital filter's delay goes with it
    -c "PC"                       # phase correction with those phases
    -c "BC"                       # baseline
    -c "SA strychnine.zolt"       # the spectrum as a file
    -c "metafile strychnine.svg"  # and as a picture
)
# --yes: files of an earlier run are replaced.
"$program" --root . --ini "$tree/ZOLT.INI" --yes "${lines[@]}"

cat << TEXT

Strychnine, 1H at 400 MHz: imported, weighted, transformed, phased, baseline corrected, saved and drawn.
  $PWD/strychnine.svg                the picture; any browser shows it
  $PWD/strychnine.zolt               the spectrum
  $PWD/DATA/strychnine_1h_10.zolt    the FID as imported
The commands are in $here/process.sh
TEXT
