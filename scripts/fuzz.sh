#!/usr/bin/env bash
# Runs a fuzz target: scripts/fuzz.sh check|images SECONDS
# Inputs that fail are stored in out/fuzz/found, the corpus in out/fuzz/corpus.
set -euo pipefail
cd "$(dirname "$0")/.."
target=$1
seconds=$2

scripts/install.sh cmake ninja-build g++ clang libclang-rt-dev libgtest-dev
cmake --preset fuzz ${CI:+-DCMAKE_COMPILE_WARNING_AS_ERROR=ON} >/dev/null
cmake --build --preset fuzz --target "fuzz_$target" >/dev/null
out=$PWD/out/fuzz
mkdir -p "$out/found" "$out/corpus/$target"
# The targets work in a temporary folder: faster in memory, and the reason for full paths.
TMPDIR=/dev/shm "$out/tests/fuzz_$target" -max_total_time="$seconds" -max_len=10000 -timeout=20 \
    -verbosity=0 -print_funcs=0 -print_final_stats=1 -dict="$PWD/tests/fuzz/words.dict" \
    -artifact_prefix="$out/found/$target-" "$out/corpus/$target" "$PWD/tests/fuzz/seeds/$target"
