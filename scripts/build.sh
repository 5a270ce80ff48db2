#!/usr/bin/env bash
# Installs what is missing, then configures and builds a preset: scripts/build.sh [PRESET] [cmake --build argument...]
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-dev}
[ $# -gt 0 ] && shift

# What one checkout has compiled serves every other one.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1

scripts/install-packages.sh
cmake --preset "$preset" --log-level=WARNING
cmake --build --preset "$preset" "$@"
