#!/usr/bin/env bash
# Tries out what the documents say: runs the examples of README, manual and formats.md and compares
# what they show ("..." stands for lines left out), and holds their tables, names and numbers against
# the sources, the example savegame, the commands' own statuses and every message that is printed.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD

scripts/install.sh cmake g++ ninja-build man-db
cmake --preset release >/dev/null
cmake --build --preset release >/dev/null
PATH=$root/out/release:$PATH

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
: >"$work/complaints"
complain() { printf '%s\n' "$*" | tee -a "$work/complaints" >&2; }

# Makes the folder that examples run in, with media that hold the example savegame, and goes there.
prepare() {
    rm -rf "$work/files"
    cp -r "$root/examples" "$work/files"
    cd "$work/files"
    truncate -s 192K disc2.d64 disc3.d64
    truncate -s 4M game.reu
    # Pages at 0x200000, 0x200100, 0x300000 and 0x3fff00.
    poke() { printf '%b' "$2" | dd of=game.reu bs=1 seek="$(($1))" conv=notrunc status=none; }
    poke 0x0900 '\x00\x00\x20\x00'
    poke 0x0908 '\x00\x01\x20\x00'
    poke 0x1100 '\x00\x00\x30\x00'
    poke 0x1108 '\x00\xff\x3f\x00'
    stashkeep implantd64 savegame.dat disc2.d64 disc3.d64 >/dev/null
    stashkeep implantreu savegame.dat game.reu >/dev/null
}

# A shell pattern for exactly this text, line by line.
# shellcheck disable=SC2001 # too much for bash's own replacing
literal() { sed 's/[^A-Za-z0-9 ]/\\&/g' <<<"$1"; }

# tryOut COMMAND SHOWN: runs the command and compares
tryOut() {
    local actual pattern='' line
    actual=$(bash -c "$1" 2>&1 </dev/null)
    while IFS= read -r line; do
        if [ "$line" = ... ]; then pattern+='*'; else pattern+=$(literal "$line"); fi
        pattern+=$'\n'
    done <<<"${2%$'\n'}"
    count=$((count + 1))
    # shellcheck disable=SC2053 # a pattern is meant
    [[ $actual$'\n' == $pattern ]] || complain "$document: this prints something else:"$'\n'"\$ $1"$'\n'"$actual"
}

# tryOutAll DOCUMENT: tries the consoles of standard input, each started by a line ``` and made of
# command lines, which begin with "$ " and go on behind a "\" or "|", and of what they print.
tryOutAll() {
    local document=$1 line command='' shown='' count=0 inCommand=
    finish() { [ -z "$command" ] || tryOut "$command" "$shown"; command='' shown='' inCommand=; }
    prepare
    while IFS= read -r line; do
        if [ "$line" = '```' ]; then
            finish
        elif [ -n "$inCommand" ]; then
            command+=$'\n'$line
        elif [[ $line == '$ '* ]]; then
            finish
            command=${line#'$ '}
        else
            shown+=$line$'\n'
        fi
        [[ -n $command && -z $shown && $line == *[\\\|] ]] && inCommand=yes || inCommand=
    done
    finish
    cd "$root"
    ((count > 0)) || complain "$document: no example"
    echo "$document: $count commands tried out"
}
consolesOf() { awk '/^```console/ { inside = 1; print "```"; next } /^```/ { inside = 0 } inside' "$1"; }
# As they are shown, indented by 11 columns.
consolesOfManual() {
    LC_ALL=C MANWIDTH=400 man -l docs/stashkeep.1 | awk '
        { match($0, /^ */) }
        RLENGTH == 11 && /^ *[$] / { if (!inside) print "```"; inside = 1 }
        RLENGTH < 11 && !/^$/ { inside = blank = 0 }
        !inside { next }
        /^$/ { blank++; next }
        { for (; blank > 0; blank--) print ""; print substr($0, 12) }'
}
tryOutAll README.md < <(consolesOf README.md)
tryOutAll docs/formats.md < <(consolesOf docs/formats.md)
tryOutAll docs/stashkeep.1 < <(consolesOfManual)

# The manual
scripts/make_manual.sh "$work/stashkeep.1"
cmp "$work/stashkeep.1" docs/stashkeep.1 || complain "docs/stashkeep.1: run scripts/make_manual.sh"
LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l docs/stashkeep.1 2>"$work/warnings" >/dev/null
[ ! -s "$work/warnings" ] || complain "docs/stashkeep.1: $(cat "$work/warnings")"
version=$(sed -n 's/^project(stashkeep VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
grep -q "^\.TH .*\"stashkeep $version\"" docs/stashkeep.1 || complain "docs/stashkeep.1: not for $version"
grep -qF "stashkeep-$version-windows-x86_64.zip" README.md || complain "README.md: another version's ZIP"
grep -q "^## $version\$" CHANGELOG.md || complain "CHANGELOG.md: nothing about $version"
head -n 1 packaging/debian/changelog | grep -qF "($version)" || complain "debian/changelog: nothing about $version"

# rowsOf DOCUMENT HEADING-ROW: the rows below a table's heading
rowsOf() { awk -v heading="$2" '$0 == heading { inside = 1; getline; next } !/^\|/ { inside = 0 } inside' "$1"; }
# spansOf DOCUMENT HEADING-ROW: what stands in backticks in the first column
# shellcheck disable=SC2016 # backticks as they are
spansOf() { rowsOf "$@" | sed 's/ | .*//' | grep -o '`[^`]*`' | tr -d '`'; }

# The command words
sed -n 's/.*Command{"\([a-z0-9]*\)".*/\1/p' src/cli/command_line.cpp | sort >"$work/words"
spansOf README.md '| command | what it does |' | sed 's/ .*//' | sort -u | diff "$work/words" - ||
    complain "README.md: these command words are not the program's"

# patternsOf SPANS: a shell pattern for each
patternsOf() { literal "$1" | sed -E 's/\\\.\\\.\\\./*/g; s/\b(NAME|WORD|SLOT|ID|COUNT|VALUE)\b/*/g; s/^\\-\\>/*&/; s/$/*/'; }
# matches TEXT PATTERN...: whether one fits
matches() {
    local text=$1 pattern
    shift
    # shellcheck disable=SC2053 # a pattern is meant
    for pattern in "$@"; do [[ $text == $pattern ]] && return; done
    return 1
}
# explained DOCUMENT HEADING-ROW LINES: each line is in the table, and each row of it is in the lines
explained() {
    local -a lines spans patterns
    mapfile -t lines < <(sed -E "s/^(Be aware .* builds!)(.)/\1\n\2/; s/(_;_)(>>>)/\1\n\2/; /^-*\$/d" "$3" | sort -u)
    mapfile -t spans < <(spansOf "$1" "$2")
    mapfile -t patterns < <(patternsOf "$(printf '%s\n' "${spans[@]}")")
    local i
    for i in "${lines[@]}"; do matches "$i" "${patterns[@]}" || complain "$1: does not explain: $i"; done
    for i in "${!spans[@]}"; do
        # shellcheck disable=SC2053 # a pattern is meant
        for line in "${lines[@]}"; do [[ $line != ${patterns[i]} ]] || continue 2; done
        complain "$1: nothing prints: ${spans[i]}"
    done
    echo "$1: ${#lines[@]} different lines that are printed looked up in its table"
}

# The messages: everything that can go wrong
global=scripts/common/global
sources=("$global/scr_flags.asm" "$global/scr_collectableids.asm" "$global/scr_globaldefines.asm")
prepare
# status STATUS ARGUMENT...: runs it and compares its exit status
status() {
    local expected=$1 actual=0
    shift
    stashkeep "$@" >>"$work/messages" || actual=$?
    [ "$actual" = "$expected" ] || complain "README.md: status $actual, not $expected: stashkeep $*"
    [ "$(tail -c 1 "$work/messages")" = '' ] || echo >>"$work/messages"
}
: >"$work/messages"
status 0
status 0 check
status 0 nonsense savegame.dat
status 1 extractd64 disc2.d64 disc3.d64
status 1 implantd64 savegame.dat disc2.d64
status 1 extractybn game.reu
status 1 implantfbn savegame.dat
status 1 check savegame.dat "${sources[0]}"
status 1 extractreu missing.reu new.dat
status 1 extractd64 disc2.d64 game.reu new.dat
status 1 extractreu game.reu missing/new.dat
status 1 implantd64 missing.dat disc2.d64 disc3.d64
status 0 implantreu savegame.dat <(cat game.reu)
status 1 check missing.dat
status 1 check savegame.dat missing.asm "${sources[@]:1}"
status 1 check savegame.dat "${sources[0]}" missing.asm "${sources[2]}"
status 1 check savegame.dat "${sources[@]:0:2}" missing.asm
[ ! -e new.dat ] || complain "README.md: status 1, and yet something was written"
stashkeep check savegame.dat "${sources[@]}" >"$work/report"
cd "$root"

# Usage lines explain themselves.
sed -E '/^(stashkeep|or stashkeep|e\.g\. stashkeep) /d; s/^(Be aware .* builds!)stashkeep .*/\1/; s/include_.*_;_//' \
    "$work/messages" >"$work/explain"
explained README.md '| message | what it means and what to do |' "$work/explain"
{ sed 's/^Be aware .* builds!//' "$work/report" && echo '0_item:200<undefined> count:1'; } >"$work/explain"
explained README.md '| line | what it means |' "$work/explain"

# The commands of the README: each works on files in its order, and not with one less. The media
# hold the same savegame, so that no file changes where the order is right.
prepare
cp -r . ../before
count=0
while read -r row; do
    command=$(sed 's/\<IMAGE\>/game.reu/; s/\<DATAFILE\>/savegame.dat/; s/\<DISC\([23]\).d64/disc\1.d64/g' <<<"$row" |
        sed "s#\<FLAGS\>#${sources[0]}#; s#\<COLLECTABLES\>#${sources[1]}#; s#\<GLOBALDEFINES\>#${sources[2]}#")
    read -r -a command <<<"$command"
    status 0 "${command[@]}"
    # With no file at all, it is the usage text's turn.
    [ ${#command[@]} -eq 2 ] || status 1 "${command[@]::${#command[@]}-1}"
    count=$((count + 1))
done < <(spansOf "$root/README.md" '| command | what it does |')
diff -r . ../before || complain "README.md: its commands change these files"
stashkeep "${command[@]}" | grep -q '^WORLDFLAG_' || complain "README.md: its last command prints no world flag"
echo "README.md: $count kinds of command tried out"
cd "$root"

# Whatever text the sources have for messages and reports was printed above.
cat "$work/messages" "$work/report" >"$work/printed"
while IFS= read -r text; do
    pattern=$(literal "$text" | sed -E 's/\\%(s|d|0[24]x)/*/g; s/\\\\n//g; s/\\\\\\"/"/g; s/\\\\\\\\/\\\\/g')
    mapfile -t printed <"$work/printed"
    found=
    # shellcheck disable=SC2053 # a pattern is meant
    for line in "${printed[@]}"; do [[ $line != *$pattern* ]] || { found=yes && break; }; done
    [ -n "$found" ] || complain "scripts/check_documents.sh: does not provoke: $text"
done < <(grep -roh --include='*.cpp' '"[^"]*\\n"' src | sed 's/^"//; s/"$//; s/^\\n//')

# same FILE WHAT: complains unless the lines of FILE and of standard input are the same
same() { diff "$1" - >"$work/diff" || complain "$2:"$'\n'"$(cat "$work/diff")"; }

# architecture.md: what is named is a file, a command word, or in the sources; so is what the picture shows.
# shellcheck disable=SC2016 # backticks as they are
while read -r name; do
    case $name in
        'stashkeep '*) name=$(cut -d ' ' -f 2 <<<"$name") && grep -qxF "$name" "$work/words" ;;
        *) [ -e "$name" ] || [ -e "src/$name" ] || [ -n "$(find src -name "$name")" ] || grep -rqwF -- "$name" src CMakeLists.txt ;;
    esac || complain "docs/architecture.md: nothing is called $name"
done < <(sed '/^```/,/^```/d' docs/architecture.md | grep -o '`[^`]*`' | tr -d '`')
# shellcheck disable=SC2016 # backticks as they are
while read -r name; do
    [ -e "src/$name" ] || [ -e "src/$name.h" ] || [ -n "$(find src -name "$name.h" -o -name "$name")" ] ||
        complain "docs/architecture.md: no file $name"
done < <(sed -n '/^```/,/^```/p' docs/architecture.md | grep -oE '[a-z0-9]+([_/.][a-z0-9]*)+')

# CONTRIBUTING.md: every script is there.
for script in scripts/*.sh .ci/run; do
    grep -qF "$script" CONTRIBUTING.md || complain "CONTRIBUTING.md: nothing about $script"
done

# The numbers in prose
sed -n 's/^    {"COLLECTABLE_\(.*\)", \([0-9]*\)},$/\2 \1/p' src/inspect/savegame_report.cpp >"$work/items"
text=$(cat README.md CONTRIBUTING.md docs/*.md docs/stashkeep.1.in | tr '\n' ' ')
# inSource FILE PATTERN: the number that the pattern's group matches
inSource() { sed -nE "s/.*$2.*/\1/p" "src/$1"; }
# says NUMBER PATTERN: wherever the documents say what the Perl pattern matches, they say NUMBER
says() {
    local said
    said=$(grep -oP "$2" <<<"$text" | sort -u) || said=nothing
    [ "$said" = "$1" ] || complain "The documents say ${said//$'\n'/ and }, not $1: $2"
}
number='(?<![<\d,.x])\d[\d,]*'
words=(no one two three four five six seven eight nine ten eleven twelve thirteen fourteen fifteen sixteen)
grouped() { sed -E 's/([0-9])([0-9]{3})$/\1,\2/' <<<"$1"; }
sectors=$(inSource transfer/d64_image.cpp 'sectorCount = ([0-9]+);')
pageSize=$(inSource transfer/savegame_data_file.h 'pageSize = ([0-9]+);')
says "$sectors" "$number(?= sectors)"
says "$(grouped $((sectors * pageSize)))" '\d{2,3},\d{3}(?=( \(0x\w+\))? bytes)'
says "$(grouped $(($(inSource transfer/memory_image.cpp 'leastImageSize == (0x[0-9A-F]+)'))))" "$number(?= bytes, 0x)"
says "$(grouped "$(inSource transfer/savegame_data_file.h 'SavegameDataFile\) == ([0-9]+)')")" \
    "(?<![\d,])\d,\d{3}(?= bytes(?!, 0x))"
says "$(wc -l <"$work/items")" "$number(?= items)"
says "$(inSource inspect/disc_savegame.h 'chestSlots = ([0-9]+);')" "(?<=chest's )\d+(?= slots)"
says "$(inSource inspect/disc_savegame.h 'inventorySlots = ([0-9]+);')" "(?<=all )\d+(?= slots)"
says "${words[$(wc -l <"$work/words")]}" '\w+(?= words, which)'
says "${words[$(grep -cE 'Command\{.*(FromImage|IntoImage)\}' src/cli/command_line.cpp)]}" '\w+(?= words for memory images)'
# shellcheck disable=SC2016 # backticks as they are
says "$(grep -c '^    "stashkeep ' src/cli/command_line.cpp)" '(?<=`usage:` and )\d+(?= lines)'

# The example
examples/make_savegame.sh "$work/savegame.dat"
cmp "$work/savegame.dat" examples/savegame.dat || complain "examples/savegame.dat: not what make_savegame.sh makes"

# formats.md: the places of the pages are those of the source, in its tables and in the picture.
sed -n 's/^    {\([23]\), 0x\(....\), 0x\(....\)}.*/\1 \2 \3/p' src/transfer/savegame_data_file.h >"$work/places"
page=0
while read -r disc inDisc pointer; do
    name="page $((page % 2))"
    for row in "$(printf '| 0x%03x | 256 | disc %s, %s |' $((256 * page)) "$disc" "$name")" \
        "| 0x$inDisc | track 1, sector $((0x$inDisc / 256)) | $name |" "| 0x$pointer | disc $disc, $name |"; do
        grep -qixF "$row" docs/formats.md || complain "docs/formats.md: lacks $row"
    done
    for text in "0x$inDisc" "0x$pointer" "$(printf '0x%03x' $((256 * page)))" "disc $disc, $name"; do
        grep -qiF ">$text<" docs/pages.svg || complain "docs/pages.svg: lacks $text"
    done
    page=$((page + 1))
done <"$work/places"
((page == 4)) || complain "docs/formats.md: $page places of pages compared, not 4"

# formats.md: the fields are those of the source, each where the one before it ends.
sed -nE 's/^    std::array<std::uint8_t, (\w+)> (\w+);.*/\1 \2/p; s/^    std::uint8_t (\w+);.*/1 \1/p' \
    src/inspect/disc_savegame.h |
    sed -E 's/^chestSlots/20/; s/^inventorySlots/24/; s/ uninterpreted.*/ not interpreted/' |
    awk '{ size = $1; $1 = ""; print at + 0, at % 256, size $0; at += size }' >"$work/fields"
rowsOf docs/formats.md '| offset | in page | size | field | what it holds |' | tr -d '|`' | tr -s ' ' |
    sed -E 's/^ ([0-9]+ [0-9]+ [0-9]+ (not interpreted|\w+)).*/\1/' | same "$work/fields" "docs/formats.md: fields"

# formats.md: the example has these bytes, in these fields, without a gap.
rowsOf docs/formats.md '| offset | bytes | field | what they say |' | tr -d '|`' | tr -s ' ' | while read -r row; do
    read -r offset rest <<<"$row"
    bytes=$(grep -oE '^([0-9a-f]{2} )+' <<<"$rest") rest=${rest#"$bytes"}
    # "00 x 30" stands for so many.
    if [[ $rest =~ ^x\ ([0-9]+)\ (.*) ]]; then
        bytes=$(for ((i = 0; i < BASH_REMATCH[1]; i++)); do printf '%s' "$bytes"; done) rest=${BASH_REMATCH[2]}
    fi
    [[ $rest =~ ^(not interpreted|[A-Za-z0-9]+) ]]
    for byte in $bytes; do
        printf '%d %s %s\n' $((offset)) "$byte" "${BASH_REMATCH[1]}"
        offset=$((offset + 1))
    done
done >"$work/bytes"
paste -d ' ' <(od -An -v -t x1 -w1 -N 512 examples/savegame.dat | tr -d ' ') \
    <(awk '{ size = $3; sub(/^[0-9]+ [0-9]+ [0-9]+ /, ""); while (size-- > 0) print }' "$work/fields") |
    awk '{ print NR - 1, $0 }' | same "$work/bytes" "docs/formats.md: bytes"

# formats.md: items and flags
rowsOf docs/formats.md '| id | item | id | item | id | item |' | tr -d '|`' | xargs -n 2 | sort -n |
    same "$work/items" "docs/formats.md: items"
grep -E '^\.flags? ' "examples/$global/scr_flags.asm" | head -n 14 |
    awk '{ width = NF == 3 ? $3 : 1; print $0, bit + 0, width; bit += width }' >"$work/flags"
rowsOf docs/formats.md '| directive | first bit | bits |' | tr -d '|`' | xargs -n 1 | xargs | sed 's/ \.flag/\n.flag/g' |
    same "$work/flags" "docs/formats.md: game flags"
rowsOf docs/formats.md '| statement | bit |' | tr -d '`' | while IFS='|' read -r _ statement bit _; do
    statement=$(xargs <<<"$statement")
    grep -qxF "$statement" examples/generated/*.inc || complain "docs/formats.md: $statement is not in examples/"
    sum=${statement#*=}
    ((${sum/WORLDFLAGS_VILLAGE/0} == bit)) || complain "docs/formats.md: $statement is not bit $bit"
done

# Links lead somewhere: to a file, and to a heading of this document.
for document in *.md docs/*.md; do
    while read -r link; do
        case $link in
            http*) ;;
            '#'*) sed -n "s/^#* //p" "$document" | tr 'A-Z ' 'a-z-' | tr -d "'" | grep -qxF "${link#'#'}" ||
                complain "$document: no heading for $link" ;;
            *) [ -e "$(dirname "$document")/$link" ] || complain "$document: no file $link" ;;
        esac
    done < <(grep -o '](.[^)]*)' "$document" | sed 's/](\(.*\))/\1/')
done

[ ! -s "$work/complaints" ]
echo "The documents say what is true."
