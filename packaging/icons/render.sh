#!/usr/bin/env bash
# Renders the PNG sizes of the icons from their SVG sources (Debian librsvg2-bin). The PNGs are
# kept in the repository, so building needs no renderer; rerun this after changing an SVG.
set -euo pipefail
cd "$(dirname "$0")"
for svg in vkleditor text-x-vkl-menu; do
    for size in 48 256; do
        rsvg-convert -w "$size" -h "$size" -o "$svg-$size.png" "$svg.svg"
    done
done
