#!/usr/bin/env bash
# Checks the documents as they are installed: runs the console examples of README.md, docs/formats.md, docs/windows.md
# and the manual, and checks links and version numbers. In an example, "..." on a line stands for lines left out.
# shellcheck disable=SC2016,SC2053 # $ and ` in awk and sed programs; patterns to compare with
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install.sh cmake g++ man-db ninja-build
cmake --preset release >/dev/null
cmake --build --preset release >/dev/null
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install out/release --prefix "$work" >/dev/null
PATH=$work/bin:$PATH
version=$(sed -n 's/^project(stashkeep VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
complain() { printf '%s\n' "$*" | tee -a "$work/complaints" >&2; }
: >"$work/complaints"

# Prints COMMAND \036 OUTPUT \037 for each example. Commands begin with "$ " and continue after a final "\" or "|".
examples='
    function finish() { if (command) printf "%s\036%s\037", command, shown; command = shown = "" }
    /^```/ { finish(); inside = $0 == "```console"; next }
    !inside { next }
    continues { command = command "\n" $0; continues = /[\\|]$/; next }
    sub(/^[$] /, "") { finish(); command = $0; continues = /[\\|]$/; next }
    { shown = shown "\n" $0 }
    END { finish() }'
# runExamples DOCUMENT: runs the examples of the Markdown on standard input
runExamples() {
    local command shown actual pattern count=0
    rm -rf "$work/files"
    cp -r "$work/share/doc/stashkeep/examples" "$work/files"
    (cd "$work/files" && sh make_media.sh)
    while IFS=$'\036' read -r -d $'\037' command shown; do
        actual=$(cd "$work/files" && bash -c "$command" 2>&1 </dev/null) || true
        pattern=$(sed 's/[^A-Za-z0-9 ]/\\&/g; s/^\\\.\\\.\\\.$/*/' <<<"${shown#$'\n'}")
        [[ $actual == $pattern ]] || complain "$1 shows something else than this:"$'\n'"\$ $command"$'\n'"$actual"
        count=$((count + 1))
    done < <(awk "$examples")
    echo "$1: $count examples run"
    ((count > 0)) || complain "$1: no examples"
}
for document in README.md docs/formats.md $(grep -l '^```console' docs/windows.md); do
    runExamples "$document" <"$work/share/doc/stashkeep/$document"
done
sed 's/^\.EX$/```console/; s/^\.EE$/```/; s/\\-/-/g; s/\\e/\\/g' docs/stashkeep.1 | runExamples docs/stashkeep.1

# headings DOCUMENT: the links that its headings have
headings() { sed -n 's/^##* //p' "$1" | tr 'A-Z ' 'a-z-' | tr -cd 'a-z0-9_\n-'; }
for document in *.md docs/*.md; do
    while IFS='#' read -r file heading; do
        target=$work/share/doc/stashkeep/$document
        [ -z "$file" ] || target=$(dirname "$target")/$file
        [[ $file != *README.md ]] || complain "$document: links to README.md, which the ZIP calls README.txt"
        [ -e "$target" ] || complain "$document: no file $file is installed"
        [ -z "$heading" ] || headings "$target" | grep -qxF "$heading" || complain "$document: no $file#$heading"
    done < <(grep -oE '\]\([^)]+\)' "$document" | sed 's/^](//; s/)$//; /^https\?:/d')
done

LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l docs/stashkeep.1 2>&1 >/dev/null | tee -a "$work/complaints" >&2
# sameVersion FILE PATTERN: the first line that matches has the version of CMakeLists.txt
sameVersion() {
    local found
    found=$(grep -m 1 "$2" "$1" | grep -oE '[0-9]+(\.[0-9]+)+' | head -n 1) || true
    [ "$found" = "$version" ] || complain "$1: version \"$found\", not $version"
}
stashkeep >"$work/usage"
sameVersion "$work/usage" '^Zarnis'
sameVersion docs/stashkeep.1 '^\.TH'
sameVersion CHANGELOG.md '^## '
sameVersion debian/changelog '^stashkeep'
if grep -nE 'stashkeep-[0-9.]+-' ./*.md docs/*.md | grep -vF "stashkeep-$version-"; then complain "not $version"; fi

[ ! -s "$work/complaints" ]
echo "The examples, links and versions of the documents are right."
