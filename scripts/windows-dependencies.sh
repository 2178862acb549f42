#!/usr/bin/env bash
# Cross-builds the libraries that arborist stands on for 64-bit Windows, out of Debian's source packages, into
# build/windows-dependencies/root; those that are headers alone are copied. The machine's own lists of packages stay as they are: apt gets lists, a cache and
# sources of its own in the build folder.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
checkout=$PWD

scripts/install-dependencies.sh build-essential cmake ninja-build pkg-config dpkg-dev tcl \
    gcc-mingw-w64-x86-64-posix g++-mingw-w64-x86-64-posix robin-map-dev libcli11-dev

folder=$checkout/build/windows-dependencies
root=$folder/root
jobs=${JOBS:-$(nproc)}
toolchain=$checkout/cmake/windows.cmake
packages=(zlib minizip sqlite3 tinyxml2 libjsoncpp libsodium googletest)

# The sources of the same repositories that the machine takes Debian's packages from, the main one first: mirrors of the
# security updates lack the older sources.
fetch() {
    mkdir -p "$folder"/apt/lists/partial "$folder"/apt/cache/archives/partial "$folder/sources"
    apt-get indextargets --format 'deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $(REPO_URI) $(RELEASE) $(COMPONENT)' \
        'Created-By: Packages' 'Origin: Debian' | sort -ru >"$folder/apt/sources.list"
    cat >"$folder/apt/apt.conf" <<END
Dir::Etc::sourcelist "$folder/apt/sources.list";
Dir::Etc::sourceparts "/dev/null";
Dir::State::lists "$folder/apt/lists";
Dir::Cache "$folder/apt/cache";
APT::Sandbox::User "$(id -un)";
END
    export APT_CONFIG=$folder/apt/apt.conf
    apt-get update -q
    (cd "$folder/sources" && apt-get source -q --only-source "${packages[@]}")
    unset APT_CONFIG
}

# The unpacked source of a package, which has the version in its name.
source_of() { # PACKAGE
    local found=("$folder/sources/$1"-*/)
    echo "${found[0]}"
}

with_cmake() { # PACKAGE OPTION...
    local package=$1
    shift
    cmake -S "$(source_of "$package")" -B "$folder/build/$package" -G Ninja -Wno-dev \
        -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_INSTALL_PREFIX="$root" -DCMAKE_INSTALL_LIBDIR=lib \
        -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF "$@"
    cmake --build "$folder/build/$package" --parallel "$jobs"
    cmake --install "$folder/build/$package" >/dev/null
}

archive() { # LIBRARY SOURCE-FOLDER FLAGS FILE...
    local library=$1 sources=$2 flags=$3 objects=$folder/build/$1
    shift 3
    mkdir -p "$objects"
    # shellcheck disable=SC2016
    printf '%s\n' "$@" | xargs -P "$jobs" -I '{}' bash -c 'object=$4/${3//\//_}.o
        exec x86_64-w64-mingw32-gcc-posix -O2 $1 -c "$2/$3.c" -o "$object"' \
        compile "$flags -I$root/include" "$sources" '{}' "$objects"
    rm -f "$root/lib/lib$library.a"
    x86_64-w64-mingw32-ar rcs "$root/lib/lib$library.a" "$objects"/*.o
}

build_zlib() {
    local sources
    sources=$(source_of zlib)
    archive z "$sources" "" adler32 compress crc32 deflate gzclose gzlib gzread gzwrite infback inffast inflate \
        inftrees trees uncompr zutil
    cp "$sources/zlib.h" "$sources/zconf.h" "$root/include/"
}

build_minizip() {
    local sources
    sources=$(source_of minizip)
    archive minizip "$sources" "" ioapi iowin32 unzip zip
    mkdir -p "$root/include/minizip"
    cp "$sources"/{ioapi,iowin32,unzip,zip}.h "$root/include/minizip/"
    cat >"$root/lib/pkgconfig/minizip.pc" <<END
prefix=$root
Name: minizip
Description: Zip archives
Version: 1.1
Libs: -L\${prefix}/lib -lminizip -lz
Cflags: -I\${prefix}/include
END
}

# The source package has the single files of which the build makes one.
build_sqlite3() {
    mkdir -p "$folder/build/sqlite3"
    (cd "$folder/build/sqlite3" && "$(source_of sqlite3)/configure" --quiet --disable-tcl && make --quiet sqlite3.c)
    archive sqlite3 "$folder/build/sqlite3" "-DSQLITE_ENABLE_COLUMN_METADATA -DSQLITE_THREADSAFE=1" sqlite3
    cp "$folder/build/sqlite3/sqlite3.h" "$root/include/"
}

# Without the build files that Debian's source lacks; what is written for certain processors is left out.
build_sodium() {
    local sources files
    sources=$(source_of libsodium)src/libsodium
    cp -r "$sources"/include/{sodium.h,sodium} "$root/include/"
    cp "$(source_of libsodium)builds/msvc/version.h" "$root/include/sodium/"
    mapfile -t files < <(cd "$sources" && find . -name '*.c' -printf '%P\n' | sed 's/\.c$//' | sort)
    archive sodium "$sources" "-DCONFIGURED=1 -DSODIUM_STATIC -I$root/include/sodium" "${files[@]}"
    cat >"$root/lib/pkgconfig/libsodium.pc" <<END
prefix=$root
Name: libsodium
Description: Digests
Version: 1.0.18
Libs: -L\${prefix}/lib -lsodium
Cflags: -I\${prefix}/include -DSODIUM_STATIC
END
}

# Headers alone, which are the same for every system.
copy_headers() {
    mkdir -p "$root/share/cmake"
    cp -r /usr/include/CLI /usr/include/tsl "$root/include/"
    cp -r /usr/share/cmake/CLI11 /usr/share/cmake/tsl-robin-map "$root/share/cmake/"
}

if [ ! -e "$folder/done" ]; then
    echo "== Fetching the sources of ${packages[*]}"
    fetch
    mkdir -p "$root/lib/pkgconfig" "$root/include"
    copy_headers
    build_zlib
    build_minizip
    build_sqlite3
    build_sodium
    with_cmake tinyxml2 -DBUILD_TESTING=OFF
    with_cmake libjsoncpp -DJSONCPP_WITH_TESTS=OFF -DJSONCPP_WITH_POST_BUILD_UNITTEST=OFF -DBUILD_STATIC_LIBS=ON \
        -DBUILD_OBJECT_LIBS=OFF
    with_cmake googletest
    touch "$folder/done"
fi
echo "== The libraries for Windows are in ${root#"$checkout/"}"
