#!/usr/bin/env bash
# Fault injection: tests/faults.sh PROGRAM. Whatever system call fails or is interrupted, each medium keeps its length,
# and each of its bytes is the old one or the one that an implant without faults writes.
# shellcheck disable=SC2086 # commands and lists of options are words
set -euo pipefail
umask 022 # other users must be able to read the media
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$1" "$work/program"
program=../program # whatever blanks are in the full path
chmod 755 "$work" && cd "$work" && mkdir old new now

head -c 196608 /dev/urandom | tee old/disc2.d64 >old/disc3.d64
{ # with pointers to 0x10000, 0x20000, 0x30000 and 0x40000
    head -c 2304 && printf '\0\0\1\0    \0\0\2\0' && head -c 2036 && printf '\0\0\3\0    \0\0\4\0' && head -c 1044212
} </dev/urandom >old/game.reu
head -c 1024 /dev/urandom | tr '=' x >old/savegame.dat # also used as a source, hence without definitions
printf '#AsmSectionBegin%s' "$(printf ' include f%.0s' {1..40})" >old/sections && : >'old/generated\f'
implants=("implantd64 savegame.dat disc2.d64 disc3.d64" "implantreu savegame.dat game.reu")
extracts=("extractd64 disc2.d64 disc3.d64 savegame.dat" "extractreu game.reu savegame.dat")
cp old/* new
for command in "${implants[@]}"; do (cd new && $program $command >/dev/null); done

failed=0
fail() { echo "FAILED: $*" && failed=1; }
# try STATUS COMMAND...: runs COMMAND on fresh media and checks its exit status and the media.
try() {
    local expected=$1 status=0 medium
    shift
    rm -f now/* && cp old/* now && chmod a+rw now/*
    (cd now && exec "$@") &>/dev/null || status=$?
    [ "$status" = "$expected" ] || fail "$*: status $status"
    for medium in disc2.d64 disc3.d64 game.reu; do
        [ "$(stat -c %s "now/$medium")" = "$(stat -c %s "old/$medium")" ] || fail "$*: the length of $medium"
        [ -z "$(comm -23 <(cmp -l {old,now}/"$medium" | sort) <(cmp -l {old,new}/"$medium" | sort))" ] ||
            fail "$*: the bytes of $medium"
    done
} 2>/dev/null # where the shell reports killed programs

# inject STATUS FAULT CALL FILES COMMAND...: COMMAND once for each CALL that it makes on FILES, which gets the FAULT.
inject() {
    local expected=$1 fault=$2 call=$3 files="-P ${4// / -P }" calls n
    shift 4
    calls=$(cp old/* now && cd now && strace -o /dev/stdout -e "trace=$call" $files $program "$@" 2>&1 | grep -c "^$call(")
    echo "$fault in each of $calls calls of $call: $*"
    for ((n = 1; n <= calls; n++)); do
        try "$expected" strace -e "inject=$call:$fault:when=$n" $files $program "$@"
    done
}

for command in "${implants[@]}" "${extracts[@]}"; do
    for fault in "0 error=ENOSPC" "0 error=EIO" "137 signal=SIGKILL"; do
        inject $fault write "savegame.dat disc2.d64 disc3.d64 game.reu" $command
    done
    inject 1 error=EIO read "disc2.d64 disc3.d64 game.reu" $command
done
for command in "${implants[@]}"; do
    inject 0 error=EIO read savegame.dat $command
    try 0 bash -c "trap '' XFSZ && ulimit -f 100 && $program $command | grep -q '!$'" # a write stops half-way
done
inject 0 error=EIO read game.reu check game.reu
inject 1 error=EIO read savegame.dat check game.reu savegame.dat savegame.dat savegame.dat
asNobody=$([ "$(id -u)" -ne 0 ] || echo setpriv --reuid=65534 --regid=65534 --clear-groups)
try 0 bash -c "chmod 444 ./* && $asNobody $program ${implants[0]} | tr '\\n' ' ' |
    grep -q '!File:<disc2.d64> not creatable. File:<disc3.d64> not creatable. $'"
try 0 bash -c "chmod 444 ./* && $asNobody $program ${implants[1]} && $asNobody $program extractreu game.reu /dev/null &&
    ulimit -n 20 && exec $asNobody $program check savegame.dat savegame.dat savegame.dat sections" # closes its files
# Pipes and devices as media, and a file that shrinks after its size has been read
try 0 bash -c "cat disc2.d64 | $program implantd64 savegame.dat /dev/stdin disc3.d64 |
    grep -q '!File:</dev/stdin> not creatable.$' && cmp {.,../new}/disc3.d64"
try 0 bash -c "cat game.reu | $program extractreu /dev/stdin a && $program extractreu game.reu b && cmp a b"
try 0 bash -c "$program extractreu /dev/zero a | grep -q '!File:</dev/zero> not a valid'"
try 0 bash -c "head -c 1000 disc2.d64 >a &&
    exec strace -o /dev/null -P a -e inject=lseek:retval=196608:when=1 $program extractd64 a disc3.d64 b"

# Out of memory, unless the program needs more to start (as with AddressSanitizer)
if (cd now && ulimit -v 300000 && $program) &>/dev/null; then
    head -c 25000000 /dev/zero | tr '\0' '#' >old/comments # of which 300,000 KiB is 12 times the size
    try 0 bash -c "ulimit -v 300000 && exec $program check savegame.dat comments comments comments"
    try 1 bash -c "ulimit -v 300000 && exec $program check savegame.dat /dev/zero no no"
    try 1 bash -c "truncate -s 1G huge && ulimit -v 300000 && exec $program extractreu huge savegame.dat"
fi
exit $failed
