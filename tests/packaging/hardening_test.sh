#!/usr/bin/env bash
# Reads from the command's file what the system and the compiler do to keep an attack out of its memory.
# usage: hardening_test.sh COMMAND BUILD_TYPE
set -euo pipefail
command=$1 build_type=$2

fail() { # WHY
    echo "$command: $1" >&2
    exit 1
}
header=$(readelf -hW "$command")
segments=$(readelf -lW "$command")
dynamic=$(readelf -dW "$command")
symbols=$(readelf --dyn-syms -W "$command")

grep -q 'Type: *DYN' <<<"$header" || fail "its place in memory is fixed"
grep -q 'FLAGS_1.*PIE' <<<"$dynamic" || fail "it is no position-independent executable"
grep -q GNU_RELRO <<<"$segments" || fail "the tables of the linker stay writable"
grep -q 'FLAGS_1.*NOW' <<<"$dynamic" || fail "functions are bound late, so that their table stays writable"
grep GNU_STACK <<<"$segments" | grep -q 'RW  ' || fail "its stack may be executed"
! grep -q TEXTREL <<<"$dynamic" || fail "its code is changed when it is loaded"

case $build_type in
    Rel* | MinSizeRel)
        grep -q __stack_chk_fail <<<"$symbols" || fail "its stack has no guards"
        grep -q '_chk@' <<<"$symbols" || fail "its calls into the C library don't check the sizes of buffers"
        ;;
esac
echo "hardened: $build_type"
