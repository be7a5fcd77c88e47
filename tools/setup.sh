#!/usr/bin/env bash
# Installs what the build needs on Debian 12, if anything is missing. Quick when nothing is.
set -euo pipefail

packages=(g++ cmake ninja-build ccache python3 libgtest-dev libbenchmark-dev libcli11-dev
          nlohmann-json3-dev libminizip-dev zlib1g-dev)
for extra in "$@"; do packages+=("$extra"); done

missing=()
for package in "${packages[@]}"; do
  [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] ||
    missing+=("$package")
done
[ "${#missing[@]}" -eq 0 ] && exit 0

echo "Installing with apt-get: ${missing[*]}" >&2
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
