#!/usr/bin/env bash
# Builds for Windows with mingw-w64 and passes the tests under Wine: scripts/test-windows.sh [ctest argument...]
#
# UNIPROG_WINDOWS_QT names a Qt 6 for Windows that mingw-w64 built: a folder, or a .tar.xz archive of a folder with the
# archive's name, which is unpacked below build/. Without it ../shared/windows/qt-6.4.2-mingw64.tar.xz beside the checkout
# is taken; when that is missing too, nothing can be built and the script fails: scripts/build-qt-for-windows.sh makes one.
set -euo pipefail
cd "$(dirname "$0")/.."

default_archive=../shared/windows/qt-6.4.2-mingw64.tar.xz
qt=${UNIPROG_WINDOWS_QT:-$default_archive}
if [ ! -e "$qt" ]; then
    echo "There is no Qt for Windows at $qt: set UNIPROG_WINDOWS_QT to its folder or archive," >&2
    echo "or let scripts/build-qt-for-windows.sh build one, which takes a quarter of an hour." >&2
    exit 1
fi

scripts/install-packages.sh
scripts/install-packages.sh scripts/packages-windows.txt

if [ -f "$qt" ]; then
    unpacked=build/windows-qt/$(basename "$qt" .tar.xz)
    if [ ! -e "$unpacked/.unpacked" ] || [ "$qt" -nt "$unpacked/.unpacked" ]; then
        mkdir -p build/windows-qt
        tar xJf "$qt" -C build/windows-qt
        # Qt's private headers include files that a build for Windows does not install and the host's does.
        [ -e "$unpacked/mkspecs/common" ] || cp -r "$(qtpaths6 --query QT_HOST_DATA)/mkspecs/common" "$unpacked/mkspecs/"
        touch "$unpacked/.unpacked"
    fi
    qt=$unpacked
fi
UNIPROG_WINDOWS_QT=$(realpath "$qt")
export UNIPROG_WINDOWS_QT

# What one checkout has compiled serves every other one.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1

cmake --preset windows --log-level=WARNING
cmake --build --preset windows
scripts/check-dll-exports.sh build/windows/bin/libUniProgCore.dll UNIPROGCORE_EXPORT core/*.h
scripts/check-dll-exports.sh build/windows/bin/libUniProgUtils.dll UNIPROGUTILS_EXPORT include/*.h
scripts/check-dll-exports.sh build/windows/bin/libUniProgTestKit.dll UNIPROGTESTKIT_EXPORT testkit/*.h

# Native windows need a window system, and so do the system's device broadcasts.
display=$(mktemp)
Xvfb -displayfd 3 -screen 0 1280x1024x24 3>"$display" >/dev/null 2>&1 &
xvfb=$!
export WINEPREFIX=$PWD/build/wine
end() {
    WINEDEBUG=-all wineserver -k 2>/dev/null || true
    kill "$xvfb" 2>/dev/null || true
    rm -f "$display"
}
trap end EXIT
for _ in $(seq 100); do
    [ -s "$display" ] && break
    kill -0 "$xvfb" 2>/dev/null || { echo "Xvfb does not start." >&2; exit 1; }
    sleep 0.1
done
DISPLAY=:$(cat "$display")
export DISPLAY

results=build/windows/results
rm -rf "$results"
mkdir -p "$results"
status=0
UNIPROG_TEST_RESULTS=$PWD/$results ctest --preset windows --parallel "$(nproc)" "$@" || status=$?

echo
echo "Test programs that were run, and their counts:"
grep -H '^Totals:' "$results"/*.txt | sed "s|^$results/||; s|\.txt:Totals:|:|; s|, 0 blacklisted||" || true
echo
echo "Tests that passed on the platform plugin of Windows, with native windows and messages:"
for name in $(ctest --preset windows --show-only --label-regex native | sed -n 's/^ *Test *#[0-9]*: //p'); do
    tr -d '\r' <"$results/$name.txt" | sed -n 's/^PASS *: \([^ ].*)\)$/  \1/p' | grep -v '::\(init\|cleanup\)TestCase' || true
done
echo
echo "Test programs that are not run on Windows:"
sed '/^$/d; s/^/  /' build/windows/tests/skipped-on-windows.txt
echo
echo "Tests that were skipped in the others:"
grep -h '^SKIP' "$results"/*.txt | sed 's/^SKIP *: /  /' || echo "  none"
exit "$status"
