#!/usr/bin/env bash
# How time and memory grow on models that are nothing but one extreme. Needs the release build.
#   bench/corners.sh [CORNER...]      all unless told; a wrong name lists them
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
exec python3 -B bench/corners.py build/release build/bench_models "$@"
