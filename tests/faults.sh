#!/usr/bin/env bash
# Fault injection: tests/faults.sh PROGRAM [STRACE]. Whatever fails or is interrupted, each medium keeps its length, and
# each of its bytes is the old one or the one that an implant without faults writes. Exits with 77 if strace fails.
# shellcheck disable=SC2086 # commands are words
set -Eeuo pipefail
trap 'echo "FAILED: line $LINENO: $BASH_COMMAND"' ERR
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

failed=0
# fail COMMAND EXPECTED ACTUAL: reports a failure, with the start of what was printed
fail() {
    printf 'FAILED: %s\n  expected: %s\n  actual:   %s\n' "$@"
    awk 'NR <= 20 { print "  printed:  " $0 }' output
    failed=1
}
# runIn FOLDER COMMAND...: what it prints goes to the file "output"; the status 124 means that the time was up
runIn() { (cd "$1" && exec timeout 120 "${@:2}") &>output; }
changedBytes() { (cmp -l "old/$2" "$1/$2" || [ $? = 1 ]) | sort; }

# try STATUS PATTERN COMMAND...: runs COMMAND on fresh media, and checks its exit status, its output and the media
try() {
    local expected=$1 pattern=$2 status=0 medium size others
    shift 2
    rm -rf now/*
    cp old/* now
    runIn now "$@" || status=$?
    # shellcheck disable=SC2053 # it is a pattern
    [[ $status = "$expected" && $(tr -d '\0' <output) = $pattern ]] ||
        fail "$*" "exit status $expected, output $pattern" "exit status $status"
    for medium in disc2.d64 disc3.d64 game.reu; do
        size=$(stat -c %s now/$medium)
        [ "$size" = "$(stat -c %s old/$medium)" ] || fail "$*" "$medium keeps its size" "$size bytes"
        others=$(comm -23 <(changedBytes now $medium) <(changedBytes new $medium) | wc -l)
        [ "$others" = 0 ] || fail "$*" "each byte of $medium is old or new" "$others are neither"
    done
} 2>/dev/null # where the shell reports killed programs

# inject STATUS FAULT CALL "FILE..." COMMAND: COMMAND once for each of its CALLs on the files, which gets the FAULT
inject() {
    local expected=$1 fault=$2 call=$3 files="-P ${4// / -P }" command=$5 calls n
    try 0 '*' "$strace" -o ../calls -e "trace=$call" $files $program $command
    calls=$(grep -c "^$call(" calls) || fail "$command" "calls of $call on $4" "none"
    echo "$fault in each of $calls calls of $call: $command"
    for ((n = 1; n <= calls; n++)); do
        try "$expected" '*' "$strace" -e "inject=$call:$fault:when=$n" $files $program $command
    done
}

implants=("implantd64 savegame.dat disc2.d64 disc3.d64" "implantreu savegame.dat game.reu")
extracts=("extractd64 disc2.d64 disc3.d64 savegame.dat" "extractreu game.reu savegame.dat")
cp "$examples/savegame.dat" old
(cd old && sh "$examples/make_media.sh")
tr '\0-\377' '\1-\377\0' <"$examples/savegame.dat" >old/savegame.dat # unlike all pages in the media
printf '#AsmSectionBegin%s' "$(printf ' include f%.0s' {1..40})" >old/sections
: >'old/generated\f'
cp old/* new
for command in "${implants[@]}"; do
    runIn new $program $command || { fail "$command" "exit status 0" $? && exit 1; }
done

echo "== Writes fail, stop half-way, or are the last thing that the program does"
for command in "${implants[@]}" "${extracts[@]}"; do
    inject 0 error=ENOSPC write "savegame.dat disc2.d64 disc3.d64 game.reu" "$command"
    inject 137 signal=SIGKILL write "savegame.dat disc2.d64 disc3.d64 game.reu" "$command"
    try 0 '*!' bash -c "trap '' XFSZ && ulimit -f 100 && exec $program $command"
done

echo "== Reads fail"
for command in "${implants[@]}" "${extracts[@]}"; do
    inject 1 error=EIO read "disc2.d64 disc3.d64 game.reu" "$command"
done
for command in "${implants[@]}"; do inject 0 error=EIO read savegame.dat "$command"; done
inject 0 error=EIO read game.reu "check game.reu"
inject 1 error=EIO read savegame.dat "check game.reu savegame.dat savegame.dat savegame.dat"

echo "== An image is not readable if the program cannot seek back from its end"
try 1 '*!File:<game.reu> not found or not readable.*' "$strace" -o /dev/null \
    -e inject=/lseek:error=EIO:when=2 -P game.reu $program ${implants[1]}

echo "== Media may not be written, or an included file may not be read"
asNobody=$([ "$(id -u)" -ne 0 ] || echo setpriv --reuid=65534 --regid=65534 --clear-groups)
try 0 $'*!File:<disc2.d64> not creatable.\nFile:<disc3.d64> not creatable.' \
    bash -c "chmod 444 ./* && exec $asNobody $program ${implants[0]}"
try 0 '*!File:<game.reu> not creatable.*' bash -c "chmod 444 ./* && $asNobody $program ${implants[1]} &&
    $asNobody $program extractreu game.reu /dev/null && exec $asNobody $program check savegame.dat"
try 1 '*!include_problem loading flags files*' bash -c "mkdir generated && : >generated/f && chmod 0 'generated\\f' &&
    exec $asNobody $program check savegame.dat /dev/null /dev/null sections"

echo "== If disc 2 cannot be written, disc 3 still is"
try 0 '*!File:</dev/stdin> not creatable.' bash -c "cat disc2.d64 |
    $program implantd64 savegame.dat /dev/stdin disc3.d64 && cmp {.,../new}/disc3.d64"

echo "== Files are pipes or devices, or end before their size says"
try 0 '*!' bash -c "cat ../new/game.reu | $program extractreu /dev/stdin a && cmp a savegame.dat"
try 1 '*!File:</dev/zero> not a valid Zarnis memory image.' $program extractreu /dev/zero a
try 0 '*LAST = *' bash -c "exec $program check savegame.dat \
    <(head -c 200000 /dev/zero && echo ' .flag LAST') <(:) <(:)"
inject 0 retval=0 read disc2.d64 "${extracts[0]}"

echo "== Few files can be open, and little memory is left"
try 0 '*' bash -c "ulimit -n 20 && exec $program check savegame.dat savegame.dat savegame.dat sections"
if (cd now && ulimit -v 300000 && $program) &>/dev/null; then # with AddressSanitizer, that is not enough to start
    head -c 10000000 /dev/zero | tr '\0' '#' >old/comments # of which 120,000 KiB is 12 times the size
    try 0 '*' bash -c "ulimit -v 120000 && exec $program check savegame.dat comments comments comments"
    try 1 '*' bash -c "ulimit -v 300000 && exec $program check savegame.dat /dev/zero no no"
    # Included 40 times, this makes 80 MB of tokens.
    try 0 '*' bash -c "head -c 2000000 /dev/zero | tr '\0' W >'generated\\f' &&
        ulimit -v 70000 && exec $program check savegame.dat sections sections sections"
    # One byte less than what is refused for its size
    try 1 '*mmap*, 2147*ENOMEM*not a valid Zarnis*' bash -c "truncate -s 2147483647 huge &&
        ulimit -v 300000 && exec $strace -e trace=%memory $program extractreu huge a"
fi
exit $failed
