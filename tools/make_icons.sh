#!/usr/bin/env bash
# Makes the pictures that the product ships from the drawings data/icons/*.svg: the PNG files of the
# ribbon and the icon of the options window (data/corvel_data), and the icon of the program
# (data/icons/corvel.ico). The results are committed, so only who changes a drawing runs this.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
tools/setup.sh librsvg2-bin icoutils

drawings=data/icons
product=data/corvel_data
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$product"

draw() { # NAME SIZE FILE
  rsvg-convert --width "$2" --height "$2" --output "$3" "$drawings/$1.svg"
}

# The picture of 256 pixels stays a PNG inside of the icon; the small ones become bitmaps, which
# every program can read.
make_ico() { # NAME FILE
  local size
  for size in 16 24 32 48 256; do draw "$1" "$size" "$work/$1_$size.png"; done
  icotool --create --output="$2" "$work/$1"_{16,24,32,48}.png --raw="$work/$1_256.png"
}

for name in merge open; do draw "$name" 32 "$product/$name.png"; done
for name in merge_small combine_active combine_visible_small combine_selected options \
    open_small; do
  draw "$name" 16 "$product/$name.png"
done
make_ico options "$product/options.ico"
make_ico corvel "$drawings/corvel.ico"
