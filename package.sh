#!/usr/bin/env bash
# Makes a package and prints its path: the Debian package of this system, in build-package/, or with --windows the zip
# file for 64-bit Windows, in build-windows/.
# Usage: ./package.sh [--windows]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
source scripts/packages.sh

case "${1:-}" in
    "") folder=build-package kind=deb ;;
    --windows) folder=build-windows kind=zip ;;
    *) echo "usage: ./package.sh [--windows]" >&2; exit 2 ;;
esac

if [ "$folder" = build-windows ]; then
    ./build.sh --windows
else
    install_missing "${build_packages[@]}" "${package_packages[@]}"
    export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
    if [ ! -f "$folder/build.ninja" ]; then
        cmake -S . -B "$folder" -G Ninja -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_SKIP_RPATH=ON \
            -DPD_TESTS=OFF -DPD_BENCH=OFF >&2
    fi
    cmake --build "$folder" -j "$(nproc)" >&2
fi
rm -f "$folder"/packages/*."$kind"
cpack --config "$folder/CPackConfig.cmake" -B "$folder/packages" >&2
ls "$folder"/packages/*."$kind"
