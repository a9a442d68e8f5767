#!/usr/bin/env bash
# Benchmarks whole runs of stashkeep beside other programs, on files in memory, and then the functions in bench/.
# Ratios are of median times: below 1, stashkeep is faster.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install.sh cmake g++ hyperfine libbenchmark-dev libgtest-dev ninja-build python3 time
cmake --preset bench >/dev/null
cmake --build --preset bench >/dev/null
bench=$PWD/out/bench/bench
work=$(mktemp -d -p /dev/shm)
trap 'rm -rf "$work"' EXIT
cp examples/savegame.dat bench/{implant.py,fill.awk} "$bench/least" out/bench/stashkeep "$work"
cd "$work"

lines() { awk "BEGIN { for (i = 0; i < $1; i++) printf \"$2\\n\", i, i % 200 }"; }
lines 700 '.flag FLAG_CHEST_TAKEN_%d' >flags.asm
lines 45 'COLLECTABLE_THING_%d = %d' >ids.asm
mkdir generated && lines 1000 'WORLDFLAG_ROOM_VISITED_%d = WORLDFLAGS_START + %d' >generated/world.inc
printf '#AsmSectionBegin\ninclude "world.inc"\n#AsmSectionEnd\n' >world.asm
lines 550000 'COLLECTABLE_THING_%06d = %d' >many_ids.asm
lines 890000 '.flag FLAG_%07d' >many_flags.asm
{ head -c 2304 && printf '\0\0\1\0    \0\0\2\0' && head -c 2036 && printf '\0\0\3\0    \0\0\4\0' && head -c 16772852; } \
    </dev/urandom | tee game.reu >copy.reu
extract="./stashkeep extractreu game.reu out.dat"
implant="./stashkeep implantreu savegame.dat copy.reu"
manyIds="./stashkeep check savegame.dat /dev/null many_ids.asm /dev/null"
manyFlags="./stashkeep check savegame.dat many_flags.asm /dev/null /dev/null"

# compare RUNS COMMAND OTHER_COMMAND: run after run
compare() {
    hyperfine -N --warmup 3 --runs "$1" --export-csv times.csv "$2" "$3" >/dev/null 2>&1
    awk -F, -v own="$2" -v other="$3" 'NR == 2 { time = $4 }
        NR == 3 { printf "| `%s` | `%s` | %.2f ms | %.2f |\n", own, other, 1000 * time, time / $4 }' times.csv
}
# compareAfterPause COMMAND OTHER_COMMAND: single runs in turn, each after 10 s without work
compareAfterPause() {
    for _ in {1..9}; do
        hyperfine -N --runs 1 --prepare 'sleep 10' --export-csv times.csv "$1" "$2" >/dev/null 2>&1
        tail -n 2 times.csv | cut -d , -f 4 | paste -s
    done >pairs
    local own other
    own=$(cut -f 1 pairs | sort -g | sed -n 5p) other=$(cut -f 2 pairs | sort -g | sed -n 5p)
    awk -v own="$1" -v other="$2" -v a="$own" -v b="$other" \
        'BEGIN { printf "| `%s` | `%s` | %.1f ms | %.2f |\n", own, other, 1000 * a, a / b }'
}
printf 'Run after run:\n\n| run | against | median | ratio |\n|---|---|---|---|\n'
compare 2000 ./stashkeep true
compare 2000 "./stashkeep check savegame.dat" true
compare 2000 "./stashkeep check savegame.dat flags.asm ids.asm world.asm" true
for other in "./least game.reu" "cat game.reu"; do compare 200 "$extract" "$other"; done
for other in "cp game.reu copy.reu" "python3 implant.py"; do compare 100 "$implant" "$other"; done
for other in "wc many_ids.asm" "awk -f fill.awk many_ids.asm"; do compare 30 "$manyIds" "$other"; done
compare 30 "$manyFlags" "wc many_flags.asm"
printf '\nOnce, after a pause:\n\n| run | against | median | ratio |\n|---|---|---|---|\n'
compareAfterPause "$extract" "./least game.reu"
compareAfterPause "$manyIds" "awk -f fill.awk many_ids.asm"
printf '\nMemory:\n\n'
for run in "$extract" "$manyIds" "$manyFlags"; do
    # shellcheck disable=SC2086 # the run is words
    env time -o memory -f "%M KiB: %C" $run >/dev/null && cat memory
done
"$bench/stashkeep_bench"
