#!/usr/bin/env bash
# Builds the page, out/packages/stashkeep.html, and tests it: first what needs no browser, then all of it in Chromium,
# Firefox and WebKit.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/page.sh
scripts/install.sh chromium cmake firefox-esr fonts-dejavu-core g++ ninja-build webkit2gtk-driver xauth xvfb
cmake --preset release ${CI:+-DCMAKE_COMPILE_WARNING_AS_ERROR=ON} >/dev/null
cmake --build --preset release # the program that the page is compared with

mapfile -t tests < <(find tests/web -name '*_test.mjs' -not -path '*/browser/*' | sort)
test=(timeout 20m node --test --test-reporter=spec)
{ "${test[@]}" "${tests[@]}" && xvfb-run -a "${test[@]}" tests/web/browser/*_test.mjs; } | tee out/web/tests.txt
# The runner takes skipped tests for passed ones. There are two summaries.
for count in 'skipped 0' 'todo 0' 'cancelled 0'; do
    [ "$(grep -c " $count\$" out/web/tests.txt)" -eq 2 ] || { echo "not all tests have run: expected is $count" >&2; exit 1; }
done
awk '$2 == "pass" { count += $3 } END { print count " tests of the page have passed." }' out/web/tests.txt
