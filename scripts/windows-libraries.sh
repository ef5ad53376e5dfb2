#!/usr/bin/env bash
# Cross-builds the libraries that the Windows build links, out of the distribution's source packages.
# Usage: scripts/windows-libraries.sh     prints the folder (include/, lib/) that holds them; builds it if it is not there
# The folder lies in the user's cache, under a name made of everything that the result depends on.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
accepted=$here/windows-sources.txt
triplet=x86_64-w64-mingw32
compiler=$triplet-gcc-posix

cache=${XDG_CACHE_HOME:-$HOME/.cache}/printer-discovery-windows
headers=(libboost-dev nlohmann-json3-dev libcli11-dev googletest)
# shellcheck disable=SC2016 # dpkg-query fills in the names
installed=$(dpkg-query -W -f '${Package} ${Version}\n' "${headers[@]}")
key=$({ cat "$accepted" "${BASH_SOURCE[0]}"; "$compiler" -dumpfullversion; echo "$installed"; } | sha256sum | cut -c 1-16)
prefix=$cache/$key

die() { echo "windows-libraries.sh: $*" >&2; exit 1; }

# Lists the machine's own package sources once more, as sources of source packages. Its configuration stays as it is.
prepare_apt() {
    local parts=$work/apt/parts file
    mkdir -p "$parts" "$work/apt/lists/partial" "$work/apt/cache/archives/partial"
    : >"$work/apt/sources.list"
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [ -e "$file" ] && sed -E 's/^deb([[:space:]])/deb-src\1/' "$file" >"$parts/$(basename "$file" .list).list"
    done
    for file in /etc/apt/sources.list.d/*.sources; do
        [ -e "$file" ] && sed -E 's/^Types:.*/Types: deb-src/' "$file" >"$parts/$(basename "$file")"
    done
    apt_options=(-o "Dir::Etc::SourceList=$work/apt/sources.list" -o "Dir::Etc::SourceParts=$parts"
        -o "Dir::State::Lists=$work/apt/lists" -o "Dir::Cache=$work/apt/cache" -o "APT::Sandbox::User=$(id -un)")
    # A source without source packages is no reason to give up: what matters is whether ours are found.
    apt-get "${apt_options[@]}" update -qq >&2 || true
}

# fetch NAME: unpacks the first accepted version that is served into sources/NAME.
fetch() {
    local name=$1 version hash folder
    while read -r _ version hash; do
        folder=$work/download/$name-$version
        mkdir -p "$folder"
        if (cd "$folder" && apt-get "${apt_options[@]}" source -qq --download-only "$name=$version" >&2); then
            local dsc=("$folder"/*.dsc)
            echo "$hash  ${dsc[0]}" | sha256sum --check --quiet >&2 || die "$name $version is not what was accepted"
            dpkg-source --no-check --extract "${dsc[0]}" "$work/sources/$name" >"$work/$name-unpack.log" 2>&1 ||
                die "$name $version does not unpack; see $work/$name-unpack.log"
            echo "$name $version" >>"$work/prefix/versions.txt"
            return
        fi
    done < <(grep -E "^$name[[:space:]]" "$accepted")
    die "no accepted version of $name is served; $accepted lists them, 'apt-cache showsrc $name' what there is"
}

# logged NAME COMMAND...: its output goes to a log, whose end is shown when it fails.
logged() {
    local name=$1 log=$work/$1.log
    shift
    "$@" >>"$log" 2>&1 || { tail -n 40 "$log" >&2; die "$name does not build; see $log"; }
}

build_openssl() {
    cd "$work/sources/openssl"
    logged openssl ./Configure mingw64 --cross-compile-prefix=$triplet- no-shared no-tests no-dso no-engine no-async \
        no-legacy no-module
    logged openssl make -j "$(nproc)" build_generated
    logged openssl make -j "$(nproc)" libcrypto.a
    cp libcrypto.a "$work/prefix/lib/"
    cp -r include/openssl "$work/prefix/include/"
}

build_net_snmp() {
    # Its tests for what OpenSSL has do not link on the way across; these are functions that it has.
    local has=(EVP_sha224 EVP_sha384 EVP_MD_CTX_new EVP_MD_CTX_free DH_set0_pqg DH_get0_pqg DH_get0_key
        ASN1_STRING_get0_data X509_NAME_ENTRY_get_object X509_NAME_ENTRY_get_data X509_get_signature_nid)
    has=("${has[@]/#/ac_cv_func_}")
    cd "$work/sources/net-snmp"
    logged net-snmp env PKG_CONFIG= CC=$compiler "${has[@]/%/=yes}" ./configure --host=$triplet \
        --prefix="$work/prefix" --with-openssl="$work/prefix" --enable-blumenthal-aes --with-transports=UDP \
        --with-defaults --enable-mini-agent --disable-agent --disable-applications --disable-manuals \
        --disable-scripts --disable-mibs --without-perl-modules --disable-embedded-perl --disable-shared --enable-static
    logged net-snmp make -C snmplib -j "$(nproc)" libnetsnmp.la
    cp snmplib/.libs/libnetsnmp.a "$work/prefix/lib/"
    cp -r include/net-snmp "$work/prefix/include/"
}

# One file of C, made here by the sources' own tools.
build_sqlite() {
    mkdir "$work/sqlite"
    cd "$work/sqlite"
    logged sqlite "$work/sources/sqlite3/configure" --disable-tcl
    logged sqlite make sqlite3.c
    logged sqlite $compiler -O2 -DSQLITE_THREADSAFE=1 -DSQLITE_OMIT_LOAD_EXTENSION -c sqlite3.c -o sqlite3.o
    logged sqlite $triplet-ar rcs "$work/prefix/lib/libsqlite3.a" sqlite3.o
    cp sqlite3.h "$work/prefix/include/"
}

# cmake_library NAME SOURCES OPTION...: one that builds with CMake.
cmake_library() {
    local name=$1 sources=$2
    shift 2
    logged "$name" cmake -S "$sources" -B "$work/$name" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_C_COMPILER=$compiler -DCMAKE_CXX_COMPILER=$triplet-g++-posix \
        -DCMAKE_INSTALL_PREFIX="$work/prefix" -DCMAKE_INSTALL_LIBDIR=lib "$@"
    logged "$name" cmake --build "$work/$name" --target install
}

# A constant that one of its files takes from a header of other systems.
build_c_ares() {
    cmake_library c-ares "$work/sources/c-ares" -DCARES_SHARED=OFF -DCARES_STATIC=ON -DCARES_BUILD_TOOLS=OFF -DCMAKE_C_FLAGS=-DINADDRSZ=4
}

build_googletest() {
    cmake_library googletest /usr/src/googletest -DCMAKE_CXX_STANDARD=17
}

# Header-only libraries serve both systems; the rest of /usr/include must stay out of the compiler's sight.
link_headers() {
    local folder
    for folder in boost nlohmann CLI; do
        ln -s "/usr/include/$folder" "$work/prefix/include/$folder"
    done
    mkdir -p "$work/prefix/share/cmake"
    cp -r /usr/share/cmake/nlohmann_json /usr/share/cmake/CLI11 "$work/prefix/share/cmake/"
}

# package_file NAME LIBRARIES [FLAGS]: what pkg-config is to say of a library.
package_file() {
    printf '%s\n' 'prefix=${pcfiledir}/../..' "Name: $1" "Description: $1" 'Version: 0' "Libs: -L\${prefix}/lib $2" \
        "Cflags: -I\${prefix}/include ${3:-}" >"$work/prefix/lib/pkgconfig/$1.pc"
}

write_package_files() {
    rm -rf "$work/prefix/lib/pkgconfig"
    mkdir "$work/prefix/lib/pkgconfig"
    package_file libcrypto "-lcrypto -lws2_32 -lcrypt32 -ladvapi32 -luser32"
    package_file netsnmp "-lnetsnmp -lcrypto -lws2_32 -lcrypt32 -ladvapi32 -luser32 -liphlpapi"
    package_file libcares "-lcares -lws2_32 -ladvapi32 -liphlpapi" -DCARES_STATICLIB
}

build_all() {
    mkdir -p "$work/sources" "$work/download" "$work/prefix/include" "$work/prefix/lib"
    local name
    prepare_apt
    for name in openssl net-snmp sqlite3 c-ares; do
        echo "windows-libraries.sh: fetching $name" >&2
        fetch "$name"
    done
    for name in openssl net_snmp sqlite c_ares googletest; do
        echo "windows-libraries.sh: building $name" >&2
        ("build_$name")
    done
    link_headers
    write_package_files
}

mkdir -p "$cache"
exec 9>"$cache/lock" # one build at a time; another that waited finds the result
flock 9
if [ ! -d "$prefix" ]; then
    work=$prefix.work
    rm -rf "$work"
    mkdir "$work"
    build_all
    mv "$work/prefix" "$prefix"
    rm -rf "$work"
fi
echo "$prefix"
