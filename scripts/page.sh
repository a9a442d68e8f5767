#!/usr/bin/env bash
# Builds the page, out/packages/stashkeep.html.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install.sh cmake emscripten ninja-build node-acorn
scripts/install_npm.sh
cmake --preset web ${CI:+-DCMAKE_COMPILE_WARNING_AS_ERROR=ON} >/dev/null
cmake --build --preset web
cmake --install out/web --prefix out/packages
