#!/usr/bin/env bash
# Asks bash, zsh and fish themselves what they would complete at every place of every command, and
# compares: scripts/check_completions.sh [PREFIX]
# Checks what the shells find in the system, or what was installed below PREFIX.
set -euo pipefail
cd "$(dirname "$0")/.."
prefix=${1:+$(realpath "$1")}

scripts/install.sh bash-completion fish zsh
mapfile -t commands < <(sed -n 's/.*Command{"\([a-z0-9]*\)".*/\1/p' src/cli/command_line.cpp | sort)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/home" "$work/files"
cd "$work/files"
mkdir folder folder.d64
touch disc2.d64 DISC3.D64 'two words.d64' game.reu GAME2.REU game.bin game.ybn game.fbn savegame.dat notes \
    flags.asm globals.ASM folder/inner.d64 folder/inner.dat

# What has to come out: a line "> COMMAND LINE" for each case, and the sorted completions after it.
expect() {
    printf '> %s\n' "$1"
    shift
    [ $# -eq 0 ] || printf '%s\n' "$@" | LC_ALL=C sort
}
discs=(disc2.d64 DISC3.D64 'two words.d64' folder folder.d64)
data=(savegame.dat notes folder folder.d64)
sources=(flags.asm globals.ASM folder folder.d64)
# image WORD ENDING FILE...: the two places of a command that moves savegames in or out of FILEs
image() {
    local files=("${@:2}" folder folder.d64)
    expect "stashkeep extract$1 " "${files[@]}"
    expect "stashkeep extract$1 a " "${data[@]}"
    expect "stashkeep extract$1 a b "
    expect "stashkeep implant$1 " "${data[@]}"
    expect "stashkeep implant$1 a " "${files[@]}"
    expect "stashkeep implant$1 a b "
}
{
    expect 'stashkeep ' "${commands[@]}"
    expect 'stashkeep extractg' extractgeoram
    expect 'stashkeep CH' check
    expect 'stashkeep extractd64 ' "${discs[@]}"
    expect 'stashkeep extractd64 a ' "${discs[@]}"
    expect 'stashkeep extractd64 a b ' "${data[@]}"
    expect 'stashkeep extractd64 a b c '
    expect 'stashkeep implantd64 ' "${data[@]}"
    expect 'stashkeep implantd64 a ' "${discs[@]}"
    expect 'stashkeep implantd64 a b ' "${discs[@]}"
    expect 'stashkeep implantd64 a b c '
    image reu game.reu GAME2.REU game.bin
    image georam game.reu GAME2.REU game.bin
    image neoram game.reu GAME2.REU game.bin
    image ybn game.ybn
    image fbn game.fbn
    expect 'stashkeep check ' "${data[@]}"
    expect 'stashkeep check a ' "${sources[@]}"
    expect 'stashkeep check a b ' "${sources[@]}"
    expect 'stashkeep check a b c ' "${sources[@]}"
    expect 'stashkeep check a b c d '
    expect 'stashkeep extractd64 disc' disc2.d64
    expect 'stashkeep extractd64 folder/' folder/inner.d64
    expect 'stashkeep implantd64 folder/' folder/inner.dat
    expect 'stashkeep ExtractReu ga' game.reu game.bin
    expect 'stashkeep nonsense '
} >"$work/expected"
sed -n 's/^> //p' "$work/expected" >"$work/lines"

cat >"$work/ask.bash" <<'END'
. /usr/share/bash-completion/bash_completion
_completion_loader stashkeep || :
[[ $(complete -p stashkeep) =~ -F\ ([^ ]+) ]]
function=${BASH_REMATCH[1]}
while IFS= read -r COMP_LINE; do
    read -r -a COMP_WORDS <<<"$COMP_LINE"
    [[ $COMP_LINE != *' ' ]] || COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1)) COMP_POINT=${#COMP_LINE} COMPREPLY=()
    "$function" stashkeep "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    printf '> %s\n' "$COMP_LINE"
    [ ${#COMPREPLY[@]} -eq 0 ] || printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort -u # as readline does
done
END
cat >"$work/ask.fish" <<'END'
while read -l line
    echo "> $line"
    complete -C $line | string replace -r '\t.*' '' | string replace -r '/$' '' | LC_ALL=C sort
end
END
# Lets the line editor insert all that it would offer, before it reads a key.
cat >"$work/home/.zshrc" <<'END'
autoload -Uz compinit
compinit -u -d $HOME/dump
everything() { _main_complete; compstate[insert]=all compstate[list]=; }
zle -C everything complete-word everything
zle-line-init() {
    local line
    local -a found
    while IFS= read -r line; do
        BUFFER=$line CURSOR=$#line
        zle everything
        found=()
        [[ $BUFFER == $line ]] || found=(${(Q)${(z)BUFFER#"${line% *} "}})
        print -r -- "> $line"
        (($#found == 0)) || print -rl -- ${found%/} | LC_ALL=C sort
    done <$HOME/../lines >$HOME/../zsh
    exit
}
zle -N zle-line-init
END

# inShell PROGRAM...: runs a shell without the user's own settings, except where to look
inShell() {
    local found=(HOME="$work/home" PATH="$PATH" TERM=dumb LC_ALL=C.UTF-8)
    found+=(${XDG_DATA_DIRS:+"XDG_DATA_DIRS=$XDG_DATA_DIRS"} ${FPATH:+"FPATH=$FPATH"})
    [ -z "$prefix" ] || found+=(PATH="$prefix/bin:$PATH" XDG_DATA_DIRS="$prefix/share:/usr/local/share:/usr/share"
        FPATH="$prefix/share/zsh/site-functions:$(zsh -dfc 'print -r -- $FPATH')")
    env -i "${found[@]}" "$@"
}
inShell bash --norc "$work/ask.bash" <"$work/lines" >"$work/bash"
inShell fish "$work/ask.fish" <"$work/lines" >"$work/fish"
inShell script -qec 'zsh -d -i' /dev/null </dev/null >/dev/null

failed=0
for shell in bash zsh fish; do
    if diff -u "$work/expected" "$work/$shell"; then
        echo "$shell: $(wc -l <"$work/lines") command lines complete as they should"
    else
        echo "$shell: completes otherwise" >&2
        failed=1
    fi
done
exit $failed
