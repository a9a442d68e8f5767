#!/usr/bin/env bash
# Builds the page, out/packages/stashkeep.html, and tests it in Chromium, Firefox and WebKit.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/page.sh
scripts/install_npm.sh
scripts/install.sh chromium cmake firefox-esr fonts-dejavu-core g++ ninja-build webkit2gtk-driver xauth xvfb
cmake --preset release ${CI:+-DCMAKE_COMPILE_WARNING_AS_ERROR=ON} >/dev/null
cmake --build --preset release # the program that the page is compared with
xvfb-run -a node --test tests/web/*_test.mjs
