#!/usr/bin/env bash
# Draws the PNG sizes from the two SVG files; run it after changing one. Needs librsvg2-bin.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
name=com.tarnwick.Quillbrook
for size in 16 24 32 48 64 128 256 512; do
    drawing=$name.svg
    if [ "$size" -le 32 ]; then
        drawing=$name-small.svg
    fi
    rsvg-convert --width "$size" --height "$size" --output "$name-$size.png" "$drawing"
done
