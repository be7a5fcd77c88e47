#!/usr/bin/env bash
# clang-format on all hand-written C++, clang-tidy on all hand-written sources.
# tools/lint.sh [FILE...]: clang-tidy on these sources only.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

mapfile -t formatted < <(git ls-files 'src/*.h' 'src/*.cpp' 'tests/*.h' 'tests/*.cpp' \
  'bench/*.h' 'bench/*.cpp' 'fuzz/*.h' 'fuzz/*.cpp' | grep -v '/golden/')
clang-format --dry-run --Werror "${formatted[@]}"
echo "clang-format: ${#formatted[@]} files are clean"

sources=("$@")
if [ "${#sources[@]}" -eq 0 ]; then
  mapfile -t sources < <(git ls-files 'src/*.cpp' | grep -v '/win32/')
fi
cmake --preset dev >/dev/null
exec tools/tidy.py build/dev "${sources[@]}"
