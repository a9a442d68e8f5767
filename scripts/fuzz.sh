#!/usr/bin/env bash
# Runs a fuzz target for as long as you like: scripts/fuzz.sh check|images|tokenizers SECONDS
# What it finds is left in out/fuzz/found, what it learns in out/fuzz/corpus.
set -euo pipefail
cd "$(dirname "$0")/.."
target=$1 seconds=$2

scripts/install.sh cmake ninja-build g++ clang libclang-rt-14-dev libgtest-dev
cmake --preset fuzz ${CI:+-DCMAKE_COMPILE_WARNING_AS_ERROR=ON} >/dev/null
cmake --build --preset fuzz >/dev/null
mkdir -p out/fuzz/found "out/fuzz/corpus/$target"
out=$PWD/out/fuzz
TMPDIR=$([ -d /dev/shm ] && echo /dev/shm || echo /tmp) "$out/tests/fuzz_$target" -max_total_time="$seconds" -max_len=10000 -timeout=20 -verbosity=0 -print_funcs=0 \
    -print_final_stats=1 -dict="$PWD/tests/fuzz/words.dict" -artifact_prefix="$out/found/$target-" \
    "$out/corpus/$target" "$PWD/tests/fuzz/seeds/$target"
