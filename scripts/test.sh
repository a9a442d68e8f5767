#!/usr/bin/env bash
# Builds stashkeep and runs its tests; those of the system's faults only where strace is installed.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install.sh cmake g++ ninja-build libgtest-dev
cmake --preset dev ${CI:+-DCMAKE_COMPILE_WARNING_AS_ERROR=ON} >/dev/null
cmake --build --preset dev
command -v strace >/dev/null || echo "strace is not installed: what faults of the system do to media is not tested"
ctest --preset dev
