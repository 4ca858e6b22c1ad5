#!/usr/bin/env bash
# Makes the animated picture of the README from the tour's pictures of the main job.
#   ./run --tour && tools/animation.sh [PICTURES [FILE]]
set -euo pipefail
cd "$(dirname "$0")/.."
pictures=${1:-build/tour/main_job}
file=${2:-docs/images/main-job.gif}
frames=(empty 'The sample panel' no-rules 'Two folders' quota-settings-first 'A rule for everybody on one of them'
    first-rule 'It stands in the list' quota-settings-edit 'Other limits: a double click' applied 'Apply has stored them')
parts=$(mktemp -d)
trap 'rm -rf "$parts"' EXIT
for ((i = 0; i < ${#frames[@]}; i += 2)); do
    picture=$(echo "$pictures"/??-"${frames[i]}".png)
    [ -f "$picture" ] || { echo "$0: there is no picture of ${frames[i]} in $pictures" >&2; exit 1; }
    convert "$picture" -background '#246f94' -gravity northwest -extent 758x534 \
        -gravity south -background white -splice 0x28 -font /usr/share/wine/fonts/tahoma.ttf -pointsize 15 -fill black \
        -annotate +0+5 "$((i / 2 + 1)). ${frames[i + 1]}" "$parts/$(printf '%02d' "$i").png"
done
# Without a time in it, the same pictures make the same file.
convert -delay 200 "$parts"/*.png -loop 0 +map -layers optimize -strip "$file"
echo "$file: $(stat -c %s "$file") bytes"
