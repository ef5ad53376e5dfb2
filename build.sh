#!/usr/bin/env bash
# Installs what the build lacks and builds everything into build/ (or a sanitizer's folder beside it), or the fuzz
# targets into build-fuzz/, or everything for Windows into build-windows/.
# Usage: ./build.sh [--sanitizer address|thread | --fuzz | --windows]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
source scripts/packages.sh
source scripts/windows.sh

# Several sources at once: half the time. The ordinary build compiles each of the product by itself, as its author
# sees it.
unity_build=(-DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=8)

sanitizer=
fuzz=
windows=
while [ $# -gt 0 ]; do
    case "$1" in
        --sanitizer)
            sanitizer=${2:-}
            case "$sanitizer" in
                address | thread) ;;
                *) echo "build.sh: --sanitizer takes address or thread" >&2; exit 2 ;;
            esac
            shift 2
            ;;
        --fuzz)
            fuzz=yes
            shift
            ;;
        --windows)
            windows=yes
            shift
            ;;
        *) echo "usage: ./build.sh [--sanitizer address|thread | --fuzz | --windows]" >&2; exit 2 ;;
    esac
done

install_missing "${build_packages[@]}"
# Other clones of the project share what the compiler cache holds.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
if [ -n "$windows" ]; then
    build_windows
    exit
fi
if [ -n "$fuzz" ]; then
    install_missing "${fuzz_packages[@]}"
    if [ ! -f build-fuzz/build.ninja ]; then
        cmake -S . -B build-fuzz -G Ninja -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DPD_FUZZ=ON \
            -DPD_BENCH=OFF >&2
    fi
    cmake --build build-fuzz -j "$(nproc)" --target fuzz >&2
    exit
fi
folder=build${sanitizer:+-$sanitizer}
if [ ! -f "$folder/build.ninja" ]; then
    cmake -S . -B "$folder" -G Ninja -DPD_SANITIZE="$sanitizer" ${sanitizer:+"${unity_build[@]}"} >&2
fi
cmake --build "$folder" -j "$(nproc)" >&2
