#!/usr/bin/env bash
# Makes the Debian packages in build/package: scripts/package.sh [--try]
# --try installs them, builds tests/consumer against what is installed, runs it and removes them again.
set -euo pipefail
cd "$(dirname "$0")/.."

try=no
case "${1:-}" in
"") ;;
--try) try=yes ;;
*) echo "Usage: scripts/package.sh [--try]" >&2; exit 2 ;;
esac

scripts/install-packages.sh scripts/packages-quality.txt
scripts/build.sh package
rm -f build/package/*.deb
cpack --config build/package/CPackConfig.cmake -B build/package
ls -l build/package/*.deb
[ "$try" = yes ] || exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
trap '"${as_root[@]}" apt-get purge -y -qq uniprogutils uniprogutils-dev' EXIT
"${as_root[@]}" apt-get install -y -qq --no-install-recommends ./build/package/*.deb
for way in find_package pkg_config; do
    work=build/package/consumer-$way
    rm -rf "$work"
    cmake -G Ninja -S tests/consumer/project -B "$work" -DCONSUMER_WAY=$way -DREADME="$PWD/README.md"
    cmake --build "$work"
    "$work/consumer"
    ctest --test-dir "$work" --output-on-failure
done
uniprog-theme --help >/dev/null
