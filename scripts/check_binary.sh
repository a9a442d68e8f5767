#!/usr/bin/env bash
# Checks that a release program is hardened as it is meant to be: scripts/check_binary.sh PROGRAM
set -euo pipefail
cd "$(dirname "$0")/.."
program=$1
scripts/install.sh binutils

fail() { echo "$program: $*" && exit 1; }
headers=$(readelf --wide --file-header --program-headers --dynamic --symbols "$program")
has() { grep -qE "$1" <<<"$headers"; }

has 'Type: +DYN' || fail "is not position-independent"
! has 'INTERP' || fail "loads libraries when it starts"
has 'GNU_RELRO' || fail "leaves its relocations writable"
has 'FLAGS_1.*NOW' || fail "binds symbols late"
has 'GNU_STACK.* RW ' || fail "has an executable stack"
! has 'LOAD.* RWE ' || fail "has a segment that is both writable and executable"
has '__[a-z]+_chk$' || fail "has no checked library calls"
# The C library has a stack protector in any case: what counts is that the program's own code does.
objdump --disassemble --demangle "$program" |
    awk '/^$/ { own = 0 } /^[0-9a-f]+ <stashkeep::/ { own = 1 } own && /__stack_chk_fail/ { found = 1 } END { exit !found }' ||
    fail "has no stack protector"
echo "$program: static PIE, RELRO, bound at once, no executable stack, stack protector, checked library calls"
