#!/usr/bin/env bash
# Draws panel.ico: a disk of which a part is used. Run by hand when the picture changes; the result is kept.
set -euo pipefail
cd "$(dirname "$0")"
parts=()
for size in 16 24 32 48; do
    at() { awk -v n="$size" -v part="$1" 'BEGIN { printf "%.2f", n * part }'; }
    file=$(mktemp --suffix .png)
    magick_draw=(
        -fill '#dfe7ee' -stroke '#35536b' -strokewidth "$(at 0.06)"
        -draw "circle $(at 0.5),$(at 0.5) $(at 0.5),$(at 0.07)"
        -fill '#2f7fc1' -stroke none
        -draw "path 'M $(at 0.5),$(at 0.5) L $(at 0.5),$(at 0.13) A $(at 0.37),$(at 0.37) 0 1,1 $(at 0.13),$(at 0.5) Z'"
        -fill '#f2f6f9' -stroke '#35536b' -strokewidth "$(at 0.05)"
        -draw "circle $(at 0.5),$(at 0.5) $(at 0.5),$(at 0.38)"
    )
    convert -size "${size}x${size}" xc:none "${magick_draw[@]}" "$file"
    parts+=("$file")
done
convert "${parts[@]}" panel.ico
rm -f "${parts[@]}"
