#!/usr/bin/env bash
# Installs what is missing, builds, and does the main job: a real firmware image is erased, written and verified on
# a simulated programmer, and read back. With a display the example application opens with the image chosen, and the user
# presses Write; without one, or with --headless, all is done at once, the log is printed and pictures of the dialog are
# left in build/demo. With --emulated the target is a chip that QEMU emulates, reached by the GDB remote protocol; it runs
# what was written, and says so on its serial line.
set -euo pipefail
cd "$(dirname "$0")/.."

headless=no
emulated=no
for argument in "$@"; do
    case "$argument" in
    --headless) headless=yes ;;
    --emulated) emulated=yes ;;
    *) echo "Usage: scripts/demo.sh [--headless] [--emulated]" >&2; exit 2 ;;
    esac
done
[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || headless=yes

scripts/build.sh dev --target programmer

image=/usr/share/firmware-microbit-micropython/firmware.hex
if [ "$emulated" = yes ]; then
    rm -rf build/demo-emulated
    mkdir -p build/demo-emulated
    port=${GDB_PORT:-47821}
    serial=build/demo-emulated/serial.txt
    # QEMU drops what a debugger writes to the user configuration registers: only the flash part is written.
    srec_cat "$image" -intel -crop 0 0x10000000 -o build/demo-emulated/firmware.hex -intel
    # Daemonized, the emulator is ready when the command returns.
    qemu-system-arm -M microbit -display none -monitor none -serial "file:$serial" -S -gdb "tcp:127.0.0.1:$port" \
        -daemonize -pidfile build/demo-emulated/qemu.pid
    trap 'kill "$(cat build/demo-emulated/qemu.pid)"' EXIT
    build/dev/bin/programmer --headless --driver "gdb:127.0.0.1:$port" --operation write \
        --image build/demo-emulated/firmware.hex --verify --pictures build/demo-emulated | tee build/demo-emulated/transcript.txt
    for _ in $(seq 100); do
        grep -q 'help()' "$serial" && break
        sleep 0.1
    done
    echo "The chip says on its serial line:"
    tee -a build/demo-emulated/transcript.txt <"$serial"
    grep -q 'help()' "$serial" || { echo "The chip has not greeted." >&2; exit 1; }
    exit 0
fi
if [ "$headless" = no ]; then
    echo "Press Write: the image is chosen, and so is its verification."
    exec build/dev/bin/programmer --image "$image" --verify
fi

rm -rf build/demo
mkdir -p build/demo
build/dev/bin/programmer --headless --operation write --operation read --image "$image" --verify --compare \
    --pictures build/demo --output build/demo/readback.hex | tee build/demo/transcript.txt
echo "Transcript and pictures are in build/demo."
