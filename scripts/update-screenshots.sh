#!/usr/bin/env bash
# Takes the pictures of the gallery anew and makes them the baselines in tests/screenshots. A page that shows the old
# ones and the new ones side by side is left in build/screenshots/index.html. --check shows it and changes nothing.
set -euo pipefail
cd "$(dirname "$0")/.."

renew=yes
case "${1:-}" in
"") ;;
--check) renew=no ;;
*) echo "Usage: scripts/update-screenshots.sh [--check]" >&2; exit 2 ;;
esac

scripts/build.sh dev --target gallery

baselines=tests/screenshots
output=build/screenshots
rm -rf "$output"
mkdir -p "$output/old" "$output/new"
cp -r "$baselines"/*/ "$output/old/" 2>/dev/null || true
while read -r variant arguments; do
    # shellcheck disable=SC2086 # the arguments are words without spaces
    build/dev/bin/gallery --screenshots "$output/new/$variant" $arguments
done < <(grep -v '^#' "$baselines/variants.txt")

{
    echo '<!DOCTYPE html><meta charset="utf-8"><title>Pictures of the gallery</title>'
    echo '<style>body { font-family: sans-serif } td { vertical-align: top } img { max-width: 48vw; border: 1px solid gray }</style>'
    echo '<table><tr><th>Old<th>New</tr>'
    (cd "$output" && find old new -name '*.png' | sed 's,^[^/]*/,,' | sort -u) | while read -r picture; do
        state=changed
        if cmp -s "$output/old/$picture" "$output/new/$picture"; then state=same; fi
        [ -e "$output/old/$picture" ] || state=added
        [ -e "$output/new/$picture" ] || state=removed
        echo "<tr><th colspan=2>$picture: $state</tr>"
        echo "<tr><td><img src=\"old/$picture\" alt=\"none\"><td><img src=\"new/$picture\" alt=\"none\"></tr>"
        [ "$state" = same ] || echo "$state: $picture" >&2
    done
    echo '</table>'
} > "$output/index.html"

if [ "$renew" = yes ]; then
    rm -rf "${baselines:?}"/*/
    cp -r "$output"/new/*/ "$baselines/"
fi
echo "Old and new side by side: $output/index.html"
