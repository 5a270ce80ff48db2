#!/usr/bin/env bash
# Runs a Windows program of this project as if it were one of this system: run-under-wine.sh QT PROGRAM [ARGUMENT...]
# QT is the folder of a Qt for Windows. ctest --preset windows starts every program this way.
#
# The Wine prefix is WINEPREFIX, otherwise build/wine, made when it is missing. QT_QPA_PLATFORM is offscreen unless set;
# "windows" takes an X display. What a test program prints is shown when it has ended: Wine does not hand its console
# output over reliably. With UNIPROG_TEST_RESULTS, a folder, it is also kept there, under the name of the program and, if
# given, of UNIPROG_TEST_VARIANT.
set -euo pipefail
qt=$(realpath "$1")
program=$2
shift 2
root=$(realpath "$(dirname "$0")/..")

windows_path() { printf 'Z:%s' "${1//\//\\}"; }

export WINEPREFIX=${WINEPREFIX:-$root/build/wine} WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
# Nothing here needs .NET or HTML, whose installers would ask for a download.
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=}
runtime=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-file-name=libstdc++-6.dll)")
folder=$(dirname "$(realpath "$program")")
# Beside the program or, for one in a folder of its own, a step above it.
WINEPATH="$(windows_path "$folder");$(windows_path "$(dirname "$folder")");$(windows_path "$qt/bin");$(windows_path "$runtime")"
WINEPATH="$WINEPATH;$(windows_path /usr/x86_64-w64-mingw32/lib)"
export WINEPATH
# Wine drops the variables that begin with QT_, and gives those that begin with WINEQT_ on without WINE.
export WINEQT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
export WINEQT_QPA_FONTDIR=${QT_QPA_FONTDIR:-$(windows_path /usr/share/fonts/truetype/open-sans)}

mkdir -p "$WINEPREFIX"
(
    flock 9
    if [ ! -e "$WINEPREFIX/.ready" ]; then
        wineboot -i
        # No window manager is needed: otherwise a window waits two seconds for one when it goes.
        wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f
        wineserver -w
        touch "$WINEPREFIX/.ready"
    fi
) 9>"$WINEPREFIX/.lock" >/dev/null 2>&1

case $(basename "$program") in
tst_*) ;;
*) exec wine "$program" "$@" ;;
esac

temporary=$(mktemp -d)
trap 'rm -rf "$temporary"' EXIT
results=$temporary
[ -z "${UNIPROG_TEST_RESULTS:-}" ] || results=$(realpath "$UNIPROG_TEST_RESULTS")
result=$results/$(basename "$program" .exe)${UNIPROG_TEST_VARIANT:+_$UNIPROG_TEST_VARIANT}.txt
status=0
# Into a file: the system's services, which the first program starts, keep its output open for as long as they run.
wine "$program" "$@" -o "$(windows_path "$result"),txt" >"$temporary/console" 2>&1 </dev/null || status=$?
cat "$temporary/console" "$result"
exit "$status"
