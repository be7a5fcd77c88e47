#!/usr/bin/env bash
# Is the work tree slower than an earlier commit? Builds BASE beside it, runs both in turn on the
# same models and prints the ratio of processor time row by row, and of the time that went by where
# several threads work. Status 1 when a row is slower.
#   bench/compare.sh BASE [SIZE...]      sizes of the models, 25MB unless told; 25 is 25MB
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
[ "$#" -ge 1 ] || { sed -n '2,5s/^# \{0,1\}//p' "$0" >&2; exit 2; }
base=$(git rev-parse --verify "$1^{commit}")
sizes=("${@:2}")
[ "${#sizes[@]}" -gt 0 ] || sizes=(25MB)
for i in "${!sizes[@]}"; do [[ ${sizes[i]} =~ ^[0-9]+$ ]] && sizes[i]+=MB; done
tree=build/compare/$base
models=build/bench_models

tools/setup.sh
if [ ! -d "$tree" ]; then
  git worktree prune
  git worktree add --quiet --detach "$tree" "$base"
fi

# build TREE: what is measured, as users get it.
build() {
  (
    cd "$1"
    export CCACHE_BASEDIR=$PWD
    cmake --preset release >/dev/null
    cmake --build --preset release --target corvel corvel_job_bench >&2
  )
}
build "$tree"
build .
bench/models.sh pairs "$models" "${sizes[@]}"
exec python3 -B bench/compare.py "$tree/build/release" build/release "$models" "${sizes[@]}"
