#!/usr/bin/env bash
# Passes the tests and shows which lines and branches of the library they reach, by folder and by file:
# scripts/coverage.sh [ctest argument...]. The lines that are not reached: build/coverage/report/index.html
set -euo pipefail
cd "$(dirname "$0")/.."

# What the library promises its users; less is a failure.
least_lines=95
least_branches=85

scripts/install-packages.sh scripts/packages-quality.txt
scripts/build.sh coverage
find build/coverage -name '*.gcda' -delete
scripts/test.sh coverage "$@"

report=build/coverage/report
mkdir -p "$report"
folders=(core operations data services widgets)
count=(gcovr --root . build/coverage --gcov-ignore-parse-errors
    --exclude-throw-branches --exclude-unreachable-branches --exclude 'build/')

printf '\n%-12s %s\n' folder 'lines, branches'
for folder in "${folders[@]}"; do
    "${count[@]}" --filter "$folder/" --print-summary --output /dev/null |
        awk -v folder="$folder" '/^lines/ { lines = $2 } /^branches/ { printf "%-12s %s, %s\n", folder, lines, $2 }'
done
filters=()
for folder in "${folders[@]}"; do filters+=(--filter "$folder/"); done
"${count[@]}" "${filters[@]}" --txt "$report/files.txt" --html-details "$report/index.html" --print-summary \
    --fail-under-line "$least_lines" --fail-under-branch "$least_branches"
