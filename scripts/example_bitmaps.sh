#!/usr/bin/env bash
# Draws the 32x32 bitmaps of the example menus (examples/bitmaps/*.bmp, Windows 3 BMP as the
# host application reads them) with ImageMagick. The bitmaps are kept in the repository; rerun
# this after changing a drawing. Names are lower case: the editor lower-cases bitmap paths.
set -euo pipefail
out="$(dirname "$0")/../examples/bitmaps"
mkdir -p "$out"

# bmp NAME BACKGROUND DRAW...: one bitmap, a light tile with a dark frame and the drawing.
bmp() {
    local name=$1 bg=$2
    shift 2
    convert -size 32x32 "xc:$bg" -stroke '#33414a' -strokewidth 1 -fill none \
        -draw 'rectangle 0,0 31,31' "$@" -type TrueColor "BMP3:$out/$name.bmp"
}
steel='#c9d1d6'
font=/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf  # Debian fonts-dejavu-core
hole=(-fill '#33414a' -stroke none)

# Drilling toolbox
bmp holes '#e8f1f6' "${hole[@]}" -draw 'circle 10,10 10,5' -draw 'circle 22,10 22,6' \
    -draw 'circle 10,22 10,18' -draw 'circle 22,22 22,17'
bmp through "$steel" "${hole[@]}" -draw 'rectangle 12,3 19,28'
bmp blind "$steel" "${hole[@]}" -draw 'rectangle 12,3 19,20' -draw 'polygon 12,21 19,21 15,25'
bmp threads '#f6eee0' -stroke '#8a5a14' -strokewidth 2 -draw 'line 9,6 23,10' \
    -draw 'line 9,12 23,16' -draw 'line 9,18 23,22' -draw 'line 9,24 23,28'
bmp metric "$steel" -fill '#8a5a14' -stroke none -font "$font" -pointsize 14 -draw "text 5,22 'M8'"
bmp metricfine "$steel" -fill '#8a5a14' -stroke none -font "$font" -pointsize 10 \
    -draw "text 2,21 'M8x1'"
bmp pipe "$steel" -fill '#8a5a14' -stroke none -font "$font" -pointsize 14 -draw "text 4,22 'G½'"
bmp cbore "$steel" "${hole[@]}" -draw 'rectangle 8,3 23,11' -draw 'rectangle 12,11 19,28'
bmp csink "$steel" "${hole[@]}" -draw 'polygon 6,3 25,3 19,11 12,11' -draw 'rectangle 12,11 19,28'
bmp patterns '#eef6e8' "${hole[@]}" -draw 'circle 16,5 16,3' -draw 'circle 27,16 27,14' \
    -draw 'circle 16,27 16,25' -draw 'circle 5,16 5,14' -draw 'circle 16,16 16,13'
bmp boltcircle '#eef6e8' -stroke '#3aa66a' -strokewidth 1 -fill none -draw 'circle 16,16 16,5' \
    "${hole[@]}" -draw 'circle 16,5 16,3' -draw 'circle 27,16 27,14' -draw 'circle 16,27 16,25' \
    -draw 'circle 5,16 5,14'
bmp grid '#eef6e8' "${hole[@]}" -draw 'circle 8,8 8,6' -draw 'circle 16,8 16,6' \
    -draw 'circle 24,8 24,6' -draw 'circle 8,16 8,14' -draw 'circle 16,16 16,14' \
    -draw 'circle 24,16 24,14' -draw 'circle 8,24 8,22' -draw 'circle 16,24 16,22' \
    -draw 'circle 24,24 24,22'
bmp line '#eef6e8' -stroke '#3aa66a' -draw 'line 3,28 28,3' "${hole[@]}" \
    -draw 'circle 7,24 7,22' -draw 'circle 16,15 16,13' -draw 'circle 25,6 25,4'
bmp tools '#f2ecf8' -fill '#6b4a8f' -stroke none -draw 'rectangle 6,4 10,27' \
    -draw 'rectangle 14,4 18,22' -draw 'rectangle 22,4 26,17'
bmp twist '#f2ecf8' -fill '#6b4a8f' -stroke none -draw 'polygon 13,3 19,3 19,22 16,28 13,22' \
    -stroke '#f2ecf8' -draw 'line 13,8 19,12' -draw 'line 13,14 19,18'
bmp spot '#f2ecf8' -fill '#6b4a8f' -stroke none -draw 'polygon 12,3 20,3 20,18 16,28 12,18'
bmp tap '#f2ecf8' -fill '#6b4a8f' -stroke none -draw 'rectangle 13,3 19,26' \
    -stroke '#f2ecf8' -draw 'line 13,12 19,14' -draw 'line 13,17 19,19' -draw 'line 13,22 19,24'
bmp table '#fdf7e8' -stroke '#33414a' -draw 'rectangle 5,6 26,25' -draw 'line 5,12 26,12' \
    -draw 'line 5,18 26,18' -draw 'line 13,6 13,25'
bmp about '#e8f1f6' -fill '#2f7fa6' -stroke none -draw 'circle 16,16 16,4' -fill white \
    -draw 'rectangle 14,14 18,24' -draw 'circle 16,9 16,7'

# Werkstatt (German)
bmp bohren '#e8f1f6' -fill '#2f7fa6' -stroke none -draw 'polygon 12,3 20,3 20,20 16,28 12,20'
bmp messen '#fdf7e8' -stroke '#8a5a14' -draw 'line 3,24 28,24' -draw 'line 6,20 6,28' \
    -draw 'line 12,22 12,26' -draw 'line 18,22 18,26' -draw 'line 24,20 24,28'
bmp pruefen '#eef6e8' -stroke '#3aa66a' -strokewidth 3 -draw 'polyline 7,16 13,23 25,8'

# Shortcuts and [installdir]
bmp probe '#e8f1f6' -fill '#33414a' -stroke none -draw 'rectangle 14,3 18,20' -fill '#e04848' \
    -draw 'circle 16,24 16,20'
bmp fixture "$steel" -fill '#33414a' -stroke none -draw 'rectangle 4,20 27,26' \
    -draw 'rectangle 6,8 10,20' -draw 'rectangle 21,8 25,20'
bmp report '#fdf7e8' -stroke '#33414a' -draw 'rectangle 8,4 24,28' -draw 'line 11,10 21,10' \
    -draw 'line 11,15 21,15' -draw 'line 11,20 18,20'
