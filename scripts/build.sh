#!/usr/bin/env bash
# Installs what is missing, then configures and builds a preset: scripts/build.sh [PRESET] [cmake --build argument...]
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-dev}
[ $# -gt 0 ] && shift

scripts/install-packages.sh
cmake --preset "$preset" --log-level=WARNING
cmake --build --preset "$preset" "$@"
