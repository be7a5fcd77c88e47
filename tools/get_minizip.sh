#!/usr/bin/env bash
# Fetches the sources of the classic minizip as Debian 12 has them, its patches applied, for builds
# that have no package of it:
#
#   tools/get_minizip.sh FOLDER      leaves zip.c, unzip.c, ioapi.c and their headers in FOLDER
#
# The source package comes through apt from the mirror that this machine uses already; what apt
# knows of packages stays as it is. Does nothing when FOLDER is complete.
set -euo pipefail
folder=$1
suite=bookworm
version=1.1-8+deb12u1
sums="7d8da446d3b6799e7851f077a66551a46b80fc3de708549e79dbd3e49e842ba1  minizip_1.1.orig.tar.xz
1a6f0cec9d51b9485d7a2f6c6fcf8240ab716854fe4640790838451f9f4b90fa  minizip_$version.debian.tar.xz"

[ -f "$folder/.complete-$version" ] && exit 0

# The first entry of the machine's sources that is no archive of security updates.
uri=$(awk '/^URIs:/ { for (i = 2; i <= NF; i++) if ($i !~ /security/) { print $i; exit } }' \
  /etc/apt/sources.list.d/*.sources 2>/dev/null | head -n 1 || true)
[ -n "$uri" ] || uri=$(awk '$1 == "deb" {
    for (i = 2; i <= NF; i++) if ($i ~ /^[a-z+]+:\/\// && $i !~ /security/) { print $i; exit }
  }' /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null | head -n 1 || true)
[ -n "$uri" ] || { echo "get_minizip.sh: no mirror in the sources of apt" >&2; exit 1; }
key=$(awk '/^Signed-By:/ { print $2; exit }' /etc/apt/sources.list.d/*.sources 2>/dev/null || true)
[ -n "$key" ] && [ -f "$key" ] || key=/usr/share/keyrings/debian-archive-keyring.gpg

state=$(mktemp -d)
trap 'rm -rf "$state"' EXIT
mkdir -p "$state"/{lists/partial,cache/archives/partial,etc/sources.list.d,etc/preferences.d,state,new}
chmod -R 755 "$state"
echo "deb-src [signed-by=$key] $uri $suite main" >"$state/etc/sources.list"
: >"$state/status"
options=(-q
  -o Dir::Etc::SourceList="$state/etc/sources.list" -o Dir::Etc::SourceParts="$state/etc/sources.list.d"
  -o Dir::Etc::Preferences=/dev/null -o Dir::Etc::PreferencesParts="$state/etc/preferences.d"
  -o Dir::State="$state/state" -o Dir::State::Lists="$state/lists"
  -o Dir::State::Status="$state/status" -o Dir::Cache="$state/cache"
  -o APT::Sandbox::User=root -o Acquire::Languages=none -o APT::Get::List-Cleanup=0
  -o Debug::NoLocking=1 -o Acquire::Retries=5)
apt-get "${options[@]}" update >"$state/log" 2>&1 || { cat "$state/log" >&2; exit 1; }
cd "$state/new"
apt-get "${options[@]}" --download-only --only-source source "minizip=$version" >"$state/log" 2>&1 ||
  { cat "$state/log" >&2; exit 1; }
sha256sum --check --quiet <<<"$sums"
tar xf minizip_1.1.orig.tar.xz
tar xf "minizip_$version.debian.tar.xz"
while read -r name; do
  [ -z "$name" ] || patch --quiet -p1 -d minizip <"debian/patches/$name"
done <debian/patches/series

cd - >/dev/null
mkdir -p "$folder"
cp "$state"/new/minizip/{ioapi,unzip,zip,crypt}.h "$state"/new/minizip/{ioapi,unzip,zip}.c "$folder"
touch "$folder/.complete-$version"
