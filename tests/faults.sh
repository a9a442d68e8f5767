#!/usr/bin/env bash
# What becomes of media under faults of the system: tests/faults.sh PROGRAM. Whatever fails, every medium keeps its
# length, and each of its bytes is the old one or the one that an implant without faults would have put there.
set -euo pipefail

if ! command -v strace >/dev/null; then
    echo "skipped: strace is not installed"
    exit 77
fi
program=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
chmod 755 "$work" && cd "$work" && mkdir old new now

media=(disc2.d64 disc3.d64 game.reu)
head -c 196608 /dev/urandom >old/disc2.d64
head -c 196608 /dev/urandom >old/disc3.d64
head -c 1048576 /dev/urandom >old/game.reu
poke() { printf '%b' "$2" | dd of=old/game.reu bs=1 seek="$1" conv=notrunc status=none; }
poke 2304 '\0\0\01\0' && poke 2312 '\0\0\02\0' && poke 4352 '\0\0\03\0' && poke 4360 '\0\0\04\0'
head -c 1024 /dev/urandom >old/savegame.dat
cp old/* new
"$program" implantd64 old/savegame.dat new/disc2.d64 new/disc3.d64 >/dev/null
"$program" implantreu old/savegame.dat new/game.reu >/dev/null

passed=0 failed=0
# Counts a fault by its name, the status (or text) that it had to give, and the one that it gave.
judge() {
    local wrong="" medium
    [ "$2" = "$3" ] || wrong=" status $3, not $2;"
    for medium in "${media[@]}"; do
        [ "$(stat -c %s "now/$medium")" = "$(stat -c %s "old/$medium")" ] || wrong+=" $medium has another length;"
        [ -z "$(comm -23 <(cmp -l {old,now}/"$medium" | sort) <(cmp -l {old,new}/"$medium" | sort))" ] ||
            wrong+=" $medium has strange bytes;"
    done
    if [ -z "$wrong" ]; then passed=$((passed + 1)); else failed=$((failed + 1)); fi
    printf '%-4s %s%s\n' "$([ -z "$wrong" ] && echo ok || echo FAIL)" "$1" "$wrong"
}

refresh() { rm -f now/* && cp old/* now; }

# inject STATUS FAULT CALL FILES COMMAND...: COMMAND once for each CALL that it makes on FILES, which then has the FAULT.
inject() {
    local expected=$1 fault=$2 call=$3 files=$4 status n=0
    shift 4
    while refresh && n=$((n + 1)); do
        status=0
        # shellcheck disable=SC2086 # the files are words
        (cd now && exec strace -o ../log ${files//@/-P } -e "inject=$call:$fault:when=$n" "$program" "$@" &>../printed) ||
            status=$?
        grep -qE 'INJECTED|killed by' log || break
        judge "$fault at $call $n of $*" "$expected" "$status"
    done
    [ $n -gt 1 ] || judge "no $call was met by $*" 1 0
} 2>/dev/null # where the shell tells of killed programs

onMedia="${media[*]/#/@}"
implants=("implantd64 savegame.dat disc2.d64 disc3.d64" "implantreu savegame.dat game.reu")
extracts=("extractd64 disc2.d64 disc3.d64 savegame.dat" "extractreu game.reu savegame.dat")
# shellcheck disable=SC2086 # the commands are words
for command in "${implants[@]}" "${extracts[@]}"; do
    inject 0 error=ENOSPC write "@savegame.dat $onMedia" $command
    inject 0 error=EIO write "@savegame.dat $onMedia" $command
    inject 137 signal=SIGKILL write "@savegame.dat $onMedia" $command
    inject 1 error=EIO read "$onMedia" $command
done
# shellcheck disable=SC2086
for command in "${implants[@]}"; do inject 0 error=EIO read @savegame.dat $command; done
inject 1 error=EIO read @savegame.dat check game.reu savegame.dat savegame.dat savegame.dat
for limit in 1 100; do # KiB
    for command in "${implants[@]}"; do
        refresh && status=0
        # shellcheck disable=SC2086
        (trap '' XFSZ && ulimit -f "$limit" && cd now && "$program" $command >/dev/null) || status=$?
        judge "a file-size limit of $limit KiB for $command" 0 "$status"
    done
done
# A pipe can be read to its end, but not be rewritten; the other disc still is.
refresh && printed=$(cd now && timeout 10 "$program" implantd64 savegame.dat /dev/stdin disc3.d64 < <(cat disc2.d64))
cmp -s {now,new}/disc3.d64 || printed+=" disc3.d64 is not rewritten"
judge "a pipe for a medium" "File:</dev/stdin> not creatable." "${printed#*builds!}"
# Memory that runs out, where the program can start with so little (under AddressSanitizer it cannot).
truncate -s 1G huge
if (ulimit -v 300000 && "$program" >/dev/null 2>&1); then
    for command in "check savegame.dat /dev/zero no no" "extractreu ../huge savegame.dat"; do
        refresh && status=0
        # shellcheck disable=SC2086
        (ulimit -v 300000 && cd now && "$program" $command >/dev/null) || status=$?
        judge "little memory for $command" 1 "$status"
    done
fi
# Without the rights that root has over files.
asNobody=()
[ "$(id -u)" -ne 0 ] || asNobody=(setpriv --reuid=65534 --regid=65534 --clear-groups)
for case in "0444 0" "0000 1"; do
    read -r mode expected <<<"$case"
    for command in "${implants[@]}"; do
        refresh && chmod a+rw now/* && chmod "$mode" now/disc2.d64 now/game.reu && status=0
        # shellcheck disable=SC2086
        (cd now && "${asNobody[@]}" "$program" $command >/dev/null) || status=$?
        judge "mode $mode for $command" "$expected" "$status"
    done
done
printf '%d passed, %d failed\n' "$passed" "$failed"
[ "$failed" -eq 0 ]
