#!/usr/bin/env bash
# Packs what a build installs and the page into one folder: scripts/archive.sh BUILD_FOLDER ARCHIVE.tar.gz|ARCHIVE.zip
# A ZIP also contains the media of the examples, since Windows cannot run make_media.sh, and its texts are plain text.
# Order, times, owner and modes are fixed, so that equal builds give equal archives.
set -euo pipefail
mkdir -p "$(dirname "$2")"
build=$(realpath "$1")
archive=$(realpath "$2")
cd "$(dirname "$0")/.."
sources=$PWD

scripts/install.sh cmake dpkg-dev zip
scripts/page.sh
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
folder=$(basename "${archive%.zip}" .tar.gz)
SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -l debian/changelog -S Timestamp)
export SOURCE_DATE_EPOCH TZ=UTC LC_ALL=C # strip writes the time into a program for Windows
cmake --install "$build" --strip --prefix "$work/$folder" >/dev/null
cp out/packages/stashkeep.html "$work/$folder"
if [[ $archive == *.zip ]]; then
    scripts/install.sh pandoc
    plainText=(pandoc --from gfm --to plain --columns 100 --eol crlf)
    "${plainText[@]}" README.md -o "$work/$folder/README.txt"
    "${plainText[@]}" docs/windows.md -o "$work/$folder/WINDOWS.txt"
    cd "$work/$folder/examples"
    sh "$sources/examples/make_media.sh"
fi
cd "$work"
chmod -R u=rwX,go=rX "$folder"
find "$folder" -exec touch --date "@$SOURCE_DATE_EPOCH" {} +
rm -f "$archive"
case $archive in
    *.zip) find "$folder" -type f | sort | zip -q -X -@ "$archive" ;;
    *) tar --sort=name --owner=0 --group=0 --numeric-owner -c "$folder" | gzip -9n >"$archive" ;;
esac
