#!/usr/bin/env bash
# Makes the models, measures reading, merging and writing, and prints one table: input per second of
# processor time, and peak memory per input byte. Each figure is the median of five runs. Then what
# compression costs, and single parts.
#   bench/run.sh [SIZE...]      sizes of the models, 25MB 100MB unless told
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$here"
sizes=("$@")
[ "${#sizes[@]}" -gt 0 ] || sizes=(25MB 100MB)

tools/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release --target corvel_benchmarks
bench=build/release/bench/corvel_job_bench
models=build/bench_models
mkdir -p "$models"

for schema in IFC2X3 IFC4; do
  for size in "${sizes[@]}"; do
    model=$models/${schema}_$size.ifc
    [ -f "$model" ] || python3 -B tools/make_models.py big --schema "$schema" --size "$size" \
      --out "$model" --seed 1
  done
done

python3 -B bench/table.py "$bench" "$models" "${sizes[@]}"
echo
build/release/bench/corvel_zip_bench "$models" "$models"/IFC*_"${sizes[0]}".ifc
echo
build/release/bench/corvel_part_bench
