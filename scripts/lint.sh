#!/usr/bin/env bash
# Reads the code with clang-format, cppcheck, clang-tidy and clazy (level 1); a finding is a failure.
# scripts/lint.sh [SOURCE...]: clang-tidy and clazy read these sources instead of all of the libraries and the examples.
# Tests, benchmarks and fuzz targets, which nobody links, are read by the first two alone.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh scripts/packages-quality.txt
scripts/build.sh dev --target help >/dev/null

libraries=(core operations data services widgets testkit)
folders=("${libraries[@]}" include examples tests benchmarks fuzz)
status=0
step() { printf '\n== %s (after %d s)\n' "$1" "$SECONDS"; }

step "clang-format"
find "${folders[@]}" \( -name '*.h' -o -name '*.cpp' \) -print0 |
    xargs -0 clang-format --dry-run -Werror || status=1

step "cppcheck"
cppcheck --std=c++17 --language=c++ --library=qt --library=scripts/cppcheck-qt.cfg --quiet --error-exitcode=1 \
    --enable=warning,style,performance,portability --inline-suppr --suppressions-list=scripts/cppcheck-suppressions.txt \
    -j "$(nproc)" -Iinclude -Icore -Itestkit "${folders[@]}" || status=1

# What moc generates is included, and the platform's files are those that this system compiles.
mapfile -t generated < <(cmake --build --preset dev --target help |
    sed -nE 's,^.*/build/dev/((core|examples|testkit)/.*)?CMakeFiles/([^/ ]+_autogen): phony$,\3,p')
scripts/build.sh dev --target "${generated[@]}" >/dev/null
if [ $# -gt 0 ]; then
    sources=("$@")
else
    own=$(IFS='|'; echo "${libraries[*]}")
    mapfile -t sources < <(sed -nE "s,^ *\"file\": \"$PWD/(($own|examples)/.*)\"\,?,\1,p" build/dev/compile_commands.json |
        sort -u)
fi
# Every source by a process of its own; the compiler's flags are those of GCC.
each() { printf '%s\0' "${sources[@]}" | xargs -0 -n 1 -P "$(nproc)" "$@" --extra-arg=-Wno-unknown-warning-option; }

step "clang-tidy: ${#sources[@]} sources"
each clang-tidy -p build/dev --quiet --warnings-as-errors='*' 2> >(grep -vE '^[0-9]+ warnings? ' >&2) || status=1

# The compiler refuses to mix iterators (QT_STRICT_ITERATORS), and knows that erase() takes both kinds. The properties
# are there for style sheets and animations, and the interface of the classes has no signals for them.
step "clazy"
each clazy-standalone -p build/dev --checks=level1,no-strict-iterators,no-qproperty-without-notify --ignore-dirs='/usr/|_autogen/' || status=1

[ $status -eq 0 ] && step "Nothing was found" || step "There are findings"
exit $status
