#!/usr/bin/env bash
# Installs what is missing and makes the Debian packages: "package.sh [FOLDER]", by default in build/packages.
# The same sources give the same bytes, in whatever folder they lie: times are those of the last commit.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source=$PWD
folder=${1:-build/packages}

scripts/install-dependencies.sh build-essential cmake ninja-build pkg-config git dpkg-dev file \
    libtinyxml2-dev libsqlite3-dev libjsoncpp-dev libminizip-dev zlib1g-dev libsodium-dev robin-map-dev libcli11-dev \
    python3-dev python3-cffi

SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct 2>/dev/null || stat -c %Y CMakeLists.txt)}
export SOURCE_DATE_EPOCH
mkdir -p "$folder"
folder=$(cd "$folder" && pwd)
maps="-ffile-prefix-map=$folder=build -ffile-prefix-map=$source=."
build() { # KIND OPTION...
    local kind=$1
    shift
    cmake -S "$source" -B "$folder/$kind" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
        -DCMAKE_INSTALL_LIBDIR="lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)" -DARBORIST_BUILD_TESTS=OFF \
        -DCMAKE_CXX_FLAGS="$maps" -DCMAKE_C_FLAGS="$maps" "$@" >"$folder/$kind.log"
    cmake --build "$folder/$kind" --parallel >>"$folder/$kind.log" || { tail -n 30 "$folder/$kind.log" >&2; exit 1; }
}
echo "== Building the static library, the C interface, the Python package and the command"
build static -DBUILD_SHARED_LIBS=OFF
echo "== Building the shared library"
build shared -DBUILD_SHARED_LIBS=ON -DARBORIST_BUILD_TOOLS=OFF

echo "== Making the packages"
projects="$folder/shared;arborist;SHARED;/;$folder/static;arborist;STATIC;/"
(cd "$folder" && rm -f ./*.deb &&
    umask 022 && cpack --config static/CPackConfig.cmake -D "CPACK_INSTALL_CMAKE_PROJECTS=$projects" -B "$folder" >cpack.log) ||
    { cat "$folder/cpack.log" >&2; exit 1; }
rm -rf "$folder/_CPack_Packages"
for package in libarborist0 libarborist-c0 libarborist-dev arborist python3-arborist; do
    ls -1 "$folder/${package}_"*.deb
done
