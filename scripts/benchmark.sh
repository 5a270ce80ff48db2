#!/usr/bin/env bash
# Runs all benchmarks in one go and writes what they say as one table: scripts/benchmark.sh [MARKDOWN-FILE [PROGRAM...]]
# It is build/benchmarks.md unless another file is named; PROGRAM is such as bench_utilslogger. Wants a quiet machine.
set -euo pipefail
table=$(realpath -m "${1:-$(dirname "$0")/../build/benchmarks.md}")
[ $# -gt 0 ] && shift
cd "$(dirname "$0")/.."
export QT_QPA_PLATFORM=offscreen

scripts/build.sh release --target "${@:-benchmarks}"
results=build/release/benchmark-results
rm -rf "$results"
mkdir -p "$results" "$(dirname "$table")"
if [ $# -eq 0 ]; then
    for program in build/release/bin/bench_*; do
        set -- "$@" "$(basename "$program")"
    done
fi
for name in "$@"; do
    echo "== $name"
    "build/release/bin/$name" --benchmark_out="$results/$name.json" --benchmark_out_format=json
done
scripts/benchmark-table.py "$results"/*.json >"$table"
echo "The table is in $table"
