#!/usr/bin/env bash
# Builds the page, out/packages/stashkeep.html, and tests it in Chromium, Firefox and WebKit.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/page.sh
scripts/install_npm.sh
scripts/install.sh chromium cmake firefox-esr fonts-dejavu-core g++ ninja-build webkit2gtk-driver xauth xvfb
cmake --preset release ${CI:+-DCMAKE_COMPILE_WARNING_AS_ERROR=ON} >/dev/null
cmake --build --preset release # the program that the page is compared with
timeout 20m xvfb-run -a node --test --test-reporter=spec tests/web/browser/*_test.mjs | tee out/web/tests.txt
# The runner takes skipped tests for passed ones.
for count in 'skipped 0' 'todo 0' 'cancelled 0'; do
    grep -q " $count\$" out/web/tests.txt || { echo "not all tests have run: expected is $count" >&2; exit 1; }
done
