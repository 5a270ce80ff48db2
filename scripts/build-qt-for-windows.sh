#!/usr/bin/env bash
# Builds Qt 6 for Windows with mingw-w64 from Debian's source package, of the same version as the host's Qt:
# scripts/build-qt-for-windows.sh [FOLDER]
#
# FOLDER, build/windows-qt/qt-mingw64 unless given, is then what UNIPROG_WINDOWS_QT of scripts/test-windows.sh takes. It
# takes about a quarter of an hour on two processors and 2 GB below build/qt-for-windows, which may be deleted afterwards.
# It holds Core, Gui, Widgets, Network, Test, Concurrent and Xml, and no SVG plugin: icons stay empty with it.
# UNIPROG_QT_TARGETS are the targets to build in the place of all, without an installation: a way to try the recipe.
set -euo pipefail
cd "$(dirname "$0")/.."
prefix=$(realpath -m "${1:-build/windows-qt/qt-mingw64}")
work=$PWD/build/qt-for-windows
toolchain=$PWD/cmake/toolchains/mingw-w64-compilers.cmake

scripts/install-packages.sh
scripts/install-packages.sh scripts/packages-windows.txt
scripts/install-packages.sh scripts/packages-windows-qt.txt

mkdir -p "$work"
cd "$work"
if ! ls -d qt6-base-*/ >/dev/null 2>&1; then
    # The system's own lists may have no sources: these have nothing else.
    mkdir -p apt/lists/partial apt/sources
    sed 's/^Types:.*/Types: deb-src/' /etc/apt/sources.list.d/debian.sources >apt/sources/debian.sources
    apt=(apt-get -qq -o Dir::Etc::SourceList=/dev/null -o "Dir::Etc::SourceParts=$PWD/apt/sources"
        -o "Dir::State::Lists=$PWD/apt/lists" -o APT::Sandbox::User=root)
    "${apt[@]}" update
    "${apt[@]}" source "qt6-base=$(dpkg-query -W -f '${source:Version}' qt6-base-dev)"
fi

cmake -G Ninja -S qt6-base-*/ -B build --log-level=NOTICE \
    -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" \
    -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="/usr/lib/$(uname -m)-linux-gnu/cmake" \
    -DBUILD_SHARED_LIBS=ON -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF \
    -DFEATURE_sql=OFF -DFEATURE_dbus=OFF -DFEATURE_printsupport=OFF -DFEATURE_opengl=OFF -DINPUT_opengl=no \
    -DFEATURE_vulkan=OFF -DFEATURE_tabletevent=OFF -DFEATURE_schannel=ON -DINPUT_openssl=no \
    -DFEATURE_direct2d=OFF -DFEATURE_direct2d1_1=OFF -DFEATURE_directwrite3=OFF -DFEATURE_icu=OFF -DFEATURE_glib=OFF \
    -DFEATURE_pkg_config=OFF -DFEATURE_system_{zlib,freetype,png,jpeg,harfbuzz,pcre2,doubleconversion}=OFF
if [ -n "${UNIPROG_QT_TARGETS:-}" ]; then
    # shellcheck disable=SC2086 # several targets
    cmake --build build --target $UNIPROG_QT_TARGETS
    exit
fi
cmake --build build
cmake --install build
cp -r qt6-base-*/mkspecs/common "$prefix/mkspecs/" # which private headers include
echo "Qt for Windows is in $prefix."
