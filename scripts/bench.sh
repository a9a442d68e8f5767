#!/usr/bin/env bash
# Measures whole runs of stashkeep side by side with programs that everyone has, on files in memory, and prints a table
# of ratios (of medians; lower is better), the instructions that each run takes, and the benchmarks of bench/.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install.sh cmake g++ ninja-build hyperfine valgrind libbenchmark-dev libgtest-dev
cmake --preset bench >/dev/null
cmake --build --preset bench >/dev/null
bench=$PWD/out/bench
work=$(mktemp -d -p /dev/shm)
trap 'rm -rf "$work"' EXIT
cp examples/savegame.dat "$bench/stashkeep" "$work"
cd "$work"
mkdir generated

# A game's sources, and the same kinds of lines by the megabyte.
awk 'BEGIN { for (i = 0; i < 700; i++) printf i % 3 ? ".flag FLAG_CHEST_TAKEN_%d\n" : ".flags FLAG_DOOR_STATE_%d, 2\n", i }' >flags.asm
awk 'BEGIN { for (i = 0; i < 1000; i++) printf "WORLDFLAG_ROOM_VISITED_%d = WORLDFLAGS_START + %d\n", i, i }' >generated/world.inc
printf '#AsmSectionBegin\ninclude "world.inc"\n#AsmSectionEnd\n' >world.asm
awk 'BEGIN { for (i = 0; i < 45; i++) printf "COLLECTABLE_THING_%d = %d\n", i, i }' >ids.asm
awk 'BEGIN { for (i = 0; i < 550000; i++) printf "COLLECTABLE_THING_%06d = %d\n", i, i % 200 }' >many_ids.asm
awk 'BEGIN { for (i = 0; i < 890000; i++) printf ".flag FLAG_%07d\n", i }' >many_flags.asm
{ echo '#AsmSectionBegin' && awk 'BEGIN { for (i = 0; i < 500000; i++) printf "lda #%d ; comment %06d of it\n", i % 256, i }' &&
    echo '#AsmSectionEnd'; } >section.asm
awk 'BEGIN { for (i = 0; i < 350000; i++) printf "WORLDFLAG_ROOM_VISITED_%06d = START + %d\n", i, i }' >generated/big.inc
printf '#AsmSectionBegin\ninclude big.inc\n' >include.asm
: >empty.asm
{ head -c 2304 && printf '\0\0\1\0    \0\0\2\0' && head -c 2036 && printf '\0\0\3\0    \0\0\4\0' && head -c 16772852; } \
    </dev/urandom >game.reu
cp game.reu copy.reu
# The least that reads an image as loadFile has to: a zeroed vector, filled with one read.
cat >least.cpp <<'END'
#include <cstdio>
#include <vector>
int main(int, char* arguments[]) {
    std::FILE* file = std::fopen(arguments[1], "rb");
    std::setvbuf(file, nullptr, _IONBF, 0);
    std::fseek(file, 0, SEEK_END);
    std::vector<unsigned char> bytes(static_cast<std::size_t>(std::ftell(file)));
    std::rewind(file);
    return std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size() ? 0 : 1;
}
END
g++ -O2 -static -o least least.cpp

# compare RUNS STASHKEEP_ARGUMENTS OTHER_COMMAND
compare() {
    local own="./stashkeep $2"
    hyperfine -N --warmup 5 --runs "$1" --export-csv times.csv "$own" "$3" >/dev/null 2>&1
    awk -F, -v own="${own#./}" -v other="$3" -v runs="$1" \
        'NR == 2 { a = $4 } NR == 3 { printf "| `%s` | `%s` | %.2f | %d |\n", own, other, a / $4, runs }' times.csv
}
printf '| run | against | ratio | runs of each |\n|---|---|---|---|\n'
compare 3000 "" true
compare 3000 "check savegame.dat" true
compare 2000 "check savegame.dat flags.asm ids.asm world.asm" true
compare 200 "extractreu game.reu out.dat" "cat game.reu"
compare 200 "extractreu game.reu out.dat" "./least game.reu"
compare 200 "implantreu savegame.dat copy.reu" "cp game.reu copy.reu"
compare 30 "check savegame.dat empty.asm many_ids.asm empty.asm" "wc many_ids.asm"
compare 30 "check savegame.dat many_flags.asm empty.asm empty.asm" "wc many_flags.asm"
compare 30 "check savegame.dat empty.asm empty.asm section.asm" "wc section.asm"
compare 30 "check savegame.dat empty.asm empty.asm include.asm" "wc generated/big.inc"

printf '\n| run | instructions |\n|---|---|\n'
for arguments in "check savegame.dat" "check savegame.dat flags.asm ids.asm world.asm" \
    "check savegame.dat empty.asm many_ids.asm empty.asm" "check savegame.dat many_flags.asm empty.asm empty.asm" \
    "check savegame.dat empty.asm empty.asm section.asm" "check savegame.dat empty.asm empty.asm include.asm"; do
    # shellcheck disable=SC2086 # the arguments are words
    count=$(valgrind --tool=callgrind --callgrind-out-file=/dev/null ./stashkeep $arguments 2>&1 >/dev/null |
        sed -n 's/.*Collected : //p')
    echo "| \`stashkeep $arguments\` | $count |"
done
echo
"$bench/bench/stashkeep_bench"
