#!/usr/bin/env bash
# Makes the packages, installs them into a clean root of Debian, and builds and runs the examples there:
# "test-packages.sh [FOLDER]", by default in build/test-packages; with --once before FOLDER in eight minutes, otherwise in
# twice that, as it makes the packages a second time, in another folder, and compares the bytes. Needs network for the root.
# Where no clean root can be made, it says so, and tests what the packages hold on this machine.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
is_once=
if [ "${1:-}" = --once ]; then
    is_once=1
    shift
fi
folder=${1:-build/test-packages}
suite=bookworm
scripts/install-dependencies.sh mmdebstrap sqlite3 ninja-build

rm -rf "$folder"
mkdir -p "$folder"
folder=$(cd "$folder" && pwd)
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH

copy_sources() { # TARGET
    mkdir -p "$1"
    git ls-files -z --cached --others --exclude-standard | xargs -0 cp --parents -t "$1"
}
one=$folder/one/arborist
other=$folder/the-other/place-of-the-sources
copy_sources "$one"

echo "== The packages"
"$one/scripts/package.sh" "$folder/one/packages"
if [ -z "$is_once" ]; then
    echo "== The same sources in another folder"
    copy_sources "$other"
    "$other/scripts/package.sh" "$folder/the-other/packages"
    for package in "$folder"/one/packages/*.deb; do
        cmp "$package" "$folder/the-other/packages/$(basename "$package")"
    done
    echo "the packages are the same, byte by byte:"
fi
(cd "$folder/one/packages" && sha256sum ./*.deb)

# What is carried into the root.
mkdir -p "$folder/carried"
cp -r "$one/examples" "$one/tests/packaging" "$folder/carried"
cp "$folder"/one/packages/*.deb "$folder/carried"

in_root() { # the tests, run where the packages are installed; COMMAND... installs the libraries that a static host links
    cat <<'SCRIPT'
#!/usr/bin/env bash
set -euo pipefail
carried=$1 prefix=$2
shift 2
export TZ="CET-1CEST,M3.5.0,M10.5.0/3"
work=$(mktemp -d)
mkdir -p "$work/tests" && cp -r "$carried/examples" "$work/examples"
command=$prefix/bin/arborist
echo "== $("$command" --version | head -n 1)"
"$work/examples/laptop/prepare.sh" "$command" "$work/laptop"
cp -r "$work/laptop" "$work/first"
"$command" detect "$work/first" >"$work/detected.txt" 2>"$work/warnings.txt"
grep -q 'LAPTOP_POWER.*FAULT' "$work/detected.txt"
for compilers in "gcc g++" "clang clang++"; do
    read -r CC CXX <<<"$compilers"
    export CC CXX
    echo "== Shared, $CXX"
    "$carried/packaging/examples_test.sh" "$work" "$prefix" "$work/laptop" "$work/shared-$CC" "$command" cpp repair c
done
echo "== Python"
mkdir "$work/fleet"
cp -r "$work/laptop" "$work/python-laptop"
python3 -B "$work/examples/python-host/fleet.py" "$work/python-laptop" "$work/fleet" >"$work/fleet.txt"
diff -u "$work/examples/python-host/expected.txt" "$work/fleet.txt"
echo "python host: as expected"
"$@"
for compilers in "gcc g++" "clang clang++"; do
    read -r CC CXX <<<"$compilers"
    export CC CXX
    echo "== Static, $CXX"
    STATIC=--static "$carried/packaging/examples_test.sh" "$work" "$prefix" "$work/laptop" "$work/static-$CC" "$command" \
        cpp repair
done
rm -rf "$work"
SCRIPT
}
in_root >"$folder/carried/in_root.sh"
chmod +x "$folder/carried/in_root.sh"

echo "== A clean root of Debian $suite"
if mmdebstrap --variant=minbase --format=null --include=g++,clang,cmake,ninja-build,pkg-config,python3,sqlite3 \
    --customize-hook="cp -r '$folder/carried' \"\$1/carried\"" \
    --customize-hook='chroot "$1" sh -c "apt-get update -q && apt-get install -y -q --no-install-recommends /carried/*.deb"' \
    --customize-hook='chroot "$1" /carried/in_root.sh /carried /usr apt-get install -y -q --no-install-recommends libtinyxml2-dev libsqlite3-dev libjsoncpp-dev libminizip-dev zlib1g-dev' \
    "$suite" - >"$folder/root.log" 2>&1; then
    grep -E '^(==|.*: as expected)' "$folder/root.log"
    echo "installed, built and run in a clean root"
    exit 0
fi
tail -n 40 "$folder/root.log" >&2
if grep -q '^== arborist' "$folder/root.log"; then
    echo "the packages failed in the clean root" >&2
    exit 1
fi
echo "== NO CLEAN ROOT could be made here (above: why). What follows was installed with dpkg --root on this machine"
echo "   and uses this machine's compilers and libraries: a dependency that a package doesn't name is not found this way."
root=$folder/root
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
touch "$root/var/lib/dpkg/status"
dpkg --root="$root" --force-depends --force-not-root --force-script-chrootless -i "$folder"/carried/*.deb >"$folder/dpkg.log" 2>&1
export LD_LIBRARY_PATH=$root/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH) PKG_CONFIG_SYSROOT_DIR=$root
export PYTHONPATH=$root/usr/lib/python3/dist-packages
"$folder/carried/in_root.sh" "$folder/carried" "$root/usr" true
