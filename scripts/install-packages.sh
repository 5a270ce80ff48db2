#!/usr/bin/env bash
# Installs the packages of a list that are missing, as root or with sudo: install-packages.sh [LIST]
# LIST is scripts/packages.txt unless given, relative to the project.
set -euo pipefail
cd "$(dirname "$0")/.."
list=${1:-scripts/packages.txt}

if ! command -v apt-get >/dev/null; then
    echo "This is no Debian system: please install the counterparts of $list yourself." >&2
    exit 0
fi

mapfile -t packages < <(sed 's/#.*//; s/[[:space:]]//g; /^$/d' "$list")
missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Please install these packages as root: ${missing[*]}" >&2; exit 1; }
    as_root=(sudo)
fi
echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
