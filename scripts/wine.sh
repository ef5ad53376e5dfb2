#!/usr/bin/env bash
# Runs a Windows program under Wine: scripts/wine.sh FOLDER PROGRAM [ARGUMENT...]
# FOLDER is the build folder: libraries are found in it, and what Wine keeps stands in FOLDER/wine.
set -euo pipefail
folder=$1
shift
export WINEPREFIX=$folder/wine WINEPATH="Z:${folder//\//\\}" WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree,mshtml="
exec /usr/lib/wine/wine64 "$@"
