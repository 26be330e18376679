#!/bin/bash
# Draws package/mirvane.ico, the programs' icon: a cash register with its receipt. Needed only when the drawing changes.
set -euo pipefail
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# At 1024 x 1024: the background, the receipt, its lines, the register, the drawer.
convert -size 1024x1024 xc:none -fill '#0f6b7a' -draw 'roundrectangle 16,16 1007,1007 190,190' \
  -fill white -draw 'path "M 310,120 L 370,170 L 430,120 L 490,170 L 550,120 L 610,170 L 670,120 L 714,160 L 714,560 L 310,560 Z"' \
  -fill '#7fa9b0' -draw 'rectangle 380,250 640,290' -draw 'rectangle 380,350 560,390' \
  -fill '#f2b632' -draw 'roundrectangle 150,500 873,720 50,50' \
  -fill '#0a4a55' -draw 'roundrectangle 260,560 763,600 20,20' \
  -fill '#d98f1c' -draw 'roundrectangle 110,690 913,890 50,50' \
  -fill '#7a4e0a' -draw 'roundrectangle 430,760 593,810 25,25' "$work/large.png"
# Small, only the large shapes can be told apart.
convert -size 1024x1024 xc:none -fill '#0f6b7a' -draw 'roundrectangle 0,0 1023,1023 170,170' \
  -fill white -draw 'rectangle 320,96 704,560' -fill '#0f6b7a' -draw 'rectangle 416,224 608,288' \
  -fill '#f2b632' -draw 'rectangle 128,512 895,896' -fill '#7a4e0a' -draw 'rectangle 384,704 639,768' "$work/small.png"
for size in 16 20 24; do convert "$work/small.png" -filter Box -resize ${size}x$size "$work/$size.png"; done
for size in 32 40 48 64 256; do convert "$work/large.png" -resize ${size}x$size "$work/$size.png"; done
convert "$work"/{16,20,24,32,40,48,64,256}.png -depth 8 mirvane.ico
