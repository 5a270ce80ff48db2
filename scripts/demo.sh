#!/usr/bin/env bash
# Installs what is missing, builds, and does the main job: a real firmware image is erased, written and verified on
# a simulated programmer, and read back. With a display the example application shows it; without one, or with
# --headless, the log is printed and pictures of the dialog are left in build/demo.
set -euo pipefail
cd "$(dirname "$0")/.."

headless=no
for argument in "$@"; do
    case "$argument" in
    --headless) headless=yes ;;
    *) echo "Usage: scripts/demo.sh [--headless]" >&2; exit 2 ;;
    esac
done
[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || headless=yes

scripts/build.sh dev --target programmer

image=/usr/share/firmware-microbit-micropython/firmware.hex
if [ "$headless" = no ]; then
    exec build/dev/bin/programmer --operation write --image "$image" --verify
fi

rm -rf build/demo
mkdir -p build/demo
build/dev/bin/programmer --headless --operation write --operation read --image "$image" --verify --compare \
    --pictures build/demo --output build/demo/readback.hex | tee build/demo/transcript.txt
echo "Transcript and pictures are in build/demo."
