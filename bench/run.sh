#!/usr/bin/env bash
# Makes the models, measures reading, writing, merging and marking beside the yardsticks, and prints
# one table with the targets. Each figure is the median of five runs, in processor time of one thread.
# Then what 1, 2 and 4 threads gain and cost, what comparing two models costs, what joining them to
# one building costs, what writing equal objects once costs, what a report costs, what compression
# costs, single parts, and how time and memory grow at the corners.
#   bench/run.sh [SIZE...]      sizes of the models, 25MB 100MB 250MB unless told; 25 is 25MB
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$here"
sizes=("$@")
[ "${#sizes[@]}" -gt 0 ] || sizes=(25MB 100MB 250MB)
for i in "${!sizes[@]}"; do [[ ${sizes[i]} =~ ^[0-9]+$ ]] && sizes[i]+=MB; done

tools/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release --target corvel_benchmarks corvel
models=build/bench_models
bench/models.sh all "$models" "${sizes[@]}"

python3 -B bench/table.py build/release "$models" "${sizes[@]}"
echo
build/release/bench/corvel_zip_bench "$models" "$models"/IFC*_"${sizes[0]}".ifc
echo
build/release/bench/corvel_part_bench
echo
bench/corners.sh
