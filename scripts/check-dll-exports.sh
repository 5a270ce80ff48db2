#!/usr/bin/env bash
# Fails when a Windows library exports something else than the classes and functions that its headers mark for export, or
# lacks one: check-dll-exports.sh DLL EXPORT_MACRO HEADER...
set -euo pipefail
dll=$1
macro=$2
shift 2

# A class without a function of its own, which only names what its base has, has nothing to export.
marked=$(awk -v macro="$macro" '
    /^(class|struct) / && $2 == macro { class = $3 }
    /^};/ { class = "" }
    class != "" && /^ +[^\/ ].*\(/ { print class; class = "" }
    $1 == macro && match($0, /[^ *&]+\(/) { print substr($0, RSTART, RLENGTH - 1) }' "$@" | sort -u)
# Every symbol of a class reads "Class::member", after "vtable for " and the like; that of a function, "name(arguments)".
symbols=$(x86_64-w64-mingw32-objdump -p "$dll" | sed -n '/Ordinal\/Name Pointer/,/^$/p' | awk '/\[ *[0-9]+\]/ { print $NF }')
exported=$(c++filt <<<"$symbols" | sed -E 's/^((non-virtual|virtual) thunk to|[a-z ]+ for) //; s/[:(].*//' | sort -u)

if [ "$exported" != "$marked" ]; then
    echo "$dll does not export exactly what is marked with $macro (< marked, > exported):" >&2
    diff <(echo "$marked") <(echo "$exported") >&2
    exit 1
fi
echo "$(basename "$dll") exports the $(wc -l <<<"$marked") names that are marked for it, and nothing else."
