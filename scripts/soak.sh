#!/usr/bin/env bash
# Installs what is missing, builds, and makes an hour's worth of random requests with random faults on simulated
# programmers, in compressed time: scripts/soak.sh [MINUTES [SEED]]
# Each request has to end with exactly the signals it should, and the memory in use must not grow. The seed is printed;
# given again, it makes the same requests.
set -euo pipefail
cd "$(dirname "$0")/.."
minutes=${1:-60}

scripts/build.sh release --target soak
exec env QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-offscreen}" build/release/bin/soak --minutes "$minutes" ${2:+--seed "$2"}
