#!/usr/bin/env bash
# Makes the reference of the exported classes, build/docs/html/index.html; a warning is a failure.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh scripts/packages-quality.txt
rm -rf build/docs
mkdir -p build
doxygen docs/Doxyfile
echo "The reference: build/docs/html/index.html"
