# The Windows build and its tests. Sourced by ./build.sh and ./test.

# build_windows: builds everything into build-windows/.
build_windows() {
    local libraries
    install_missing "${windows_packages[@]}"
    libraries=$(scripts/windows-libraries.sh)
    if [ ! -f build-windows/build.ninja ]; then
        cmake -S . -B build-windows -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/windows.cmake \
            -DPD_WINDOWS_LIBRARIES="$libraries" -DPD_BENCH=OFF "${unity_build[@]}" >&2
    elif ! grep -qx "PD_WINDOWS_LIBRARIES:PATH=$libraries" build-windows/CMakeCache.txt; then
        cmake -S . -B build-windows -DPD_WINDOWS_LIBRARIES="$libraries" >&2
    fi
    cmake --build build-windows -j "$(nproc)" >&2
}

# with_wine COMMAND...: runs it while a Wine of the build folder's own stays in memory, so that programs start quickly.
with_wine() {
    local status=0
    local -x WINEPREFIX=$PWD/build-windows/wine
    [ -d "$WINEPREFIX" ] || scripts/wine.sh "$PWD/build-windows" wineboot -i >&2
    /usr/lib/wine/wineserver -k || true # what an earlier run may have left, if it was cut short
    /usr/lib/wine/wineserver -w
    /usr/lib/wine/wineserver -p
    # The first program starts services that keep its output open; whoever waits for the end of that waits for them.
    scripts/wine.sh "$PWD/build-windows" cmd /c exit >/dev/null 2>&1
    "$@" || status=$?
    /usr/lib/wine/wineserver -k || true
    return $status
}

# windows_tests: all that is tested under Wine; build/ holds the programs of this machine to compare with.
windows_tests() {
    local status=0
    ctest --test-dir build-windows -j "$(nproc)" --output-on-failure --no-tests=error || status=$?
    echo "Cases under Wine: $(grep -hoE '^\[  PASSED  \] [0-9]+ tests?' build-windows/Testing/Temporary/LastTest.log |
        awk '{ n += $4 } END { print n }') passed, $(grep -hcE '^\[  SKIPPED \] .*\(' \
        build-windows/Testing/Temporary/LastTest.log || true) skipped"
    tests/windows/odds build-windows build || status=$?
    tests/windows/programs build-windows build || status=$?
    tests/packages/windows "$(./package.sh --windows)" build/printer-lab || status=$?
    return $status
}
