#!/bin/sh
# Runs a program for Windows: scripts/wine.sh PROGRAM.exe [ARGUMENT...]
# Wine's files are in out/windows/wine. Its server stays for a minute, so that only the first run is slow.
set -eu

folder=$(dirname "$0")/../out/windows/wine
mkdir -p "$folder"
WINEPREFIX=$(cd "$folder" && pwd)
export WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=' LC_ALL=C.UTF-8

# Without these capabilities, root cannot write to read-only files, as nobody can on Windows.
[ "$(id -u)" -ne 0 ] || wine="setpriv --bounding-set=-dac_override,-dac_read_search"

# Background processes of the server must not inherit the output, or a pipe would stay open until they end.
if ${wine-} /usr/lib/wine/wineserver64 -p60 >/dev/null 2>&1; then
    ${wine-} /usr/lib/wine/wine64 wineboot --init >/dev/null 2>&1 </dev/null
fi
exec ${wine-} /usr/lib/wine/wine64 "$@"
