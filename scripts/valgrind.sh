#!/usr/bin/env bash
# Runs test programs under memcheck, which also sees what Qt's own code reads and writes: the sanitizers look into ours
# only. Leaks are LeakSanitizer's business. scripts/valgrind.sh [TEST...]; all tests take about an hour.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh scripts/packages-quality.txt
scripts/build.sh dev
if [ $# -eq 0 ]; then
    mapfile -t tests < <(cd build/dev/bin && printf '%s\n' tst_*)
    set -- "${tests[@]}"
fi

patience=3600000 # milliseconds for a test function
results=build/dev/valgrind
mkdir -p "$results"
status=0
for test in "$@"; do
    # Memcheck does not understand the machine code that regular expressions are made into.
    # The children are Qt's helpers and our own programs, which their own tests look at.
    if QT_QPA_PLATFORM=offscreen QT_ENABLE_REGEXP_JIT=0 QTEST_FUNCTION_TIMEOUT=$patience valgrind --quiet --error-exitcode=99 --leak-check=no --num-callers=30 \
        --suppressions=tests/valgrind.supp \
        --log-file="$results/$test.log" "build/dev/bin/$test" -o "$results/$test.txt,txt" >/dev/null 2>&1; then
        result=passed
    elif [ -s "$results/$test.log" ]; then
        result="FAILED, see $results/$test.log"
        status=1
    else
        # A test that waits for a fixed share of time may be too slow under memcheck; that says nothing of memory.
        result="no memory error, but the test failed (see $results/$test.txt)"
    fi
    echo "$test: $result"
done
exit $status
