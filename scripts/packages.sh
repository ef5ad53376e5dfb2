# Debian packages that the project needs, and their installation. Sourced by ./build.sh, ./run and ./test.

build_packages=(
    g++ cmake ninja-build pkg-config ccache
    libsnmp-dev libssl-dev libsqlite3-dev libc-ares-dev nlohmann-json3-dev libcli11-dev libboost-dev
    libgtest-dev libgmock-dev libbenchmark-dev
)
test_packages=(
    snmpd snmp snmpsim samba iproute2 util-linux procps python3 clang-format clang-tidy cppcheck debootstrap zsh
    chromium fonts-inter
)
# A Node.js that did not come from Debian brings npm along, and Debian's package of it does not go with that.
command -v npm >/dev/null || test_packages+=(nodejs npm)

package_packages=(dpkg-dev)
windows_packages=(g++-mingw-w64-x86-64-posix wine64 googletest tcl8.6 dpkg-dev)
fuzz_packages=(clang libclang-rt-dev)

# install_missing PACKAGE...: installs those that are not there. No service is started on account of it.
install_missing() {
    local missing=() package
    for package in "$@"; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    if ! command -v apt-get >/dev/null; then
        echo "These Debian packages, or what your system has in their place, are needed: ${missing[*]}" >&2
        return 1
    fi
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { echo "Run as root, or install sudo, to install: ${missing[*]}" >&2; return 1; }
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]}" >&2
    "${as_root[@]}" apt-get update -qq >&2
    without_services "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
}

# without_services COMMAND...: runs a package installation that leaves the daemons it brings stopped.
without_services() {
    local policy=/usr/sbin/policy-rc.d status=0
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    if [ -e "$policy" ]; then
        "$@"
        return
    fi
    printf '#!/bin/sh\nexit 101\n' | "${as_root[@]}" tee "$policy" >/dev/null
    "${as_root[@]}" chmod 755 "$policy"
    "$@" || status=$?
    "${as_root[@]}" rm -f "$policy"
    return $status
}
