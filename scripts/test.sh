#!/usr/bin/env bash
# Installs what is missing, builds, and passes the tests: scripts/test.sh [PRESET] [ctest argument...]
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-dev}
[ $# -gt 0 ] && shift

scripts/build.sh "$preset"
ctest --preset "$preset" --parallel "$(nproc)" "$@"
