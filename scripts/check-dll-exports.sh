#!/usr/bin/env bash
# Fails when a Windows library exports something else than the classes that its headers mark for export, or lacks one:
# check-dll-exports.sh DLL EXPORT_MACRO HEADER...
set -euo pipefail
dll=$1
macro=$2
shift 2

marked=$(sed -nE "s/^(class|struct) $macro ([A-Za-z0-9_]+).*/\2/p" "$@" | sort -u)
# Every symbol of a class reads "Class::member", after "vtable for " and the like.
symbols=$(x86_64-w64-mingw32-objdump -p "$dll" | sed -n '/Ordinal\/Name Pointer/,/^$/p' | awk '/\[ *[0-9]+\]/ { print $NF }')
exported=$(c++filt <<<"$symbols" | sed -E 's/^((non-virtual|virtual) thunk to|[a-z ]+ for) //; s/[:(<].*//' | sort -u)

if [ "$exported" != "$marked" ]; then
    echo "$dll does not export exactly the classes marked with $macro (< marked, > exported):" >&2
    diff <(echo "$marked") <(echo "$exported") >&2
    exit 1
fi
echo "$(basename "$dll") exports its $(wc -l <<<"$marked") classes and nothing else."
