#!/usr/bin/env bash
# What becomes of media under faults of the system: tests/faults.sh PROGRAM. Whatever fails, every medium keeps its
# length, and each of its bytes is the old one or the one that an implant without faults would have put there.
# shellcheck disable=SC2086 # commands and lists of files are words
set -euo pipefail
umask 022 # others have to reach the media

command -v strace >/dev/null || { echo "skipped: strace is not installed" && exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
program=$work/program # by a path without blanks
cp "$1" "$program"
chmod 755 "$work" && cd "$work" && mkdir old new now

media=(disc2.d64 disc3.d64 game.reu)
head -c 196608 /dev/urandom | tee old/disc2.d64 >old/disc3.d64
{ # with pointers to 0x10000, 0x20000, 0x30000 and 0x40000
    head -c 2304 && printf '\0\0\1\0    \0\0\2\0' && head -c 2036 && printf '\0\0\3\0    \0\0\4\0' && head -c 1044212
} </dev/urandom >old/game.reu
head -c 1024 /dev/urandom | tr '=' x >old/savegame.dat # no definition by chance, where it serves as a source
cp old/* new
"$program" implantd64 old/savegame.dat new/disc2.d64 new/disc3.d64 >/dev/null
"$program" implantreu old/savegame.dat new/game.reu >/dev/null

passed=0 failed=0
# try NAME STATUS COMMAND...: runs COMMAND on fresh media and looks at its status, and at what became of the media.
try() {
    local name=$1 expected=$2 status=0 wrong="" medium
    shift 2
    rm -f now/* && cp old/* now && chmod a+rw now/*
    (cd now && exec "$@") &>printed || status=$?
    [ "$status" = "$expected" ] || wrong=" status $status, not $expected;"
    for medium in "${media[@]}"; do
        [ "$(stat -c %s "now/$medium")" = "$(stat -c %s "old/$medium")" ] || wrong+=" $medium has another length;"
        [ -z "$(comm -23 <(cmp -l {old,now}/"$medium" | sort) <(cmp -l {old,new}/"$medium" | sort))" ] ||
            wrong+=" $medium has strange bytes;"
    done
    if [ -z "$wrong" ]; then passed=$((passed + 1)); else failed=$((failed + 1)); fi
    echo "$([ -z "$wrong" ] && echo ok || echo FAILED) $name$wrong"
} 2>/dev/null # where the shell tells of killed programs

# inject STATUS FAULT CALL FILES COMMAND...: COMMAND once for each CALL that it makes on FILES, which then has the FAULT.
inject() {
    local expected=$1 fault=$2 call=$3 files=${4//@/-P } count n
    shift 4
    count=$(rm -f now/* && cp old/* now && cd now && strace -o /dev/stdout -e "trace=$call" $files "$program" "$@" 2>&1 | grep -c "^$call(")
    for ((n = 1; n <= count; n++)); do
        try "$fault at $call $n of $*" "$expected" strace -e "inject=$call:$fault:when=$n" $files "$program" "$@"
    done
}

onMedia="${media[*]/#/@}"
implants=("implantd64 savegame.dat disc2.d64 disc3.d64" "implantreu savegame.dat game.reu")
extracts=("extractd64 disc2.d64 disc3.d64 savegame.dat" "extractreu game.reu savegame.dat")
for command in "${implants[@]}" "${extracts[@]}"; do
    inject 0 error=ENOSPC write "@savegame.dat $onMedia" $command
    inject 0 error=EIO write "@savegame.dat $onMedia" $command
    inject 137 signal=SIGKILL write "@savegame.dat $onMedia" $command
    inject 1 error=EIO read "$onMedia" $command
done
asNobody=$([ "$(id -u)" -ne 0 ] || echo setpriv --reuid=65534 --regid=65534 --clear-groups)
for command in "${implants[@]}"; do
    inject 0 error=EIO read @savegame.dat $command
    try "a file-size limit for $command" 0 bash -c "trap '' XFSZ && ulimit -f 100 && exec $program $command"
    try "no right to write for $command" 0 bash -c "chmod 444 disc2.d64 game.reu && exec $asNobody $program $command"
    try "no right to read for $command" 1 bash -c "chmod 0 disc2.d64 game.reu && exec $asNobody $program $command"
done
try "a disc beside one that cannot be written" 0 bash -c \
    "chmod 444 disc2.d64 && $asNobody $program ${implants[0]} | grep -q '!File:<disc2.d64> not creatable.$' && cmp {.,../new}/disc3.d64"
try "a pipe for a medium" 0 bash -c "cat disc2.d64 | $program implantd64 savegame.dat /dev/stdin disc3.d64 |
    grep -q '!File:</dev/stdin> not creatable.$' && cmp {.,../new}/disc3.d64"
inject 1 error=EIO read @savegame.dat check game.reu savegame.dat savegame.dat savegame.dat
# Memory that runs out, where the program can start with so little (under AddressSanitizer it cannot).
if (ulimit -v 300000 && "$program") &>/dev/null; then
    try "an endless file" 1 bash -c "ulimit -v 300000 && exec $program check savegame.dat /dev/zero no no"
    head -c 60000000 /dev/zero | tr '\0' '#' >'old/generated\many'
    head -c 15000000 'old/generated\many' >'old/generated\few'
    printf '#AsmSectionBegin\ninclude few\ninclude many\n' >old/sections
    try "few words in a long file" 0 bash -c "ulimit -v 300000 && exec $program check savegame.dat generated*many /dev/null /dev/null"
    try "few words in one file after the other" 0 bash -c \
        "ulimit -v 160000 && exec $program check savegame.dat /dev/null /dev/null sections"
    rm old/generated* old/sections
    try "a huge image" 1 bash -c "truncate -s 1G huge && ulimit -v 300000 && exec $program extractreu huge savegame.dat"
fi
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
