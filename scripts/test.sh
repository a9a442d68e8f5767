#!/usr/bin/env bash
# Builds stashkeep and runs its tests. Leave out the fault tests by not having strace installed.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install.sh cmake g++ ninja-build libgtest-dev
cmake --preset dev ${CI:+-DCMAKE_COMPILE_WARNING_AS_ERROR=ON} >/dev/null
cmake --build --preset dev
ctest --preset dev
