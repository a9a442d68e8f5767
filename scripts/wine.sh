#!/bin/sh
# Runs a program for Windows: scripts/wine.sh PROGRAM.exe [ARGUMENT...]
# Wine keeps its files in out/windows/wine, and its server for a minute more: only the first run takes its time.
set -eu

folder=$(dirname "$0")/../out/windows/wine
mkdir -p "$folder"
WINEPREFIX=$(cd "$folder" && pwd)
export WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=' LC_ALL=C.UTF-8

# A file that is read-only is so for everyone on Windows; here it is not for root with all its rights.
run() {
    if [ "$(id -u)" -eq 0 ]; then
        setpriv --bounding-set=-dac_override,-dac_read_search "$@"
    else
        "$@"
    fi
}

# What the server starts lives as long as it does, so it must not hold on to our output.
if run /usr/lib/wine/wineserver64 -p60 >/dev/null 2>&1; then
    run /usr/lib/wine/wine64 wineboot --init >/dev/null 2>&1 </dev/null
fi
run /usr/lib/wine/wine64 "$@"
