#!/usr/bin/env bash
# Makes the models of the benchmarks where they are missing or of another make: two of each release
# and size. With `all` two more of the largest, and the largest real models enlarged where they are
# at hand.
#   bench/models.sh pairs|all FOLDER SIZE...
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
kind=$1
folder=$2
sizes=("${@:3}")
largest=${sizes[-1]}
samples=${CORVEL_REAL_MODELS:-../shared/samples}  # models of other makers, not in this repository
mkdir -p "$folder"

maker=$(cat tools/make_models.py tools/models/*.py | sha256sum)
if [ "$(cat "$folder/maker" 2>/dev/null)" != "$maker" ]; then
  rm -f "$folder"/*.ifc
  echo "$maker" >"$folder/maker"
fi

# make FILE ARGUMENTS...: under another name until it is complete.
make() {
  [ -f "$1" ] && return
  echo "making $1" >&2
  python3 -B tools/make_models.py "${@:2}" --out "$1.part" >/dev/null
  mv "$1.part" "$1"
}

big() {
  local end=_$3
  [ "$3" = 1 ] && end=
  make "$folder/$1_$2$end.ifc" big --schema "$1" --size "$2" --seed "$3"
}

for size in "${sizes[@]}"; do
  for schema in IFC2X3 IFC4; do
    big "$schema" "$size" 1
    big "$schema" "$size" 2
  done
done
[ "$kind" = all ] || exit 0

big IFC4 "$largest" 3
big IFC4 "$largest" 4

for model in duplex/Duplex_A_20110907.ifc single/AC20-FZK-Haus.ifc \
  rfi/02_-_ACCA_-_RFI_-_Track_-_San_Felice_a_Cancello_-_Santa_Maria_a_Vico.ifc; do
  [ -f "$samples/$model" ] || continue
  name=$(basename "$model" .ifc)
  for copy in 1 2; do
    make "$folder/enlarged_${name}_$copy.ifc" enlarge --model "$samples/$model" --size 100MB \
      --first $((copy * 1000 - 1000))
  done
done
