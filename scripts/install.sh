#!/usr/bin/env bash
# Installs the given Debian packages, if they are missing: scripts/install.sh PACKAGE...
set -euo pipefail

missing=()
for package in "$@"; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

asRoot=(env DEBIAN_FRONTEND=noninteractive)
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "Install these as root, or install sudo: ${missing[*]}" >&2
        exit 1
    fi
    asRoot=(sudo "${asRoot[@]}")
fi
"${asRoot[@]}" apt-get update -qq
"${asRoot[@]}" apt-get install -qq -y --no-install-recommends "${missing[@]}" >/dev/null
