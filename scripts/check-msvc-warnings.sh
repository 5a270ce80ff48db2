#!/usr/bin/env bash
# Reads the libraries' Windows sources with clang and the counterparts of MSVC's /W4, any of which is an error, and without
# extensions of GCC: scripts/check-msvc-warnings.sh, after scripts/test-windows.sh has configured and built.
#
# It stands in for MSVC, which is not here. Needs clang and python3. Level 4 warnings that Qt's headers turn off for
# everybody (C4244, C4251, C4275, C4706) are not looked for.
set -euo pipefail
cd "$(dirname "$0")/.."
command -v clang++ >/dev/null || { echo "Please install clang." >&2; exit 1; }

warnings=(
    -Wall -Wextra -Wpedantic -Wgnu
    -Wshadow-all                                # C4456 to C4459
    -Wunused -Wunused-parameter -Wunused-member-function # C4100, C4101, C4189, C4505
    -Wshorten-64-to-32                          # C4267
    -Wsign-compare                              # C4018, C4389
    -Wconstant-conversion                       # C4245, C4309, C4310
    -Wunreachable-code                          # C4702
    -Wparentheses                               # C4706
    -Wdeprecated -Wdeprecated-copy              # C4996
    -Winconsistent-dllimport -Wdll-attribute-on-redeclaration
    -Wundefined-reinterpret-cast -Wpointer-bool-conversion -Wover-aligned
    -Wno-unknown-warning-option)

# mingw-w64's C++ headers are not where clang looks for them.
mapfile -t headers < <(x86_64-w64-mingw32-g++-posix -xc++ -E -v /dev/null 2>&1 |
    sed -n '/#include <\.\.\.>/,/^End/s|^ ||p' | grep c++)

commands=$(python3 - build/windows/compile_commands.json <<'PYTHON'
import json, os, shlex, sys
rooms = ("core", "data", "operations", "services", "testkit", "widgets")
for entry in json.load(open(sys.argv[1])):
    if os.path.relpath(entry["file"]).split(os.sep)[0] not in rooms or not entry["file"].endswith(".cpp"):
        continue
    words = shlex.split(entry["command"])
    kept = []
    for word in words:
        if word.startswith(("-D", "-I", "-std=")) or kept and kept[-1] == "-isystem":
            kept.append(word)
        elif word == "-isystem":
            kept.append(word)
    print(shlex.join([*kept, entry["file"]]))
PYTHON
)
count=$(wc -l <<<"$commands")
xargs -P "$(nproc)" -d '\n' -I '{}' sh -c \
    "clang++ --target=x86_64-w64-mingw32 -fsyntax-only -Werror ${warnings[*]} ${headers[*]/#/-isystem } {}" <<<"$commands"
echo "clang has nothing to say about the $count source files of the libraries."
