#!/usr/bin/env bash
# Builds stashkeep for Windows with its ZIP, runs the tests under Wine, and then the program out of the ZIP side by
# side with the native one: each must leave the same files behind and print the same, apart from the line ends.
set -Eeuo pipefail
trap 'echo "FAILED: line $LINENO${run:+, $run}"' ERR
cd "$(dirname "$0")/.."

say() { printf '\n== %s\n' "$*"; }
fail() { echo "FAILED: $*" && exit 1; }
# Packs the build in the current folder, as root, since a ZIP holds the number of the user who packs it.
pack() {
    local asRoot=()
    [ "$(id -u)" -eq 0 ] || asRoot=(unshare --user --map-root-user)
    rm -f stashkeep-*.zip
    "${asRoot[@]}" cpack >/dev/null
}

scripts/install.sh cmake g++ ninja-build cc1541 g++-mingw-w64-x86-64-posix googletest wine64
strict=${CI:+-DCMAKE_COMPILE_WARNING_AS_ERROR=ON}
cmake --preset release ${strict:+"$strict"} >/dev/null
cmake --build --preset release >/dev/null
cmake --preset windows ${strict:+"$strict"} >/dev/null
cmake --build --preset windows
ctest --preset windows

work=$(mktemp -d)
# Another kind of file system lists files in another order.
elsewhere=/dev/shm
[ -w $elsewhere ] || elsewhere=${TMPDIR:-/tmp}
second=$(mktemp -d -p "$elsewhere")
trap 'rm -rf "$work" "$second"' EXIT

say "The ZIP"
(cd out/windows && pack)
zip=$(echo "$PWD"/out/windows/stashkeep-*.zip)
tar -c --exclude=./out --exclude=./build --exclude=./.git . | tar -x -C "$second"
(
    cd "$second"
    umask 077
    cmake --preset windows -DSTASHKEEP_TESTS=OFF >/dev/null
    cmake --build --preset windows >/dev/null
    cd out/windows && pack
)
sha256sum "$zip" "$second"/out/windows/*.zip
cmp "$zip" "$second"/out/windows/*.zip || fail "two builds in two folders differ"
(cd "$work" && cmake -E tar xf "$zip")
exe=$(echo "$work"/stashkeep-*/stashkeep.exe)
(cd "$work"/stashkeep-* && find . -type f -exec wc -c "$zip" {} +)
for document in "$work"/stashkeep-*/{README.txt,*.md,docs/*.md}; do
    while read -r link; do
        case $link in http* | '#'*) continue ;; esac
        [ -e "$(dirname "$document")/$link" ] || fail "$document: no file $link"
    done < <(sed 's/](/\n&/g' "$document" | sed -n 's/^](\([^)]*\)).*/\1/p')
done
[ "$(wc -c <"$zip")" -lt 1000000 ] || fail "the ZIP has grown to over 1 MB"
dlls=$(x86_64-w64-mingw32-objdump -p "$exe" | sed -n 's/.*DLL Name: //p' | sort | tr '\n' ' ')
echo "DLLs: $dlls"
[ "$dlls" = "ADVAPI32.dll KERNEL32.dll msvcrt.dll " ] || fail "not every Windows has these"

# Root's power over read-only files would hide what others see.
asUser=()
[ "$(id -u)" -ne 0 ] || asUser=(setpriv "--bounding-set=-dac_override,-dac_read_search")
native=$PWD/out/release/stashkeep
wine=$PWD/scripts/wine.sh
onWindows() { "$wine" "$exe" "$@"; }
onLinux() {
    "${asUser[@]}" "$native" "$@" | sed -z 's/\n/\r\n/g'
    return "${PIPESTATUS[0]}"
}

# Runs stashkeep as $run tells and keeps in the file "printed" what it was given, printed and returned.
call() {
    local status=0
    echo "\$ stashkeep $*" >>printed
    $run "$@" >>printed </dev/null || status=$?
    printf '\n= %s\n' "$status" >>printed
}

symbols=(scripts/common/global/scr_{flags,collectableids,globaldefines}.asm)

makeMedia() {
    cp -r "$1"/examples/. .
    head -c 5000 "$native" >level.prg
    for disc in 2 3; do
        cc1541 -4 -n "ZARNIS DISC $disc" -r 18 -f "level $disc" -w level.prg "disc$disc.d64" >/dev/null
    done
    head -c $((1 << 20)) /dev/zero >game.reu
    printf '\0\0\010\0' | dd of=game.reu bs=1 seek=$((0x0900)) conv=notrunc status=none
    printf '\0\1\010\0' | dd of=game.reu bs=1 seek=$((0x0908)) conv=notrunc status=none
    printf '\0\0\014\0' | dd of=game.reu bs=1 seek=$((0x1100)) conv=notrunc status=none
    printf '\0\377\017\0' | dd of=game.reu bs=1 seek=$((0x1108)) conv=notrunc status=none
}

moveOnceRound() {
    call implantd64 savegame.dat disc2.d64 disc3.d64
    call extractd64 disc2.d64 disc3.d64 from_discs.dat
    call implantreu from_discs.dat game.reu
    call extractreu game.reu from_reu.dat
    call check from_reu.dat "${symbols[@]}"
    call check from_reu.dat
    call
    call Foo 'äÄ' '*.dat'
    call check
    call check savegame.dat 1 2
    cmp savegame.dat from_discs.dat
    cmp savegame.dat from_reu.dat
}

nameFilesInAnyScript() {
    local folder='Spielstände für セーブ' long
    mkdir "$folder"
    cp disc2.d64 "$folder/ディスク 2.d64"
    cp disc3.d64 "$folder/Диск 3.d64"
    call extractd64 "$folder/ディスク 2.d64" "$folder/Диск 3.d64" "$folder/Größe.dat"
    call implantd64 "$folder/Größe.dat" "$folder/ディスク 2.d64" "$folder/Диск 3.d64"
    call check "$folder/Größe.dat"
    call check "$folder/ß.dat"
    call extractreu '日本.reu' 'out dat'
    call extractreu '*.reu' out.dat
    call extractreu '' out.dat
    cmp "$folder/Größe.dat" savegame.dat
    printf -v long 'long %0200d/' 1 2
    mkdir -p "$long"
    call extractreu game.reu "$long/data"
    cmp "$long/data" savegame.dat
}

readSymbolFiles() {
    mkdir -p generated/forest
    printf 'WORLDFLAG_TREE = START + 1\n' >generated/forest/trees.inc
    printf '.flag A\r\n.flags B, 3\r\n' >flags.asm
    printf 'COLLECTABLE_MONEY = 0\r\nCOLLECTABLE_BOW = 3\r\n' >ids.asm
    printf '#AsmSectionBegin\r\ninclude "forest\\trees.inc"\r\n#AsmSectionEnd\r\n' >include.asm
    printf '#AsmSectionBegin\r\ninclude "forest\\none.inc"\r\n' >missing.asm
    sed -i 's/$/\r/' "${symbols[@]}" generated/*.inc
    call check savegame.dat "${symbols[@]}"
    call check savegame.dat flags.asm ids.asm include.asm
    call check savegame.dat flags.asm ids.asm missing.asm
    call check savegame.dat flags.asm no.asm include.asm
    call check savegame.dat no.asm ids.asm include.asm
}

refuseWhatIsNoFile() {
    mkdir folder
    for file in folder . .. folder/ no/no; do
        call extractd64 disc2.d64 "$file" refused.dat
        call extractd64 disc2.d64 disc3.d64 "$file"
        call implantd64 "$file" disc2.d64 disc3.d64
        call implantreu savegame.dat "$file"
        call implantreu "$file" game.reu
        call check "$file"
        call check savegame.dat "$file" ids.asm include.asm
        call check savegame.dat flags.asm ids.asm "$file"
    done
}

leaveReadOnlyFilesAlone() {
    head -c 1024 level.prg >other.dat
    chmod 444 disc2.d64 game.reu from_reu.dat
    cp disc2.d64 before.d64
    call implantd64 other.dat disc2.d64 disc3.d64
    call implantreu other.dat game.reu
    call extractd64 disc2.d64 disc3.d64 from_reu.dat
    call extractreu game.reu again.dat
    chmod 644 disc2.d64 game.reu from_reu.dat
    cmp disc2.d64 before.d64
    cmp from_reu.dat savegame.dat
    cmp <(head -c 256 disc3.d64) <(head -c 768 other.dat | tail -c 256)
}

refuseHugeFiles() {
    for size in 2G 5G; do
        truncate -s "$size" huge
        call extractreu huge refused.dat
        call implantreu savegame.dat huge
        call extractd64 huge disc3.d64 refused.dat
        call check savegame.dat huge ids.asm include.asm
        call check savegame.dat flags.asm ids.asm huge
        rm huge
    done
}

steps=(moveOnceRound nameFilesInAnyScript readSymbolFiles refuseWhatIsNoFile leaveReadOnlyFilesAlone refuseHugeFiles)
project=$PWD
for run in onLinux onWindows; do
    mkdir "$work/$run"
    cd "$work/$run"
    makeMedia "$project"
    for step in "${steps[@]}"; do
        mkdir -p "../printed/$run"
        $step
        mv printed "../printed/$run/$step"
    done
done
say "The same files, and the same prints, as on Linux"
for step in "${steps[@]}"; do
    cmp "$work"/printed/{onLinux,onWindows}/"$step" || fail "$step prints something else"
    echo "$step: $(grep -c '^= ' "$work/printed/onWindows/$step") runs"
done
diff -r "$work/onLinux" "$work/onWindows" || fail "the files differ"

say "What only Windows has"
# expect STATUS TEXT ARGUMENT...: what the program has to return and print behind the warning
expect() {
    local status=0 printed
    printed=$(onWindows "${@:3}" </dev/null) || status=$?
    printed=${printed#*builds!}
    echo "\$ stashkeep ${*:3}" && echo "$printed"
    [ "$status" -eq "$1" ] || fail "status $status"
    [ "$printed" = "$2" ] || fail "expected: $2"
}
here="Z:${PWD//\//\\}"
expect 0 '' implantreu "$here\\other.dat" "z:$PWD/game.reu"
expect 0 '' extractreu .\\game.reu ..\\Größe.dat
cmp ../Größe.dat other.dat
expect 0 '' extractreu game.reu NUL
expect 1 $'File:<Q:\\ディスク.reu> not found or not readable.\r\nFile:<Q:\\ディスク.reu> not a valid Zarnis memory image.\r' \
    extractreu 'Q:\ディスク.reu' out.dat
expect 1 $'File:<Z:> not found or not readable.\r\nFile:<Z:> not a valid Zarnis memory image.\r' extractreu Z: out.dat
# Read as text, so that a line break inside quotes arrives, and is printed, as one.
printf '#AsmSectionBegin\r\n"x\r\ny"\r\n#AsmSectionEnd\r\n' >quoted.asm
expect 1 $'x\r\ny_;_generateSaveGame collectableids.asm file problem!\r
problem loading flags files; flagsFileName=<flags.asm>, asmWorldFlags=<quoted.asm>, collectableIds=<no.asm>\r' \
    check savegame.dat flags.asm no.asm quoted.asm
