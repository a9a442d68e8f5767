#!/usr/bin/env bash
# Benchmarks whole runs of stashkeep beside other programs, on files in memory, and then the functions in bench/.
# Ratios are of median times: below 1, stashkeep is faster.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/page.sh >/dev/null
scripts/install.sh chromium cmake g++ hyperfine libbenchmark-dev libgtest-dev ninja-build python3 time
cmake --preset bench >/dev/null
cmake --build --preset bench >/dev/null
project=$PWD
bench=$PWD/out/bench/bench
work=$(mktemp -d -p /dev/shm)
trap 'rm -rf "$work"' EXIT
cp examples/savegame.dat bench/{implant.py,fill.awk} "$bench/least" out/bench/stashkeep "$work"
cd "$work"

# lines COUNT FORMAT: prints COUNT lines; each has two numbers for the FORMAT
lines() {
    awk "BEGIN { for (i = 0; i < $1; i++) printf \"$2\\n\", i, i % 200 }"
}
lines 700 '.flag FLAG_CHEST_TAKEN_%d' >flags.asm
lines 45 'COLLECTABLE_THING_%d = %d' >scr_collectableids.asm
mkdir generated
lines 1000 'WORLDFLAG_ROOM_VISITED_%d = WORLDFLAGS_START + %d' >generated/world.inc
printf '#AsmSectionBegin\ninclude "world.inc"\n#AsmSectionEnd\n' >scr_globaldefines.asm
lines 550000 'COLLECTABLE_THING_%06d = %d' >many_ids.asm
lines 890000 '.flag FLAG_%07d' >many_flags.asm
for count in 20000 50000; do
    mkdir "flags$count"
    lines "$count" '.flag FLAG_%d' >"flags$count/scr_flags.asm"
done
# A memory image of 16 MiB with pointers to 0x10000, 0x20000, 0x30000 and 0x40000, where no savegame is
{
    head -c 2304
    printf '\0\0\1\0    \0\0\2\0'
    head -c 2036
    printf '\0\0\3\0    \0\0\4\0'
    head -c 262144 /dev/zero
    head -c 16510708
} </dev/urandom >game.reu
cp game.reu copy.reu
extract="./stashkeep extractreu game.reu out.dat"
check="./stashkeep check savegame.dat"
implant="./stashkeep implantreu savegame.dat copy.reu"
checkSources="$check flags.asm scr_collectableids.asm scr_globaldefines.asm"
manyIds="./stashkeep check savegame.dat /dev/null many_ids.asm /dev/null"
manyFlags="./stashkeep check savegame.dat many_flags.asm /dev/null /dev/null"

# heading TITLE: begins a table
heading() {
    printf '%s:\n\n' "$1"
    printf '| run | against | median | ratio |\n'
    printf '|---|---|---|---|\n'
}
# row DIGITS COMMAND OTHER_COMMAND SECONDS OTHER_SECONDS: 0 if there is no other command
row() {
    awk -v digits="$1" -v own="$2" -v other="$3" -v time="$4" -v otherTime="$5" \
        'BEGIN { printf "| `%s` | `%s` | %.*f ms | %s |\n", own, other, digits, 1000 * time,
            otherTime ? sprintf("%.2f", time / otherTime) : "-" }'
}
# medians of the last measurement, in seconds: that of COMMAND, then that of OTHER_COMMAND
medians() {
    tail -n 2 times.csv | cut -d , -f 4 | paste -s -d ' '
}
# compare RUNS COMMAND OTHER_COMMAND: run after run
compare() {
    local own other
    hyperfine -N --warmup 3 --runs "$1" --export-csv times.csv "$2" "$3" >/dev/null 2>&1
    read -r own other < <(medians)
    row 2 "$2" "$3" "$own" "$other"
}
# compareAfterPause COMMAND OTHER_COMMAND: single runs in turn, each after 10 s without work
compareAfterPause() {
    local own other
    for _ in {1..9}; do
        hyperfine -N --runs 1 --prepare 'sleep 10' --export-csv times.csv "$1" "$2" >/dev/null 2>&1
        medians
    done >pairs
    own=$(cut -d ' ' -f 1 pairs | sort -g | sed -n 5p)
    other=$(cut -d ' ' -f 2 pairs | sort -g | sed -n 5p)
    row 1 "$1" "$2" "$own" "$other"
}
# comparePage: the page in Chromium with the runs of the program of which its work consists
comparePage() {
    local name seconds runs native
    node "$project/bench/page.mjs" >page_times
    hyperfine -N --warmup 3 --runs 200 --export-csv times.csv -n implantreu "$implant" -n extractreu "$extract" \
        -n check "$check" -n check-sources "$checkSources" >/dev/null 2>&1
    while IFS=$'\t' read -r name seconds runs; do
        native=$(tr ' ' '\n' <<<"$runs" |
            awk -F , 'NR == FNR { time[$1] = $4; next } { sum += time[$1] } END { print sum + 0 }' times.csv -)
        row 1 "$name" "${runs:--}" "$seconds" "$native"
    done <page_times
}
heading "Run after run"
compare 2000 ./stashkeep true
compare 2000 "$check" true
compare 2000 "$checkSources" true
compare 200 "$extract" "./least game.reu"
compare 200 "$extract" "cat game.reu"
compare 100 "$implant" "cp game.reu copy.reu"
compare 100 "$implant" "python3 implant.py"
compare 30 "$manyIds" "wc many_ids.asm"
compare 30 "$manyIds" "awk -f fill.awk many_ids.asm"
compare 30 "$manyFlags" "wc many_flags.asm"
comparePage
echo
heading "Once, after a pause"
compareAfterPause "$extract" "./least game.reu"
compareAfterPause "$manyIds" "awk -f fill.awk many_ids.asm"
printf '\nMemory:\n\n'
for run in "$extract" "$manyIds" "$manyFlags"; do
    # shellcheck disable=SC2086 # the run is words
    env time -o memory -f "%M KiB: %C" $run >/dev/null
    cat memory
done
"$bench/stashkeep_bench"
