#!/usr/bin/env bash
# Compares what bash, zsh and fish complete with what they should: scripts/check_completions.sh PREFIX
# PREFIX is where stashkeep is installed, such as /usr.
set -euo pipefail
prefix=$(realpath "$1")
"$(dirname "$0")/install.sh" bash-completion fish zsh
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/files/folder" && cd "$work/files"
touch disc2.d64 DISC3.D64 game.reu GAME2.BIN game.ybn game.fbn flags.asm savegame.dat folder/inner.d64

# ask.SHELL prints the completions of the command line that its arguments make, one a line.
cat >"$work/ask.bash" <<'END'
. /usr/share/bash-completion/bash_completion
_completion_loader stashkeep
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMP_LINE=$* COMP_POINT=${#COMP_LINE}
_stashkeep stashkeep "${@:$#}" "${@:$#-1:1}"
printf '%s\n' "${COMPREPLY[@]}"
END
cat >"$work/ask.fish" <<'END'
complete -C "$argv"
END
# In zsh, only the line editor completes: here it inserts all completions before it reads a key.
cat >"$work/.zshrc" <<'END'
autoload -Uz compinit && compinit -u -d ~/dump
everything() { _main_complete; compstate[insert]=all compstate[list]=; }
zle -C everything complete-word everything
zle-line-init() {
    BUFFER=$COMMAND_LINE CURSOR=$#COMMAND_LINE
    zle everything
    print -rl -- ${(Q)${(z)BUFFER#"${COMMAND_LINE% *} "}} >~/completions
    exit
}
zle -N zle-line-init
END
cat >"$work/ask.zsh" <<'END'
COMMAND_LINE=$* script -qec 'zsh -d -i' /dev/null </dev/null >/dev/null
cat ~/completions
END

# expect "COMPLETION..." WORD...: all three shells complete the last word of "stashkeep WORD..." to these
expect() {
    for shell in bash fish zsh; do
        found=$(env -i HOME="$work" PATH="$prefix/bin:$PATH" XDG_DATA_DIRS="$prefix/share:/usr/share" TERM=dumb \
            FPATH="$prefix/share/zsh/site-functions:$fpath" $shell "$work/ask.$shell" stashkeep "${@:2}" |
            sed 's/\t.*//; s|/$||' | LC_ALL=C sort -u | xargs)
        [ "$found" = "$1" ] || { echo "$shell: \"stashkeep ${*:2}\" completes to: $found" >&2 && exit 1; }
    done
}
fpath=$(zsh -dfc 'print -r -- $FPATH')
expect 'extractd64 extractfbn extractgeoram extractneoram extractreu extractybn' ext
expect 'implantd64 implantfbn implantgeoram implantneoram implantreu implantybn' IMP
expect 'check' ch
expect 'DISC3.D64 disc2.d64 folder' EXTRACTD64 a ''
expect 'GAME2.BIN folder game.reu' implantgeoram a ''
expect 'folder game.ybn' implantybn a ''
expect 'folder game.fbn' extractfbn ''
expect 'flags.asm folder' check a b c ''
expect 'folder savegame.dat' extractd64 a b ''
expect '' extractneoram a b ''
echo "bash, fish and zsh complete as they should."
