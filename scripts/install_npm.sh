#!/usr/bin/env bash
# Installs what package.json lists into node_modules/, unless they are there. Node.js and npm come from Debian, but only
# if they are missing, since Debian's npm conflicts with other builds of Node.js.
set -euo pipefail
cd "$(dirname "$0")/.."

command -v npm >/dev/null || scripts/install.sh nodejs npm
if [ ! node_modules/.package-lock.json -nt package-lock.json ]; then
    npm ci --ignore-scripts --no-audit --no-fund
fi
