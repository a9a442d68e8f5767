#!/usr/bin/env bash
# Builds stashkeep and runs its tests.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install.sh cmake g++ ninja-build libgtest-dev strace
cmake --preset dev ${CI:+-DCMAKE_COMPILE_WARNING_AS_ERROR=ON} >/dev/null
cmake --build --preset dev
ctest --preset dev
