#!/usr/bin/env bash
# Fault injection: tests/faults.sh PROGRAM [STRACE]. Whatever fails or is interrupted, each medium keeps its length, and
# each of its bytes is the old one or the one that an implant without faults writes. Exits with 77 if strace fails.
# shellcheck disable=SC2086 # commands are words
set -euo pipefail
umask 022 # other users must be able to read the media

examples=$(realpath "$(dirname "$0")/../examples")
strace=${2:-strace}
if ! "$strace" -o /dev/null true; then
    echo "Skipped: strace is missing or not permitted."
    exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$1" "$work/program"
program=../program # whatever blanks are in the full path
chmod 755 "$work"
cd "$work"
mkdir old new now

implants=("implantd64 savegame.dat disc2.d64 disc3.d64" "implantreu savegame.dat game.reu")
extracts=("extractd64 disc2.d64 disc3.d64 savegame.dat" "extractreu game.reu savegame.dat")
cp "$examples/savegame.dat" old
(cd old && sh "$examples/make_media.sh")
tr '\0-\377' '\1-\377\0' <"$examples/savegame.dat" >old/savegame.dat # unlike all pages in the media
cp old/* new
for command in "${implants[@]}"; do (cd new && $program $command >/dev/null); done

failed=0
fail() { echo "FAILED: $*" && failed=1; }
lengthIsKept() { [ "$(stat -c %s "now/$1")" = "$(stat -c %s "old/$1")" ]; }
changedBytes() { cmp -l "old/$2" "$1/$2" | sort; }
bytesAreOldOrNew() { [ -z "$(comm -23 <(changedBytes now "$1") <(changedBytes new "$1"))" ]; }

# try STATUS COMMAND...: runs COMMAND on fresh media, and checks its exit status and the media
try() {
    local expected=$1 status=0 medium
    shift
    rm -f now/*
    cp old/* now
    (cd now && exec "$@") &>/dev/null || status=$?
    [ "$status" = "$expected" ] || fail "$*: exit status $status instead of $expected"
    for medium in disc2.d64 disc3.d64 game.reu; do
        lengthIsKept $medium || fail "$*: the length of $medium has changed"
        bytesAreOldOrNew $medium || fail "$*: $medium has bytes that are neither old nor new"
    done
} 2>/dev/null # where the shell reports killed programs

# inject STATUS FAULT CALL "FILE..." COMMAND: COMMAND once for each CALL that it makes on the files, which gets the FAULT
inject() {
    local expected=$1 fault=$2 call=$3 files="-P ${4// / -P }" command=$5 calls n
    calls=$(cp old/* now && cd now && "$strace" -o /dev/stdout -e "trace=$call" $files $program $command 2>&1 |
        grep -c "^$call(")
    echo "$fault in each of $calls calls of $call: $command"
    for ((n = 1; n <= calls; n++)); do
        try "$expected" "$strace" -e "inject=$call:$fault:when=$n" $files $program $command
    done
}

echo "== Writes fail, stop half-way, or are the last thing that the program does"
for command in "${implants[@]}" "${extracts[@]}"; do
    inject 0 error=ENOSPC write "savegame.dat disc2.d64 disc3.d64 game.reu" "$command"
    inject 137 signal=SIGKILL write "savegame.dat disc2.d64 disc3.d64 game.reu" "$command"
    try 0 bash -c "trap '' XFSZ && ulimit -f 100 && $program $command | grep -q '!$'"
done

echo "== Reads fail"
for command in "${implants[@]}" "${extracts[@]}"; do
    inject 1 error=EIO read "disc2.d64 disc3.d64 game.reu" "$command"
done
for command in "${implants[@]}"; do inject 0 error=EIO read savegame.dat "$command"; done
inject 0 error=EIO read game.reu "check game.reu"
inject 1 error=EIO read savegame.dat "check game.reu savegame.dat savegame.dat savegame.dat"

echo "== Media may not be written"
asNobody=$([ "$(id -u)" -ne 0 ] || echo setpriv --reuid=65534 --regid=65534 --clear-groups)
try 0 bash -c "chmod 444 ./* && $asNobody $program ${implants[0]} | tr '\\n' ' ' |
    grep -q '!File:<disc2.d64> not creatable. File:<disc3.d64> not creatable. $'"
try 0 bash -c "chmod 444 ./* && $asNobody $program ${implants[1]} && $asNobody $program extractreu game.reu /dev/null &&
    exec $asNobody $program check savegame.dat"

echo "== Files are pipes or devices, or end before their size says"
try 0 bash -c "cat disc2.d64 | $program implantd64 savegame.dat /dev/stdin disc3.d64 |
    grep -q '!File:</dev/stdin> not creatable.$' && cmp {.,../new}/disc3.d64"
try 0 bash -c "cat ../new/game.reu | $program extractreu /dev/stdin a && cmp a savegame.dat"
try 0 bash -c "$program extractreu /dev/zero a | grep -q '!File:</dev/zero> not a valid'"
try 0 bash -c "$program check savegame.dat <(head -c 200000 /dev/zero && echo ' .flag LAST') <(:) <(:) | grep -q 'LAST = '"
inject 0 retval=0 read disc2.d64 "${extracts[0]}"

echo "== Few files can be open, and little memory is left"
printf '#AsmSectionBegin%s' "$(printf ' include f%.0s' {1..40})" >old/sections
: >'old/generated\f'
try 0 bash -c "ulimit -n 20 && exec $program check savegame.dat savegame.dat savegame.dat sections"
if (cd now && ulimit -v 300000 && $program) &>/dev/null; then # with AddressSanitizer, that is not enough to start
    head -c 25000000 /dev/zero | tr '\0' '#' >old/comments # of which 300,000 KiB is 12 times the size
    try 0 bash -c "ulimit -v 300000 && exec $program check savegame.dat comments comments comments"
    try 1 bash -c "ulimit -v 300000 && exec $program check savegame.dat /dev/zero no no"
    try 0 bash -c "truncate -s 2147483647 huge && ulimit -v 300000 && # one byte less than what is refused for its size
        $strace -e trace=%memory $program extractreu huge a 2>&1 | grep -qz 'mmap.*, 2147.*ENOMEM.*not a valid Zarnis'"
fi
exit $failed
