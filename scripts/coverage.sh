#!/usr/bin/env bash
# Prints the line and branch coverage of src/ by the tests, and fails if a line is not covered.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install.sh cmake g++ ninja-build libgtest-dev gcovr strace
cmake --preset coverage >/dev/null
cmake --build --preset coverage >/dev/null
find out/coverage -name '*.gcda' -delete
ctest --preset coverage
gcovr --root . --filter src/ --exclude-throw-branches --exclude-unreachable-branches --branches out/coverage
gcovr --root . --filter src/ --exclude-throw-branches --exclude-unreachable-branches --fail-under-line 100 out/coverage
