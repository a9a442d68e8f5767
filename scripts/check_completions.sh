#!/usr/bin/env bash
# Checks what bash, zsh and fish complete for a program that is installed below PREFIX, for each of its command words:
# scripts/check_completions.sh PREFIX
set -euo pipefail
prefix=$(realpath "$1")
"$(dirname "$0")/install.sh" bash-completion fish zsh
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/files/folder"
cd "$work/files"
touch disc2.d64 DISC3.D64 game.reu GAME2.BIN game.ybn game.fbn flags.asm savegame.dat

# Each of these prints the completions of the last of its arguments, which make a command line.
cat >"$work/ask.bash" <<'END'
. /usr/share/bash-completion/bash_completion
_completion_loader stashkeep
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
COMP_LINE=$*
COMP_POINT=${#COMP_LINE}
_stashkeep stashkeep "${@:$#}" "${@:$#-1:1}"
printf '%s\n' "${COMPREPLY[@]}"
END
cat >"$work/ask.fish" <<'END'
complete -C "$argv"
END
# zsh completes only in its line editor, so "script" runs it in a terminal. Before the editor reads the first key, it
# calls zle-line-init, which puts the command line into the editor and runs a completion that inserts all matches, not
# just the first. The words that are now in place of the last one are the completions.
cat >"$work/ask.zsh" <<'END'
COMMAND_LINE="$*" script --quiet --return --command 'zsh -d -i' /dev/null </dev/null >/dev/null
cat ~/completions
END
cat >"$work/.zshrc" <<'END'
autoload -Uz compinit
compinit -u -d ~/dump
insertAll() {
    _main_complete
    compstate[insert]=all
    compstate[list]=
}
zle-line-init() {
    BUFFER=$COMMAND_LINE
    CURSOR=$#COMMAND_LINE
    zle insertAll
    print -rl -- ${(Q)${(z)BUFFER#"${COMMAND_LINE% *} "}} >~/completions
    exit
}
zle -C insertAll complete-word insertAll
zle -N zle-line-init
END

# completionsIn SHELL WORD...: the completions of the last word of "stashkeep WORD...", sorted, in one line
completionsIn() {
    local functions=$prefix/share/zsh/site-functions:$prefix/share/zsh/vendor-completions
    env -i HOME="$work" PATH="$prefix/bin:$PATH" XDG_DATA_DIRS="$prefix/share:/usr/share" TERM=dumb \
        FPATH="$functions:$(zsh -dfc "print \$FPATH")" "$1" "$work/ask.$1" stashkeep "${@:2}" |
        sed 's/\t.*//; s|/$||' | LC_ALL=C sort -u | xargs
}
# expect "COMPLETION..." WORD...: the completions in all three shells
expect() {
    local shell found
    for shell in bash fish zsh; do
        found=$(completionsIn "$shell" "${@:2}")
        if [ "$found" != "$1" ]; then
            echo "$shell: \"stashkeep ${*:2}\" completes to \"$found\", not to \"$1\"" >&2
            exit 1
        fi
    done
}

# The files that complete each kind of argument
declare -A files=(
    [d64]='DISC3.D64 disc2.d64 folder'
    [bin]='GAME2.BIN folder game.reu'
    [ybn]='folder game.ybn'
    [fbn]='folder game.fbn'
    [asm]='flags.asm folder'
    [inputfilename]='folder savegame.dat'
    [outputfilename]='folder savegame.dat'
)
# The usage text has lines like "stashkeep implantreu <inputfilename> <game.bin> : implants ...", but none for check.
usage=$("$prefix/bin/stashkeep" | sed -nE 's/^stashkeep (.*>) :.*/\1/p')
usage+=$'\ncheck <inputfilename> <flags.asm> <collectableids.asm> <globaldefines.asm>'
words=$(cut -d ' ' -f 1 <<<"$usage" | sort)
expect "$(xargs <<<"$words")" ''
expect "$(grep '^implant' <<<"$words" | xargs)" IMP
expect "${files[d64]}" EXTRACTD64 a ''
mapfile -t lines <<<"$usage"
for line in "${lines[@]}"; do
    read -ra arguments <<<"$line"
    given=("${arguments[0]}")
    for argument in "${arguments[@]:1}"; do
        kind=${argument##*[<.]}
        expect "${files[${kind%>}]:-no such file in this script}" "${given[@]}" ''
        given+=(a)
    done
    expect '' "${given[@]}" ''
done
echo "bash, fish and zsh complete all ${#lines[@]} commands as they should."
