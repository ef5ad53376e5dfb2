#!/usr/bin/env bash
# Installs what the build lacks and builds everything into build/ (or a sanitizer's folder beside it).
# Usage: ./build.sh [--sanitizer address|thread]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
source scripts/packages.sh

sanitizer=
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
        *) echo "usage: ./build.sh [--sanitizer address|thread]" >&2; exit 2 ;;
    esac
done

install_missing "${build_packages[@]}"
# Other clones of the project share what the compiler cache holds.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
folder=build${sanitizer:+-$sanitizer}
if [ ! -f "$folder/build.ninja" ]; then
    cmake -S . -B "$folder" -G Ninja -DPD_SANITIZE="$sanitizer" >&2
fi
cmake --build "$folder" -j "$(nproc)" >&2
